#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

namespace eventtimer {

class SequenceItem;

// Whole minutes from the start of the occurrence's day (in the given zone) to its start.
qint64 minutesFromDayStart(const SequenceItem &item, const QTimeZone &zone);

// "HH:mm" of the occurrence's start, shifted by the zone's offset from UTC at the present
// moment "now" (not at the occurrence), as the timetable's boxes show it.
QString startTimeText(const SequenceItem &item, const QTimeZone &zone, const QDateTime &now);

} // namespace eventtimer
