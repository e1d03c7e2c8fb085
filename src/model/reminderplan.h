#pragma once

#include "model/event.h"
#include "model/section.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QSet>
#include <QTimeZone>

#include <memory>

namespace eventtimer {

// One local day's sections, as the timetable of that day shows them.
struct PlannedDay
{
    QDate date;
    SectionList sections;
};

// A reminder of one occurrence of a marked event.
struct Reminder
{
    // When the player hears of it: lead minutes before it is due.
    QDateTime at;
    // When it is due: when the marker reaches its box, the "HH:mm" the box shows.
    QDateTime due;
    QString startText;
    int leadMinutes = 0;
    QString section;
    std::shared_ptr<Event> event;

    // "NAME in N min", or "NAME now" without a lead.
    QString summary() const;
    // "SECTION, HH:mm"
    QString body() const;
};

// The reminders of the marked events' occurrences on the given days, in the order they fall
// due. An occurrence is due on its own day at the time its box shows, which the box texts give
// with the offset from UTC at textsAt. An occurrence at the very start of a day that only
// continues the previous day's last one in its section (the same event running past midnight)
// is left out.
QList<Reminder> planReminders(const QList<PlannedDay> &days, const QSet<QString> &marked,
                              int leadMinutes, const QTimeZone &zone, const QDateTime &textsAt);

} // namespace eventtimer
