#include "timetable/pastveil.h"

#include <algorithm>

namespace eventtimer {

QRegion pastVeil(double markerX, double height, const QList<EventBoxGeometry> &boxes)
{
    QRegion veil(QRectF(0, 0, std::max(0.0, markerX), height).toAlignedRect());
    for (const EventBoxGeometry &box : boxes)
        if (box.rect.left() < markerX && box.rect.right() > markerX)
            veil -= box.rect.toAlignedRect();
    return veil;
}

} // namespace eventtimer
