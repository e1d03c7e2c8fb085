#pragma once

#include "timetable/timetablelayout.h"

#include <QString>

namespace eventtimer {

// What a box says in words, made from its numbers (the start it shows, its length, whether it
// is tomorrow's): the tooltip and what screen readers hear say the same times as the box.
namespace boxtexts {

// "21:20" for minute 1280; past midnight the clock goes round.
QString clock(qint64 minuteOfDay);

// "21:20–21:35, 15 min", "21:20–00:30, 3 h 10 min", "09:00–10:00, 1 h": the shown start, the
// end and the length.
QString timeSpan(const EventBoxGeometry &box);

// Line by line: name, section, time span (", tomorrow" for the next day's boxes), chat link.
QString details(const EventBoxGeometry &box);

// "12:00, Keep", then ", tomorrow" and ", reminder set" where they hold.
QString description(const EventBoxGeometry &box, bool marked);

} // namespace boxtexts
} // namespace eventtimer
