#pragma once

#include "timetable/hittest.h"
#include "timetable/hourruler.h"
#include "timetable/timelinenavigation.h"
#include "timetable/timetablelayout.h"
#include "ui/timelinerenderer.h"
#include "ui/timelinestate.h"

#include <QSet>
#include <QWidget>

#include <optional>

namespace eventtimer {

// The time axis: every event box of the day in one widget, painted by a TimelineRenderer, which
// paints only the part that is exposed. Boxes are records, not widgets: a day of thousands of
// occurrences costs no more to build than its arithmetic. This widget keeps what the axis
// shows and takes the input: copy buttons are hit-tested, with a pointing cursor and the chat
// link as tooltip; a box's tooltip tells all about it.
//
// Keyboard users move a focus ring from box to box (TimelineNavigation) and copy with Enter or
// the copy shortcut; assistive technology sees one item per box (TimelineAccessible).
class TimelineWidget : public QWidget
{
    Q_OBJECT

public:
    explicit TimelineWidget(QWidget *parent = nullptr);

    void setBoxes(QList<EventBoxGeometry> boxes);
    const QList<EventBoxGeometry> &boxes() const { return m_boxes; }

    // The marker's left edge; absent until the first time update.
    void setMarkerX(double x);
    std::optional<double> markerX() const { return m_state.markerX(); }

    // The box under a point, and where its copy button is.
    std::optional<qsizetype> boxAt(QPointF point) const
    {
        return eventtimer::boxAt(m_boxes, point);
    }
    QRectF copyButtonRect(qsizetype box) const
    {
        return eventtimer::copyButtonRect(m_boxes.at(box));
    }

    // The box that carries the keyboard focus ring while the timeline has the focus.
    std::optional<qsizetype> currentBox() const { return m_state.currentBox(); }
    // Moves the focus ring to a box and asks for it to be brought into view.
    void setCurrentBox(qsizetype box);
    // What the copy button of a box does, for the keyboard and assistive technology: boxes of
    // events without a chat link have no button, and nothing happens.
    void pressCopyButton(qsizetype box);

    // Where the day ends, when the next day's first hours follow: a faint line there, with the
    // next day's date at its top.
    void setDayEnd(double x, const QString &nextDay);

    // The ruler's marks (rulerMarks): faint lines at their hours run behind the boxes.
    void setHourMarks(QList<RulerMark> marks);

    // While find is open: the boxes that match stay clear, the others are veiled, and the
    // current match carries the ring. Absent: no find.
    void setFindState(std::optional<QList<qsizetype>> matches, std::optional<qsizetype> current);

    // Everything about a box, line by line: name, section, times and length, chat link.
    QString boxDetails(qsizetype box) const;

    // The names of the events marked for reminders: their boxes carry a bell.
    void setMarkedNames(const QSet<QString> &names);
    bool isMarked(qsizetype box) const { return m_state.isMarked(m_boxes.at(box)); }

Q_SIGNALS:
    // The copy button of a box whose event has a chat link was pressed.
    void copyRequested(qsizetype box);
    // The keyboard or assistive technology moved the focus ring to a box, which the scroll
    // areas around should show.
    void revealRequested(qsizetype box);
    // The box's menu was asked for: a right click on it, or the menu key on the focused box.
    void menuRequested(qsizetype box, QPoint globalPosition);
    // R on the focused box: its event's reminder mark is to be set or removed.
    void markToggleRequested(qsizetype box);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

private:
    // Draws anew what a change of the state changed.
    void redraw(const TimelineState::Changed &changed);
    // Decodes the icons a paint went without, and paints their boxes again.
    void showIcons();
    void setHovered(std::optional<qsizetype> button);

    enum class Reveal
    {
        No,
        Yes
    };
    void setCurrent(qsizetype box, Reveal reveal);
    void notifyAccessibleFocus();
    // Where the focus ring goes when the keyboard enters the timeline without a current box:
    // near the marker, in the first row in view.
    std::optional<qsizetype> entryBox() const;

    QList<EventBoxGeometry> m_boxes;
    TimelineState m_state;
    TimelineNavigation m_navigation;
    TimelineRenderer m_renderer{*this};
};

} // namespace eventtimer
