#include "model/scheduleday.h"

#include <cmath>

namespace eventtimer {

ScheduleDay ScheduleDay::containing(const QDateTime &now, const QTimeZone &zone)
{
    return of(now.toTimeZone(zone).date(), zone);
}

ScheduleDay ScheduleDay::of(QDate date, const QTimeZone &zone)
{
    return ScheduleDay(secondsSinceEpoch(date.startOfDay(zone)));
}

double secondsSinceEpoch(const QDateTime &moment)
{
    return static_cast<double>(moment.toMSecsSinceEpoch()) / 1000.0;
}

QDateTime dateTimeFromSeconds(double seconds, const QTimeZone &zone)
{
    // Whole milliseconds towards the past, so that 06:30:59.9999 stays in minute 06:30.
    const auto msecs = static_cast<qint64>(std::floor(seconds * 1000.0));
    return QDateTime::fromMSecsSinceEpoch(msecs, zone);
}

} // namespace eventtimer
