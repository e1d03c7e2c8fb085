#include "sequencetime.h"

#include "scheduleday.h"
#include "sequenceitem.h"

namespace eventtimer {

qint64 minutesFromDayStart(const SequenceItem &item, const QTimeZone &zone)
{
    const QDate day = dateTimeFromSeconds(item.time, zone).date();
    const double seconds = item.time - secondsSinceEpoch(day.startOfDay(zone));
    return static_cast<qint64>(seconds / 60.0);
}

QString startTimeText(const SequenceItem &item, const QTimeZone &zone, const QDateTime &now)
{
    const auto offset = static_cast<double>(zone.offsetFromUtc(now));
    return dateTimeFromSeconds(item.time + offset, zone).toString(u"HH:mm");
}

} // namespace eventtimer
