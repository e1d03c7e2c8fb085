#include "model/sequencetime.h"

#include "model/scheduleday.h"
#include "model/sequenceitem.h"
#include "model/shownstart.h"

namespace eventtimer {

qint64 minutesFromDayStart(const SequenceItem &item, const QTimeZone &zone)
{
    const QDate day = dateTimeFromSeconds(item.time, zone).date();
    const double seconds = item.time - secondsSinceEpoch(day.startOfDay(zone));
    return static_cast<qint64>(seconds / 60.0);
}

QString startTimeText(const SequenceItem &item, const QTimeZone &zone, const QDateTime &now)
{
    return shownStart(item.time, zone, now).toString(u"HH:mm");
}

DayMinutes::DayMinutes(QTimeZone zone)
    : m_zone(std::move(zone))
{}

qint64 DayMinutes::of(const SequenceItem &item)
{
    if (!(item.time >= m_dayStart && item.time < m_dayEnd)) {
        const QDate day = dateTimeFromSeconds(item.time, m_zone).date();
        m_dayStart = secondsSinceEpoch(day.startOfDay(m_zone));
        m_dayEnd = secondsSinceEpoch(day.addDays(1).startOfDay(m_zone));
    }
    // Equal to minutesFromDayStart: the item lies in [start, end) of its own local day.
    return static_cast<qint64>((item.time - m_dayStart) / 60.0);
}

} // namespace eventtimer
