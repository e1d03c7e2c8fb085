#include "timetable/revealscroll.h"

#include <QtMath>

#include <algorithm>

namespace eventtimer {

int RevealScroll::showPoint(int point, int margin, Axis axis)
{
    if (point - margin < axis.value)
        return std::max(0, point - margin);
    if (point > axis.value + axis.visible - margin)
        return std::min(point - axis.visible + margin, axis.maximum);
    return axis.value;
}

int RevealScroll::sideways(const QRectF &box, Axis axis)
{
    const double left = axis.value;
    const double visible = axis.visible;
    const double needed = std::min(box.width(), std::max(0.0, visible - 2 * padding));
    const double shown = std::min(box.right(), left + visible) - std::max(box.left(), left);
    if (shown >= needed)
        return axis.value;
    return showPoint(qRound(box.left() + needed / 2), qRound(needed / 2 + padding), axis);
}

int RevealScroll::upright(int top, double height, Axis axis)
{
    const int halfHeight = qCeil(height / 2);
    return showPoint(top + halfHeight, halfHeight + qRound(padding), axis);
}

} // namespace eventtimer
