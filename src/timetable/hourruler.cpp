#include "timetable/hourruler.h"

#include "timetable/layoutconstants.h"

#include <QTime>

#include <cmath>

namespace eventtimer {

QList<RulerMark> rulerMarks(double left, double right, qint64 offsetMinutes)
{
    constexpr qint64 quarter = 15;
    constexpr auto perMinute = static_cast<double>(LayoutConstants::minutesMultiplier);
    QList<RulerMark> marks;
    // Axis minutes whose shown time is a whole quarter, from the first at or after left.
    const auto shown = [offsetMinutes](qint64 minute) {
        return ((minute + offsetMinutes) % 1440 + 1440) % 1440;
    };
    qint64 minute = static_cast<qint64>(std::ceil(left / perMinute));
    minute += (quarter - shown(minute) % quarter) % quarter;
    for (; static_cast<double>(minute) * perMinute <= right; minute += quarter) {
        const qint64 time = shown(minute);
        const bool hour = time % 60 == 0;
        marks.append({static_cast<double>(minute) * perMinute, hour,
                      hour ? QTime(static_cast<int>(time / 60), 0).toString(u"HH:mm") : QString()});
    }
    return marks;
}

QRectF pastVeil(double markerX, double height)
{
    return QRectF(0, 0, std::max(0.0, markerX), height);
}

} // namespace eventtimer
