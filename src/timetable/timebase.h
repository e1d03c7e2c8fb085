#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

namespace eventtimer {

// The present on the time axis: the axis is the UTC day, so the marker stands at the whole
// UTC minute, while the clock shows local wall-clock time.
namespace timebase {

// Whole minutes since UTC midnight of now, times the points per minute: 0, 10, … 14390.
double markerX(const QDateTime &now);

// Where to scroll so that the marker sits a sixth of the visible width from the left edge.
// Negative or past the content's end is passed on unchanged; the scroll area clamps it.
double scrollTarget(double markerX, double visibleWidth);

// "HH:mm" of now in the zone.
QString clockText(const QDateTime &now, const QTimeZone &zone);

} // namespace timebase
} // namespace eventtimer
