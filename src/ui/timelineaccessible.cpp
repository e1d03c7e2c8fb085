#include "ui/timelineaccessible.h"

#include "ui/eventboxaccessible.h"
#include "ui/timelinewidget.h"

namespace eventtimer {

TimelineAccessible::TimelineAccessible(TimelineWidget *timeline)
    : QAccessibleWidget(timeline, QAccessible::List)
{}

TimelineAccessible::~TimelineAccessible()
{
    // The items are registered with Qt, which owns them; they go with the list.
    for (const QAccessible::Id id : std::as_const(m_boxes))
        QAccessible::deleteAccessibleInterface(id);
}

QAccessibleInterface *TimelineAccessible::create(const QString &, QObject *object)
{
    if (auto *timeline = qobject_cast<TimelineWidget *>(object))
        return new TimelineAccessible(timeline);
    return nullptr;
}

void TimelineAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(&TimelineAccessible::create);
        return true;
    }();
    Q_UNUSED(installed)
}

void TimelineAccessible::boxesReplaced(TimelineWidget *timeline)
{
    if (QAccessible::isActive()) {
        QAccessibleEvent event(timeline, QAccessible::ObjectReorder);
        QAccessible::updateAccessibility(&event);
    }
}

void TimelineAccessible::focusMoved(TimelineWidget *timeline, qsizetype box)
{
    // Qt drops the notification at once while no assistive technology is listening.
    QAccessibleEvent event(timeline, QAccessible::Focus);
    event.setChild(static_cast<int>(box));
    QAccessible::updateAccessibility(&event);
}

TimelineWidget *TimelineAccessible::timeline() const
{
    return static_cast<TimelineWidget *>(widget());
}

int TimelineAccessible::boxCount() const
{
    return static_cast<int>(timeline()->boxes().size());
}

int TimelineAccessible::childCount() const
{
    return boxCount() + QAccessibleWidget::childCount();
}

QAccessibleInterface *TimelineAccessible::child(int index) const
{
    if (index < 0)
        return nullptr;
    if (index >= boxCount())
        return QAccessibleWidget::child(index - boxCount());
    const auto known = m_boxes.constFind(index);
    if (known != m_boxes.constEnd())
        return QAccessible::accessibleInterface(*known);
    auto *box = new EventBoxAccessible(timeline(), index);
    m_boxes.insert(index, QAccessible::registerAccessibleInterface(box));
    return box;
}

int TimelineAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    if (const auto *box = dynamic_cast<const EventBoxAccessible *>(child))
        return box->timeline() == timeline() ? box->index() : -1;
    const int widgetIndex = QAccessibleWidget::indexOfChild(child);
    return widgetIndex < 0 ? -1 : boxCount() + widgetIndex;
}

QAccessibleInterface *TimelineAccessible::childAt(int x, int y) const
{
    // The clock label lies over the boxes.
    if (QAccessibleInterface *widgetChild = QAccessibleWidget::childAt(x, y))
        return widgetChild;
    const QPoint local = timeline()->mapFromGlobal(QPoint(x, y));
    if (const std::optional<qsizetype> box = timeline()->boxAt(local))
        return child(static_cast<int>(*box));
    return nullptr;
}

QAccessibleInterface *TimelineAccessible::focusChild() const
{
    const std::optional<qsizetype> current = timeline()->currentBox();
    if (timeline()->hasFocus() && current)
        return child(static_cast<int>(*current));
    return QAccessibleWidget::focusChild();
}

} // namespace eventtimer
