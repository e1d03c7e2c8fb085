#include "model/reminderplan.h"

#include "model/scheduleday.h"
#include "model/shownstart.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace eventtimer {

QString Reminder::summary() const
{
    if (leadMinutes == 0)
        return event->name + u" now"_s;
    return event->name + u" in "_s + QString::number(leadMinutes) + u" min"_s;
}

QString Reminder::body() const
{
    return section + u", "_s + startText;
}

namespace {

// Whether the first occurrence of a section's day only continues what ran into it.
bool continuesPreviousDay(const Section &section, const Section *previous, double dayStart)
{
    if (!previous || previous->sequence.isEmpty() || section.sequence.isEmpty())
        return false;
    const SequenceItem &first = *section.sequence.first();
    const SequenceItem &last = *previous->sequence.last();
    return first.time == dayStart && last.event->name == first.event->name &&
           last.time + static_cast<double>(last.duration) * 60.0 > dayStart;
}

} // namespace

QList<Reminder> planReminders(const QList<PlannedDay> &days, const QSet<QString> &marked,
                              int leadMinutes, const QTimeZone &zone, const QDateTime &textsAt)
{
    QList<Reminder> reminders;
    if (marked.isEmpty())
        return reminders;
    const int textsOffset = zone.offsetFromUtc(textsAt);
    for (qsizetype d = 0; d < days.size(); ++d) {
        const PlannedDay &day = days.at(d);
        const double dayStart = secondsSinceEpoch(day.date.startOfDay(zone));
        for (const auto &section : day.sections) {
            // The same section on the day before, if it was planned too.
            const Section *previous = nullptr;
            if (d > 0 && days.at(d - 1).date.addDays(1) == day.date)
                for (const auto &candidate : days.at(d - 1).sections)
                    if (candidate->name == section->name)
                        previous = candidate.get();
            for (qsizetype i = 0; i < section->sequence.size(); ++i) {
                const SequenceItem &item = *section->sequence.at(i);
                if (!marked.contains(item.event->name) ||
                    (i == 0 && continuesPreviousDay(*section, previous, dayStart)))
                    continue;
                const QTime start = shownStart(item.time, zone, textsOffset);
                Reminder reminder;
                reminder.due = QDateTime(day.date, start, zone);
                reminder.at = reminder.due.addSecs(-60LL * leadMinutes);
                reminder.startText = start.toString(u"HH:mm");
                reminder.leadMinutes = leadMinutes;
                reminder.section = section->name;
                reminder.event = item.event;
                reminders.append(std::move(reminder));
            }
        }
    }
    std::stable_sort(reminders.begin(), reminders.end(),
                     [](const Reminder &a, const Reminder &b) { return a.at < b.at; });
    return reminders;
}

} // namespace eventtimer
