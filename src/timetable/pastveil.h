#pragma once

#include "timetable/timetablelayout.h"

#include <QList>
#include <QRegion>

namespace eventtimer {

// What the veil of the past covers: the axis left of the marker, but for the boxes running at
// the marker, whose names and times stay clear.
QRegion pastVeil(double markerX, double height, const QList<EventBoxGeometry> &boxes);

} // namespace eventtimer
