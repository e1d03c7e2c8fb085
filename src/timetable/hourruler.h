#pragma once

#include <QList>
#include <QRectF>
#include <QString>

namespace eventtimer {

// One mark of the hour ruler above the time axis.
struct RulerMark
{
    double x = 0;
    bool hour = false;
    // "HH:mm" on the hours; empty on the quarters.
    QString label;
};

// The ruler's marks between two points of the axis: every hour with its label and every
// quarter. A place on the axis reads as the boxes' times do, its minute shifted by the offset
// from UTC the boxes' texts use, so a box that shows 21:20 stands under the ruler's 21:20; past
// the day's end the hours simply go on.
QList<RulerMark> rulerMarks(double left, double right, qint64 offsetMinutes);

// What the past veil covers: the axis left of the marker.
QRectF pastVeil(double markerX, double height);

} // namespace eventtimer
