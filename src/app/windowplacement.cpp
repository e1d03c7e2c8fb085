#include "app/windowplacement.h"

#include <algorithm>

namespace eventtimer {

WindowPlacement placeWindow(const QRect &saved, const QList<QRect> &screens, QSize minimum,
                            QSize preferred, bool placeable)
{
    QRect area = screens.value(0);
    if (area.isEmpty())
        return {saved.isValid() ? saved : QRect(QPoint(), preferred), saved.isValid()};
    if (saved.isValid()) {
        const auto holding =
            std::find_if(screens.cbegin(), screens.cend(),
                         [&](const QRect &screen) { return screen.contains(saved.center()); });
        if (holding != screens.cend())
            area = *holding;
    }
    QRect placed = saved.isValid() ? saved : QRect(area.topLeft(), preferred);
    placed.setSize(placed.size().expandedTo(minimum).boundedTo(area.size()));
    if (!area.contains(placed))
        placed.moveTopLeft(QPoint(
            std::clamp(placed.left(), area.left(), area.left() + area.width() - placed.width()),
            std::clamp(placed.top(), area.top(), area.top() + area.height() - placed.height())));
    return {placed, placeable && saved.isValid()};
}

} // namespace eventtimer
