#include "ui/eventboxaccessible.h"

#include "model/event.h"
#include "timetable/boxtexts.h"
#include "ui/timelinewidget.h"

#include <QKeySequence>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace eventtimer {

EventBoxAccessible::EventBoxAccessible(TimelineWidget *timeline, int index)
    : m_timeline(timeline)
    , m_index(index)
{}

bool EventBoxAccessible::isValid() const
{
    return m_timeline && m_index < m_timeline->boxes().size();
}

QObject *EventBoxAccessible::object() const
{
    // A painted box is no object of its own.
    return nullptr;
}

QWindow *EventBoxAccessible::window() const
{
    return m_timeline ? m_timeline->window()->windowHandle() : nullptr;
}

QAccessibleInterface *EventBoxAccessible::parent() const
{
    return m_timeline ? QAccessible::queryAccessibleInterface(m_timeline) : nullptr;
}

QAccessibleInterface *EventBoxAccessible::child(int) const
{
    return nullptr;
}

int EventBoxAccessible::childCount() const
{
    return 0;
}

int EventBoxAccessible::indexOfChild(const QAccessibleInterface *) const
{
    return -1;
}

QAccessibleInterface *EventBoxAccessible::childAt(int, int) const
{
    return nullptr;
}

bool EventBoxAccessible::hasChatLink() const
{
    return isValid() && m_timeline->boxes().at(m_index).event().chatLink.has_value();
}

QString EventBoxAccessible::copyActionName() const
{
    return u"Copy chat link of "_s + text(QAccessible::Name);
}

QString EventBoxAccessible::text(QAccessible::Text type) const
{
    if (!isValid())
        return {};
    const EventBoxGeometry &box = m_timeline->boxes().at(m_index);
    switch (type) {
    case QAccessible::Name:
        return box.event().name;
    case QAccessible::Description:
        return boxtexts::description(box, m_timeline->isMarked(m_index));
    default:
        return {};
    }
}

void EventBoxAccessible::setText(QAccessible::Text, const QString &)
{
    // The texts come from the event document; they are not edited here.
}

QRect EventBoxAccessible::rect() const
{
    if (!isValid())
        return {};
    const QRect local = m_timeline->boxes().at(m_index).rect.toAlignedRect();
    return QRect(m_timeline->mapToGlobal(local.topLeft()), local.size());
}

QAccessible::Role EventBoxAccessible::role() const
{
    return QAccessible::ListItem;
}

QAccessible::State EventBoxAccessible::state() const
{
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    state.focusable = true;
    state.focused = m_timeline->hasFocus() && m_timeline->currentBox() == m_index;
    const QRect local = m_timeline->boxes().at(m_index).rect.toAlignedRect();
    state.offscreen = !m_timeline->visibleRegion().intersects(local);
    state.invisible = !m_timeline->isVisible();
    return state;
}

void *EventBoxAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ActionInterface)
        return static_cast<QAccessibleActionInterface *>(this);
    return nullptr;
}

QStringList EventBoxAccessible::actionNames() const
{
    if (!isValid())
        return {};
    if (hasChatLink())
        return {pressAction(), setFocusAction()};
    return {setFocusAction()};
}

QString EventBoxAccessible::localizedActionName(const QString &name) const
{
    if (name == pressAction() && hasChatLink())
        return copyActionName();
    return QAccessibleActionInterface::localizedActionName(name);
}

QString EventBoxAccessible::localizedActionDescription(const QString &name) const
{
    if (name == pressAction() && hasChatLink())
        return copyActionName();
    return QAccessibleActionInterface::localizedActionDescription(name);
}

void EventBoxAccessible::doAction(const QString &name)
{
    if (!isValid())
        return;
    if (name == setFocusAction()) {
        m_timeline->setFocus(Qt::OtherFocusReason);
        m_timeline->setCurrentBox(m_index);
    } else if (name == pressAction()) {
        m_timeline->pressCopyButton(m_index);
    }
}

QStringList EventBoxAccessible::keyBindingsForAction(const QString &name) const
{
    if (name == pressAction() && hasChatLink())
        return {QKeySequence(Qt::Key_Return).toString(QKeySequence::NativeText),
                QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText)};
    return {};
}

} // namespace eventtimer
