#pragma once

#include "timetable/timetablelayout.h"

#include <QList>
#include <QPointF>
#include <QRectF>

#include <optional>

namespace eventtimer {

// What lies under a point of the time axis, in the timeline's coordinates.

// The box under a point: later boxes are painted over earlier ones, so the last hit is the one
// seen.
std::optional<qsizetype> boxAt(const QList<EventBoxGeometry> &boxes, QPointF point);

// Where a box's copy button is drawn, in its bottom-right corner.
QRectF copyButtonRect(const EventBoxGeometry &box);

// The box whose copy button is under a point: only boxes of events with a chat link have one,
// and only the part of it inside the box counts.
std::optional<qsizetype> copyButtonAt(const QList<EventBoxGeometry> &boxes, QPointF point);

} // namespace eventtimer
