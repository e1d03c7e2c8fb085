#pragma once

#include "model/event.h"
#include "model/sequenceitem.h"

#include <QList>
#include <QString>

#include <memory>

namespace eventtimer {

// One row group of the timetable: the events that can happen in it and the day's occurrences.
class Section
{
public:
    QString category;
    QString name;
    QList<std::shared_ptr<Event>> events;
    QString wiki;
    QList<std::shared_ptr<SequenceItem>> sequence;
};

using SectionList = QList<std::shared_ptr<Section>>;

} // namespace eventtimer
