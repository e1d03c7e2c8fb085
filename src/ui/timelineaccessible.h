#pragma once

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>

namespace eventtimer {

class TimelineWidget;

// What assistive technology sees of the painted timeline: a list with one item per event box
// (see EventBoxAccessible), followed by the widgets inside the timeline (the clock label).
// A day can hold thousands of boxes, so an item's interface is made the first time it is
// asked for and kept for the timeline's lifetime.
class TimelineAccessible : public QAccessibleWidget
{
public:
    explicit TimelineAccessible(TimelineWidget *timeline);
    ~TimelineAccessible() override;

    // The factory installed for TimelineWidget, once: assistive technology asks a factory for
    // the interface of a widget.
    static QAccessibleInterface *create(const QString &className, QObject *object);
    static void install();
    // What the timeline tells assistive technology: its boxes were replaced; the focus ring
    // moved to a box.
    static void boxesReplaced(TimelineWidget *timeline);
    static void focusMoved(TimelineWidget *timeline, qsizetype box);

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;

private:
    TimelineWidget *timeline() const;
    int boxCount() const;

    mutable QHash<int, QAccessible::Id> m_boxes;
};

} // namespace eventtimer
