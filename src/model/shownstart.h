#pragma once

#include <QDateTime>
#include <QTime>
#include <QTimeZone>

#include <cmath>

namespace eventtimer {

// The wall-clock minute an occurrence's box shows: its start (seconds since
// 1970-01-01T00:00:00Z) plus the zone's offset from UTC at builtAt, the moment the timetable is
// built (not at the occurrence), read as wall-clock time in the zone. At UTC+2 a local 00:00
// shows 02:00, at UTC-5 19:00; on a daylight-saving change day every occurrence takes the same
// present offset. The box's text, the ruler, the reminders and the panel feed all read it here.
// Qt Core alone and no library: the panel feed includes it as it is.
// builtOffset is the zone's offset from UTC at builtAt, in seconds: what a timetable asks once
// for all its boxes.
inline QTime shownStart(double start, const QTimeZone &zone, int builtOffset)
{
    // Offsets are whole seconds, so the whole second towards the past decides the minute:
    // 06:30:59.9 stays in minute 06:30.
    const auto seconds = static_cast<qint64>(std::floor(start)) + builtOffset;
    const QTime wall = QDateTime::fromSecsSinceEpoch(seconds, zone).time();
    return QTime(wall.hour(), wall.minute());
}

inline QTime shownStart(double start, const QTimeZone &zone, const QDateTime &builtAt)
{
    return shownStart(start, zone, zone.offsetFromUtc(builtAt));
}

} // namespace eventtimer
