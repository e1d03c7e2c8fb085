#include "ui/timelinetooltip.h"

#include "model/event.h"
#include "timetable/hittest.h"
#include "ui/plaintooltip.h"
#include "ui/timelinewidget.h"

#include <QHelpEvent>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace eventtimer {

bool TimelineToolTip::show(TimelineWidget &timeline, const QHelpEvent &help)
{
    const QList<EventBoxGeometry> &boxes = timeline.boxes();
    const QPointF point = help.pos();
    if (const std::optional<qsizetype> button = copyButtonAt(boxes, point)) {
        QToolTip::showText(help.globalPos(), plainToolTip(*boxes.at(*button).event().chatLink),
                           &timeline, copyButtonRect(boxes.at(*button)).toAlignedRect());
    } else if (const std::optional<qsizetype> box = boxAt(boxes, point)) {
        QToolTip::showText(help.globalPos(), plainToolTip(timeline.boxDetails(*box)), &timeline,
                           boxes.at(*box).rect.toAlignedRect());
    } else {
        QToolTip::hideText();
        return false;
    }
    return true;
}

} // namespace eventtimer
