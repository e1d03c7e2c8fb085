#include "timetable/hourruler.h"

#include "model/scheduleday.h"
#include "model/shownstart.h"
#include "timetable/boxtexts.h"
#include "timetable/layoutconstants.h"
#include "timetable/timetablelayout.h"

#include <algorithm>
#include <cmath>

namespace eventtimer {

QList<RulerMark> rulerMarks(const QTimeZone &zone, const QDateTime &builtAt, double axisWidth)
{
    constexpr qint64 quarter = 15;
    constexpr qint64 dayMinutes = 24 * 60;
    constexpr auto perMinute = static_cast<double>(LayoutConstants::minutesMultiplier);
    constexpr qint64 dayEnd = TimetableLayout::dayEndMinute;
    const QDate day = builtAt.toTimeZone(zone).date();
    const double midnight = ScheduleDay::of(day, zone).start();
    const double nextMidnight = ScheduleDay::of(day.addDays(1), zone).start();
    const int builtOffset = zone.offsetFromUtc(builtAt);
    // What a box at an axis minute shows, in minutes from 00:00.
    const auto shownAt = [&](qint64 minute) {
        const double start = minute < dayEnd
                                 ? midnight + static_cast<double>(minute) * 60.0
                                 : nextMidnight + static_cast<double>(minute - dayEnd) * 60.0;
        const QTime shown = shownStart(start, zone, builtOffset);
        return static_cast<qint64>(shown.hour() * 60 + shown.minute());
    };
    const qint64 last = std::max(static_cast<qint64>(std::floor(axisWidth / perMinute)),
                                 dayEnd + TimetableLayout::followingMinutes);
    QList<RulerMark> marks;
    qint64 minute = 0;
    qint64 shown = shownAt(minute);
    while (minute <= last) {
        // Off a quarter (an odd offset, or a change by one): on to the next whole quarter.
        if (shown % quarter != 0) {
            minute += quarter - shown % quarter;
            shown = shownAt(minute);
            continue;
        }
        // Within an hour the shown time runs on with the axis unless the offset changes there;
        // then quarter by quarter, each asked anew.
        const qint64 later = shownAt(minute + 60);
        const qint64 step = (later - shown + dayMinutes) % dayMinutes == 60 ? 60 : quarter;
        for (qint64 part = 0; part < step && minute + part <= last; part += quarter) {
            const qint64 time = (shown + part) % dayMinutes;
            const bool hour = time % 60 == 0;
            marks.append({static_cast<double>(minute + part) * perMinute, hour,
                          hour ? boxtexts::clock(time) : QString()});
        }
        minute += step;
        shown = step == 60 ? later : shownAt(minute);
    }
    return marks;
}

std::span<const RulerMark> marksBetween(const QList<RulerMark> &marks, double left, double right)
{
    const RulerMark *begin = marks.constData();
    const RulerMark *first =
        std::lower_bound(begin, begin + marks.size(), left,
                         [](const RulerMark &mark, double x) { return mark.x < x; });
    const RulerMark *end =
        std::upper_bound(first, begin + marks.size(), right,
                         [](double x, const RulerMark &mark) { return x < mark.x; });
    return {first, end};
}

} // namespace eventtimer
