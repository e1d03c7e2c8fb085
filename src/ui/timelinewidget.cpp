#include "ui/timelinewidget.h"

#include "model/event.h"
#include "timetable/boxtexts.h"
#include "timetable/hittest.h"
#include "ui/timelineaccessible.h"
#include "ui/timelinetooltip.h"

#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace eventtimer {

TimelineWidget::TimelineWidget(QWidget *parent)
    : QWidget(parent)
{
    // Assistive technology sees one item per box.
    TimelineAccessible::install();
    setMouseTracking(true);
    // Every pixel painted: a scroll moves what is shown and paints only what comes into view.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(u"Events of the day"_s);
}

void TimelineWidget::setBoxes(QList<EventBoxGeometry> boxes)
{
    m_boxes = std::move(boxes);
    m_state.resetBoxes();
    m_navigation.setBoxes(m_boxes);
    m_renderer.clear();
    TimelineAccessible::boxesReplaced(this);
    update();
}

void TimelineWidget::setMarkerX(double x)
{
    m_state.setMarkerX(x);
    update(m_renderer.markerMoved(m_boxes, m_state));
}

void TimelineWidget::setHourMarks(QList<RulerMark> marks)
{
    m_state.setHourMarks(std::move(marks));
    redraw({{}, true});
}

void TimelineWidget::setDayEnd(double x, const QString &nextDay)
{
    m_state.setDayEnd(x, nextDay);
    redraw({{}, true});
}

void TimelineWidget::setFindState(std::optional<QList<qsizetype>> matches,
                                  std::optional<qsizetype> current)
{
    redraw(m_state.setFind(matches, current));
}

void TimelineWidget::setMarkedNames(const QSet<QString> &names)
{
    redraw(m_state.setMarkedNames(names, m_boxes));
}

void TimelineWidget::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    m_renderer.paint(painter, event->rect(), m_boxes, m_state);
    if (m_renderer.awaitsIcons()) // no frame waits for a picture: they come after it
        QMetaObject::invokeMethod(this, &TimelineWidget::showIcons, Qt::QueuedConnection);
}

void TimelineWidget::showIcons()
{
    const QList<qsizetype> boxes = m_renderer.takeAwaitingIcons();
    for (const qsizetype box : boxes)
        EventBoxPainter::decodeIcon(m_boxes.at(box));
    redraw({boxes});
}

void TimelineWidget::redraw(const TimelineState::Changed &changed)
{
    for (const qsizetype box : changed.boxes) {
        m_renderer.invalidate(m_boxes.at(box).rect);
        update(m_boxes.at(box).rect.toAlignedRect());
    }
    if (changed.all) {
        m_renderer.invalidateAll();
        update();
    }
}

void TimelineWidget::setHovered(std::optional<qsizetype> button)
{
    if (button == m_state.hoveredButton())
        return;
    redraw(m_state.setHoveredButton(button));
    if (button)
        setCursor(Qt::PointingHandCursor);
    else
        unsetCursor();
}

void TimelineWidget::mouseMoveEvent(QMouseEvent *event)
{
    setHovered(copyButtonAt(m_boxes, event->position()));
    QWidget::mouseMoveEvent(event);
}

void TimelineWidget::leaveEvent(QEvent *event)
{
    setHovered(std::nullopt);
    QWidget::leaveEvent(event);
}

void TimelineWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        // A click moves the focus ring to the box under it; the box is in view already.
        if (const std::optional<qsizetype> box = boxAt(event->position()))
            setCurrent(*box, Reveal::No);
        if (const auto button = copyButtonAt(m_boxes, event->position())) {
            redraw(m_state.setPressedButton(button));
            return;
        }
    }
    QWidget::mousePressEvent(event);
}

void TimelineWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_state.pressedButton()) {
        const qsizetype pressed = *m_state.pressedButton();
        redraw(m_state.setPressedButton(std::nullopt));
        // Like a push button: it acts when released over the button it was pressed on.
        if (copyButtonAt(m_boxes, event->position()) == pressed)
            Q_EMIT copyRequested(pressed);
        return;
    }
    QWidget::mouseReleaseEvent(event);
}

void TimelineWidget::setCurrentBox(qsizetype box)
{
    setCurrent(box, Reveal::Yes);
}

void TimelineWidget::setCurrent(qsizetype box, Reveal reveal)
{
    if (box < 0 || box >= m_boxes.size())
        return;
    // The ring is drawn with its box: the boxes it leaves and reaches are drawn anew.
    const TimelineState::Changed changed = m_state.setCurrentBox(box);
    redraw(changed);
    if (!changed.boxes.isEmpty() && hasFocus())
        notifyAccessibleFocus();
    if (reveal == Reveal::Yes)
        Q_EMIT revealRequested(box);
}

void TimelineWidget::pressCopyButton(qsizetype box)
{
    if (box >= 0 && box < m_boxes.size() && m_boxes.at(box).event().chatLink)
        Q_EMIT copyRequested(box);
}

void TimelineWidget::contextMenuEvent(QContextMenuEvent *event)
{
    std::optional<qsizetype> box;
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Mouse) {
        box = boxAt(event->pos());
        if (box)
            setCurrent(*box, Reveal::No);
    } else if (m_state.currentBox()) {
        // From the keyboard: the menu opens on the focused box.
        box = m_state.currentBox();
        at = mapToGlobal(m_boxes.at(*box).rect.center().toPoint());
    }
    if (!box) {
        event->ignore();
        return;
    }
    Q_EMIT menuRequested(*box, at);
}

void TimelineWidget::notifyAccessibleFocus()
{
    if (m_state.currentBox())
        TimelineAccessible::focusMoved(this, *m_state.currentBox());
}

std::optional<qsizetype> TimelineWidget::entryBox() const
{
    // Keyboard users start where the day stands, without the timetable jumping away from what
    // they see.
    const QRectF visible = visibleRegion().boundingRect();
    const double x = m_state.markerX().value_or(visible.isEmpty() ? 0.0 : visible.left());
    return m_navigation.entryBox(visible.top(), visible.bottom(), x);
}

void TimelineWidget::keyPressEvent(QKeyEvent *event)
{
    using Action = TimelineNavigation::KeyAction;
    const Action action = TimelineNavigation::actionOf(event->key(), event->modifiers(),
                                                       event->matches(QKeySequence::Copy));
    if (m_boxes.isEmpty() || action == Action::None) {
        QWidget::keyPressEvent(event);
        return;
    }
    // Taken here even where nothing moves (at the end of a row): the scroll areas around would
    // otherwise scroll on the same key and leave the ring behind.
    event->accept();
    const std::optional<qsizetype> current = m_state.currentBox();
    if (!current) {
        // The first key shows where the ring is before it moves or copies anything.
        if (const std::optional<qsizetype> box = entryBox())
            setCurrent(*box, Reveal::Yes);
    } else if (action == Action::Copy) {
        pressCopyButton(*current);
    } else if (action == Action::Mark) {
        Q_EMIT markToggleRequested(*current);
    } else if (const std::optional<qsizetype> target =
                   m_navigation.target(*current, event->key())) {
        setCurrent(*target, Reveal::Yes);
    }
}

void TimelineWidget::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    if (const std::optional<qsizetype> current = m_state.currentBox()) {
        redraw({{*current}});
        if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
            Q_EMIT revealRequested(*current);
    } else if (event->reason() == Qt::MouseFocusReason) {
        // A click puts the ring on the box it hits; the keyboard starts near the present time.
        return;
    } else if (const std::optional<qsizetype> box = entryBox()) {
        setCurrent(*box, Reveal::Yes);
    } else {
        return;
    }
    // Announced after the timeline itself has been announced as focused.
    QMetaObject::invokeMethod(this, &TimelineWidget::notifyAccessibleFocus, Qt::QueuedConnection);
}

void TimelineWidget::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    if (m_state.currentBox())
        redraw({{*m_state.currentBox()}});
}

QVariant TimelineWidget::inputMethodQuery(Qt::InputMethodQuery query) const
{
    // A scroll area that gives the focus to the timeline scrolls to this rectangle. Without it,
    // it would try to show the whole day and jump to its middle.
    if (query == Qt::ImCursorRectangle) {
        if (m_state.currentBox())
            return m_boxes.at(*m_state.currentBox()).rect.toAlignedRect();
        const QRect visible = visibleRegion().boundingRect();
        return QRect(visible.topLeft(), QSize(1, 1));
    }
    return QWidget::inputMethodQuery(query);
}

void TimelineWidget::changeEvent(QEvent *event)
{
    // A new theme or font: every box is drawn anew.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        m_renderer.clear();
        update();
    }
    QWidget::changeEvent(event);
}

QString TimelineWidget::boxDetails(qsizetype box) const
{
    return boxtexts::details(m_boxes.at(box));
}

bool TimelineWidget::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    if (!TimelineToolTip::show(*this, *static_cast<QHelpEvent *>(event)))
        event->ignore();
    return true;
}

} // namespace eventtimer
