#pragma once

#include "model/section.h"
#include "timetable/timetablelayout.h"

#include <QDateTime>
#include <QList>
#include <QSet>

namespace eventtimer {

// One row of the Next up list: a box of the axis still to come or on now.
struct NextUpRow
{
    qsizetype box = 0;
    // Until the present reaches the box's start; 0 or less while it runs.
    qint64 secondsAhead = 0;

    friend bool operator==(const NextUpRow &, const NextUpRow &) = default;
};

// The boxes that have not ended at now, the next day's first hours after the day's end
// included, by their start on the axis; boxes starting together in the order of their
// sections in the document (sections, as the view was given them), which is the chat-link
// sequence's order. With marked, only the boxes of the events it names.
QList<NextUpRow> nextUp(const QList<EventBoxGeometry> &boxes, const SectionList &sections,
                        const QDateTime &now, const QSet<QString> *marked = nullptr);

} // namespace eventtimer
