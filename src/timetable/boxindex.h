#pragma once

#include "timetable/timetablelayout.h"

#include <QList>
#include <QRectF>

#include <algorithm>
#include <cmath>

namespace eventtimer {

// Which boxes lie in a part of the axis without asking every box of the day: the axis is cut
// into columns an hour wide, each listing the boxes that reach into it. A repaint of a screen
// then asks a few hundred boxes of thousands.
class BoxIndex
{
public:
    BoxIndex() = default;
    explicit BoxIndex(const QList<EventBoxGeometry> &boxes);

    // The boxes, of those indexed, that meet area and have a size, in their order.
    QList<qsizetype> boxesIn(const QList<EventBoxGeometry> &boxes, const QRectF &area) const;

private:
    static constexpr double columnWidth = 600.0;
    static qsizetype columnOf(double x)
    {
        return std::max<qsizetype>(0, static_cast<qsizetype>(std::floor(x / columnWidth)));
    }

    QList<QList<qsizetype>> m_columns;
};

} // namespace eventtimer
