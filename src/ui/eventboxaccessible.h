#pragma once

#include <QAccessibleInterface>
#include <QPointer>

namespace eventtimer {

class TimelineWidget;

// One painted event box as an item of the timeline's list: its name is the event's name, its
// description the start time and the section; boxes with a chat link can be pressed to copy
// it, and any box can take the focus ring. The item reads everything from the timeline when
// asked, so it keeps no copy of the day.
class EventBoxAccessible : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    EventBoxAccessible(TimelineWidget *timeline, int index);

    TimelineWidget *timeline() const { return m_timeline; }
    int index() const { return m_index; }

    bool isValid() const override;
    QObject *object() const override;
    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int index) const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QString text(QAccessible::Text type) const override;
    void setText(QAccessible::Text type, const QString &text) override;
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    QString localizedActionName(const QString &name) const override;
    QString localizedActionDescription(const QString &name) const override;
    void doAction(const QString &name) override;
    QStringList keyBindingsForAction(const QString &name) const override;

private:
    bool hasChatLink() const;
    QString copyActionName() const;

    QPointer<TimelineWidget> m_timeline;
    int m_index;
};

} // namespace eventtimer
