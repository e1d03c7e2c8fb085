#pragma once

#include "model/section.h"
#include "model/sequenceitem.h"

#include <QHash>
#include <QList>

#include <memory>
#include <optional>

namespace eventtimer::testing {

// One occurrence of a day made by hand: its event's name, its start in minutes after the start
// of the day, its length in minutes and its event's chat link ("[&NAME]" unless told; none
// with std::nullopt).
struct Occurrence
{
    QString event;
    int start = 0;
    qint64 duration = 0;
    std::optional<QString> link = QStringLiteral("[&") + event + u']';
};

// A section whose events are made from its occurrences, one event per name.
inline std::shared_ptr<Section> makeSection(const QString &category, const QString &name,
                                            double dayStart, const QList<Occurrence> &occurrences)
{
    auto section = std::make_shared<Section>();
    section->category = category;
    section->name = name;
    QHash<QString, std::shared_ptr<Event>> events;
    for (const Occurrence &occurrence : occurrences) {
        std::shared_ptr<Event> &event = events[occurrence.event];
        if (!event) {
            event = std::make_shared<Event>();
            event->name = occurrence.event;
            event->section = name;
            event->chatLink = occurrence.link;
            section->events.append(event);
        }
        section->sequence.append(std::make_shared<SequenceItem>(
            event, occurrence.duration, dayStart + occurrence.start * 60.0));
    }
    return section;
}

} // namespace eventtimer::testing
