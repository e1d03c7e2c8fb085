#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QTimeZone>

#include <span>

namespace eventtimer {

// One mark of the hour ruler above the time axis.
struct RulerMark
{
    double x = 0;
    bool hour = false;
    // "HH:mm" on the hours; empty on the quarters.
    QString label;
};

// The ruler's marks along the axis of the timetable built at builtAt in zone, from its start to
// axisWidth and at least over the next day's first hours: every quarter, and every hour with its
// label, stands where a box showing that time (shownStart) stands. The day's boxes stand at the
// minutes since its local midnight, the next day's past the day's end at the minutes since the
// next one; on a daylight-saving change day the labels jump where the boxes' times do. Made
// once per timetable: a paint takes the marks it needs with marksBetween.
QList<RulerMark> rulerMarks(const QTimeZone &zone, const QDateTime &builtAt, double axisWidth);

// The marks from left to right, both included: a view into marks, which are in the order of x.
std::span<const RulerMark> marksBetween(const QList<RulerMark> &marks, double left, double right);

} // namespace eventtimer
