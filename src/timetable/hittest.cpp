#include "timetable/hittest.h"

#include "model/event.h"
#include "timetable/layoutconstants.h"

namespace eventtimer {

std::optional<qsizetype> boxAt(const QList<EventBoxGeometry> &boxes, QPointF point)
{
    for (qsizetype i = boxes.size() - 1; i >= 0; --i)
        if (boxes.at(i).rect.contains(point))
            return i;
    return std::nullopt;
}

QRectF copyButtonRect(const EventBoxGeometry &box)
{
    return EventBoxGeometry::copyButtonRect(
        box.rect, QSizeF(LayoutConstants::copyButtonWidth, LayoutConstants::copyButtonHeight));
}

std::optional<qsizetype> copyButtonAt(const QList<EventBoxGeometry> &boxes, QPointF point)
{
    const std::optional<qsizetype> box = boxAt(boxes, point);
    if (!box || !boxes.at(*box).event().chatLink)
        return std::nullopt;
    const QRectF button = copyButtonRect(boxes.at(*box)).intersected(boxes.at(*box).rect);
    return button.contains(point) ? box : std::nullopt;
}

} // namespace eventtimer
