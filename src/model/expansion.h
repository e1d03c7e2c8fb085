#pragma once

#include "model/result.h"
#include "model/scheduleday.h"

#include <QJsonArray>
#include <QJsonValue>

namespace eventtimer {

class Section;

// Bounds on the schedule entries one section, and a whole document, may read for the day, and
// on the occurrences of a whole document. A real day has a few thousand entries at most; the
// bounds keep a hostile document from exhausting memory or time.
inline constexpr qint64 maxScheduleEntriesPerDay = 100000;
inline constexpr qint64 maxScheduleEntriesPerDocument = 1000000;
inline constexpr qint64 maxOccurrencesPerDocument = 200000;

// What the sections of one document have used of the document's bounds so far.
struct DocumentBudget
{
    qint64 entriesRead = 0;
    qint64 occurrences = 0;
};

// Fills section.sequence from "partial" and then repeated passes over "pattern" until the day
// is full. Entries met once the day is full are not read. Fails, naming the entry, on an entry
// that is unusable, on a "pattern" that cannot fill the day, or on an occurrence that would
// start before the day. Entries read count against budget, when given.
Status expandSchedule(Section &section, qint64 skippedSegments, const QJsonArray &partial,
                      const QJsonArray &pattern, const ScheduleDay &day,
                      DocumentBudget *budget = nullptr);

} // namespace eventtimer
