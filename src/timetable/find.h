#pragma once

#include "model/section.h"
#include "timetable/timetablelayout.h"

#include <QList>
#include <QString>

#include <optional>

namespace eventtimer {

// Text as find compares it: case folded and without accents, so that "eclair" finds "Éclair".
QString foldedForFind(const QString &text);

// The boxes whose event's name or section holds the query (both folded), in the order find
// walks them: by their start on the axis, then top to bottom. An empty query matches nothing.
QList<qsizetype> findMatches(const QList<EventBoxGeometry> &boxes, const QString &query);

// Where find goes first: the first match that starts at or after x (the marker), else the
// first of all. An index into matches; absent without matches.
std::optional<qsizetype> firstMatchFrom(const QList<EventBoxGeometry> &boxes,
                                        const QList<qsizetype> &matches, double x);

// The occurrences of sections (the day's, hidden from view) that the query finds.
qsizetype countMatches(const SectionList &sections, const QString &query);

// The next or previous match, wrapping around the axis's ends.
qsizetype stepMatch(qsizetype current, qsizetype count, bool forward);

} // namespace eventtimer
