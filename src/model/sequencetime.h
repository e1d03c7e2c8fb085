#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

namespace eventtimer {

class SequenceItem;

// Whole minutes from the start of the occurrence's day (in the given zone) to its start.
qint64 minutesFromDayStart(const SequenceItem &item, const QTimeZone &zone);

// "HH:mm" of the occurrence's start as the timetable's boxes show it (shownStart), with the
// zone's offset from UTC at the present moment "now".
QString startTimeText(const SequenceItem &item, const QTimeZone &zone, const QDateTime &now);

// minutesFromDayStart for many occurrences: a day's occurrences share one or two local days,
// so the bounds of the last day met are kept instead of asking the zone for every one.
class DayMinutes
{
public:
    explicit DayMinutes(QTimeZone zone);

    qint64 of(const SequenceItem &item);

private:
    QTimeZone m_zone;
    double m_dayStart = 0;
    double m_dayEnd = 0; // the next local midnight: a day may be 23 or 25 hours long
};

} // namespace eventtimer
