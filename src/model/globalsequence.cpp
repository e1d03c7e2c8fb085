#include "model/globalsequence.h"

#include "model/sequenceitem.h"
#include "model/sequencetime.h"

namespace eventtimer {

qint64 registerEvent(GlobalSequence &sequence, qint64 seconds, const std::shared_ptr<Event> &event)
{
    qint64 key = seconds;
    while (sequence.contains(key))
        ++key;
    sequence.emplace(key, event);
    return key;
}

GlobalSequence globalSequence(const SectionList &sections, const QTimeZone &zone)
{
    GlobalSequence sequence;
    DayMinutes minutes(zone);
    for (const auto &section : sections) {
        qint64 firstKey = -1;
        QString firstName;
        QString lastName;
        for (const auto &item : section->sequence) {
            const Event &event = *item->event;
            if (!event.chatLink)
                continue;
            const qint64 key = registerEvent(sequence, minutes.of(*item) * 60, item->event);
            if (firstKey == -1) {
                firstKey = key;
                firstName = event.name;
            }
            lastName = event.name;
        }
        if (firstKey != -1 && firstName == lastName && firstKey >= -59 && firstKey <= 59)
            sequence.erase(firstKey);
    }
    return sequence;
}

} // namespace eventtimer
