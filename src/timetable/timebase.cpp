#include "timetable/timebase.h"

#include "timetable/layoutconstants.h"

namespace eventtimer::timebase {

double markerX(const QDateTime &now)
{
    const QDateTime utc = now.toUTC();
    const qint64 milliseconds =
        utc.toMSecsSinceEpoch() - utc.date().startOfDay(QTimeZone::utc()).toMSecsSinceEpoch();
    const qint64 minutes = milliseconds / 1000 / 60;
    return static_cast<double>(minutes * LayoutConstants::minutesMultiplier);
}

double scrollTarget(double markerX, double visibleWidth)
{
    return markerX + visibleWidth / -6.0;
}

QString clockText(const QDateTime &now, const QTimeZone &zone)
{
    return now.toTimeZone(zone).toString(u"HH:mm");
}

} // namespace eventtimer::timebase
