#pragma once

#include "model/result.h"
#include "model/scheduleday.h"

#include <QJsonArray>
#include <QJsonValue>

namespace eventtimer {

class Section;

// Bound on the schedule entries one section may read for its day. A real day has at most a
// few hundred; the bound keeps a hostile document from exhausting memory with zero-minute
// entries.
inline constexpr qint64 maxScheduleEntriesPerDay = 100000;

// Fills section.sequence from "partial" and then repeated passes over "pattern" until the day
// is full. Entries met once the day is full are not read. Fails, naming the entry, on an entry
// that is unusable, on a "pattern" that cannot fill the day, or on an occurrence that would
// start before the day.
Status expandSchedule(Section &section, qint64 skippedSegments, const QJsonArray &partial,
                      const QJsonArray &pattern, const ScheduleDay &day);

// One schedule entry: adds its occurrence (unless it is a pause) and moves nextStart on by its
// minutes. Does nothing at all once nextStart has reached the end of the day.
Status expandEntry(const QJsonValue &entry, double &nextStart, qint64 skippedSegments,
                   Section &section, const ScheduleDay &day);

} // namespace eventtimer
