#include "ui/timelinewidget.h"

#include "model/event.h"
#include "timetable/boxtexts.h"
#include "timetable/hourruler.h"
#include "ui/timelineaccessible.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

// Texts from the event document shown as they are, whatever they look like: a tooltip would
// take a name with angle brackets for markup.
QString plainToolTip(const QString &text)
{
    return u"<p style='white-space:pre'>"_s + text.toHtmlEscaped() + u"</p>"_s;
}

} // namespace

TimelineWidget::TimelineWidget(QWidget *parent)
    : QWidget(parent)
{
    // Assistive technology asks a factory for the interface of a widget; ours lists the boxes.
    static const bool accessibleFactoryInstalled = [] {
        QAccessible::installFactory(&TimelineAccessible::create);
        return true;
    }();
    Q_UNUSED(accessibleFactoryInstalled)

    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(u"Events of the day"_s);
}

void TimelineWidget::setBoxes(QList<EventBoxGeometry> boxes)
{
    m_boxes = std::move(boxes);
    m_navigation.setBoxes(m_boxes);
    m_painter.clear();
    m_boxPixmaps.clear();
    m_currentBox.reset();
    m_hoveredButton.reset();
    m_pressedButton.reset();

    if (QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::ObjectReorder);
        QAccessible::updateAccessibility(&event);
    }
    update();
}

void TimelineWidget::setMarkerX(double x)
{
    const std::optional<double> previous = m_markerX;
    m_markerX = x;
    // The marker's old and new place, and the veil between them.
    const double from = previous ? std::min(*previous, x) : x;
    const double to = previous ? std::max(*previous, x) : x;
    update(QRectF(from - 1, 0, to - from + 3, height()).toAlignedRect());
}

void TimelineWidget::setHourMarks(QList<RulerMark> marks)
{
    m_hourMarks = std::move(marks);
    update();
}

void TimelineWidget::setFindState(std::optional<QList<qsizetype>> matches,
                                  std::optional<qsizetype> current)
{
    const std::optional<qsizetype> previous = m_findCurrent;
    m_findCurrent = current;
    if (previous)
        invalidateBox(*previous);
    if (current)
        invalidateBox(*current);
    std::optional<QSet<qsizetype>> matching;
    if (matches)
        matching = QSet<qsizetype>(matches->cbegin(), matches->cend());
    if (matching != m_findMatches) {
        m_findMatches = std::move(matching);
        update();
    }
}

std::optional<qsizetype> TimelineWidget::boxAt(QPointF point) const
{
    // Later boxes are painted over earlier ones, so the last hit is the one seen.
    for (qsizetype i = m_boxes.size() - 1; i >= 0; --i)
        if (m_boxes.at(i).rect.contains(point))
            return i;
    return std::nullopt;
}

QRectF TimelineWidget::copyButtonRect(qsizetype box) const
{
    return EventBoxGeometry::copyButtonRect(m_boxes.at(box).rect, EventBoxPainter::copyButtonSize);
}

std::optional<qsizetype> TimelineWidget::copyButtonAt(QPointF point) const
{
    const std::optional<qsizetype> box = boxAt(point);
    if (!box || !m_boxes.at(*box).event().chatLink)
        return std::nullopt;
    const QRectF button = copyButtonRect(*box).intersected(m_boxes.at(*box).rect);
    return button.contains(point) ? box : std::nullopt;
}

QColor TimelineWidget::veil(float opacity) const
{
    QColor colour = palette().color(QPalette::Window);
    colour.setAlphaF(opacity);
    return colour;
}

EventBoxPainter::State TimelineWidget::stateOf(qsizetype index) const
{
    EventBoxPainter::State state;
    if (m_hoveredButton == index)
        state.button = m_pressedButton == index ? EventBoxPainter::Button::Pressed
                                                : EventBoxPainter::Button::Hovered;
    if ((hasFocus() && m_currentBox == index) || m_findCurrent == index)
        state.focusRing = palette().color(QPalette::Highlight);
    state.marked = isMarked(index);
    return state;
}

void TimelineWidget::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF exposed = event->rect();
    m_painter.setFont(font());
    m_painter.setDevicePixelRatio(devicePixelRatioF());
    m_painter.setBackground(palette().color(QPalette::Window));

    if (!m_hourMarks.isEmpty()) {
        QColor faint = palette().color(QPalette::WindowText);
        faint.setAlphaF(0.08F);
        for (const RulerMark &mark :
             marksBetween(m_hourMarks, exposed.left() - 1, exposed.right() + 1))
            if (mark.hour)
                painter.fillRect(QRectF(mark.x, exposed.top(), 1.0, exposed.height()), faint);
    }
    if (m_dayEndX && exposed.intersects(QRectF(*m_dayEndX - 1, 0, 200, height()))) {
        QColor faint = palette().color(QPalette::WindowText);
        faint.setAlphaF(0.35F);
        painter.fillRect(QRectF(*m_dayEndX - 1, 0, 1.0, height()), faint);
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(QPointF(*m_dayEndX + 4, QFontMetricsF(font()).ascent() + 3), m_nextDay);
    }
    if (m_markerX) {
        painter.fillRect(QRectF(*m_markerX, 0, 1.0, height()), Qt::red);
    }
    // The first paint draws straight away: nothing is cached yet, and a start should not wait
    // for pixmaps it may never reuse.
    for (qsizetype i = 0; i < m_boxes.size(); ++i) {
        const QRectF rect = m_boxes.at(i).rect;
        if (!rect.intersects(exposed) || rect.width() <= 0 || rect.height() <= 0)
            continue;
        if (m_paintedOnce)
            painter.drawPixmap(rect.topLeft(), boxPixmap(i));
        else
            m_painter.paint(painter, m_boxes.at(i), stateOf(i));
        if (m_findMatches && !m_findMatches->contains(i))
            painter.fillRect(rect, veil(0.75F));
    }
    m_paintedOnce = true;
    // What is over reads as over: a veil in the window's own colour, lighter in a light theme
    // and darker in a dark one, up to the marker.
    if (m_markerX)
        painter.fillRect(pastVeil(*m_markerX, height()).intersected(exposed), veil(0.45F));
}

const QPixmap &TimelineWidget::boxPixmap(qsizetype index)
{
    if (const QPixmap *cached = m_boxPixmaps.object(index))
        return *cached;
    const QRectF rect = m_boxes.at(index).rect;
    const qreal ratio = devicePixelRatioF();
    auto *pixmap = new QPixmap((rect.size() * ratio).toSize().expandedTo(QSize(1, 1)));
    pixmap->setDevicePixelRatio(ratio);
    pixmap->fill(Qt::transparent);
    QPainter painter(pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-rect.topLeft());
    m_painter.paint(painter, m_boxes.at(index), stateOf(index));
    painter.end();
    const qsizetype kilobytes =
        std::max<qsizetype>(1, qsizetype{pixmap->width()} * pixmap->height() * 4 / 1024);
    // A box larger than the whole cache is drawn from a pixmap that is not kept.
    if (!m_boxPixmaps.insert(index, pixmap, kilobytes)) {
        m_uncached = *pixmap;
        delete pixmap;
        return m_uncached;
    }
    return *m_boxPixmaps.object(index);
}

void TimelineWidget::invalidateBox(qsizetype index)
{
    m_boxPixmaps.remove(index);
    update(m_boxes.at(index).rect.toAlignedRect());
}

void TimelineWidget::setHovered(std::optional<qsizetype> button)
{
    if (button == m_hoveredButton)
        return;
    if (m_hoveredButton)
        invalidateBox(*m_hoveredButton);
    m_hoveredButton = button;
    if (button) {
        invalidateBox(*button);
        setCursor(Qt::PointingHandCursor);
    } else {
        unsetCursor();
    }
}

void TimelineWidget::mouseMoveEvent(QMouseEvent *event)
{
    setHovered(copyButtonAt(event->position()));
    QWidget::mouseMoveEvent(event);
}

void TimelineWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        // A click moves the focus ring to the box under it; the box is in view already.
        if (const std::optional<qsizetype> box = boxAt(event->position()))
            setCurrent(*box, Reveal::No);
        if (const std::optional<qsizetype> button = copyButtonAt(event->position())) {
            m_pressedButton = button;
            invalidateBox(*button);
            return;
        }
    }
    QWidget::mousePressEvent(event);
}

void TimelineWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_pressedButton) {
        const qsizetype pressed = *m_pressedButton;
        m_pressedButton.reset();
        invalidateBox(pressed);
        // Like a push button: it acts when released over the button it was pressed on.
        if (copyButtonAt(event->position()) == pressed)
            Q_EMIT copyRequested(pressed);
        return;
    }
    QWidget::mouseReleaseEvent(event);
}

void TimelineWidget::leaveEvent(QEvent *event)
{
    setHovered(std::nullopt);
    QWidget::leaveEvent(event);
}

void TimelineWidget::setCurrentBox(qsizetype box)
{
    setCurrent(box, Reveal::Yes);
}

void TimelineWidget::setCurrent(qsizetype box, Reveal reveal)
{
    if (box < 0 || box >= m_boxes.size())
        return;
    const std::optional<qsizetype> previous = m_currentBox;
    m_currentBox = box;
    if (previous != box) {
        // The ring is part of a box's cached picture.
        if (previous)
            invalidateBox(*previous);
        invalidateBox(box);
        if (hasFocus())
            notifyAccessibleFocus();
    }
    if (reveal == Reveal::Yes)
        Q_EMIT revealRequested(box);
}

void TimelineWidget::pressCopyButton(qsizetype box)
{
    if (box >= 0 && box < m_boxes.size() && m_boxes.at(box).event().chatLink)
        Q_EMIT copyRequested(box);
}

void TimelineWidget::setDayEnd(double x, const QString &nextDay)
{
    m_dayEndX = x;
    m_nextDay = nextDay;
    update();
}

void TimelineWidget::setMarkedNames(const QSet<QString> &names)
{
    if (names == m_markedNames)
        return;
    // Only the boxes whose bell comes or goes are drawn again.
    for (qsizetype i = 0; i < m_boxes.size(); ++i) {
        const QString &name = m_boxes.at(i).event().name;
        if (names.contains(name) != m_markedNames.contains(name))
            invalidateBox(i);
    }
    m_markedNames = names;
}

bool TimelineWidget::isMarked(qsizetype box) const
{
    return m_markedNames.contains(m_boxes.at(box).event().name);
}

void TimelineWidget::contextMenuEvent(QContextMenuEvent *event)
{
    std::optional<qsizetype> box;
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Mouse) {
        box = boxAt(event->pos());
        if (box)
            setCurrent(*box, Reveal::No);
    } else if (m_currentBox) {
        // From the keyboard: the menu opens on the focused box.
        box = m_currentBox;
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
    // Qt drops the notification at once while no assistive technology is listening.
    if (!m_currentBox)
        return;
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild(static_cast<int>(*m_currentBox));
    QAccessible::updateAccessibility(&event);
}

std::optional<qsizetype> TimelineWidget::entryBox() const
{
    // Keyboard users start where the day stands, without the timetable jumping away from what
    // they see.
    const QRectF visible = visibleRegion().boundingRect();
    const double x = m_markerX.value_or(visible.isEmpty() ? 0.0 : visible.left());
    return m_navigation.entryBox(visible.top(), visible.bottom(), x);
}

void TimelineWidget::keyPressEvent(QKeyEvent *event)
{
    if (m_boxes.isEmpty()) {
        QWidget::keyPressEvent(event);
        return;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool copy = event->matches(QKeySequence::Copy) || (enter && modifiers == Qt::NoModifier);
    const bool move = modifiers == Qt::NoModifier &&
                      (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right ||
                       event->key() == Qt::Key_Up || event->key() == Qt::Key_Down ||
                       event->key() == Qt::Key_Home || event->key() == Qt::Key_End);
    const bool mark = modifiers == Qt::NoModifier && event->key() == Qt::Key_R;
    if (!copy && !move && !mark) {
        QWidget::keyPressEvent(event);
        return;
    }
    // Taken here even where nothing moves (at the end of a row): the scroll areas around would
    // otherwise scroll on the same key and leave the ring behind.
    event->accept();
    if (!m_currentBox) {
        // The first key shows where the ring is before it moves or copies anything.
        if (const std::optional<qsizetype> box = entryBox())
            setCurrent(*box, Reveal::Yes);
        return;
    }
    if (copy) {
        pressCopyButton(*m_currentBox);
        return;
    }
    if (mark) {
        Q_EMIT markToggleRequested(*m_currentBox);
        return;
    }
    if (const std::optional<qsizetype> target = m_navigation.target(*m_currentBox, event->key()))
        setCurrent(*target, Reveal::Yes);
}

void TimelineWidget::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    if (m_currentBox) {
        invalidateBox(*m_currentBox);
        // Announced after the timeline itself has been announced as focused.
        QMetaObject::invokeMethod(this, &TimelineWidget::notifyAccessibleFocus,
                                  Qt::QueuedConnection);
        if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
            Q_EMIT revealRequested(*m_currentBox);
        return;
    }
    // A click puts the ring on the box it hits; the keyboard starts near the present time.
    if (event->reason() == Qt::MouseFocusReason)
        return;
    if (const std::optional<qsizetype> box = entryBox()) {
        setCurrent(*box, Reveal::Yes);
        QMetaObject::invokeMethod(this, &TimelineWidget::notifyAccessibleFocus,
                                  Qt::QueuedConnection);
    }
}

void TimelineWidget::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    if (m_currentBox)
        invalidateBox(*m_currentBox);
}

QVariant TimelineWidget::inputMethodQuery(Qt::InputMethodQuery query) const
{
    // A scroll area that gives the focus to the timeline scrolls to this rectangle. Without it,
    // it would try to show the whole day and jump to its middle.
    if (query == Qt::ImCursorRectangle) {
        if (m_currentBox)
            return m_boxes.at(*m_currentBox).rect.toAlignedRect();
        const QRect visible = visibleRegion().boundingRect();
        return QRect(visible.topLeft(), QSize(1, 1));
    }
    return QWidget::inputMethodQuery(query);
}

void TimelineWidget::changeEvent(QEvent *event)
{
    // A new theme or font: every box is drawn anew.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        m_painter.clear();
        m_boxPixmaps.clear();
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
    if (event->type() == QEvent::ToolTip) {
        auto *help = static_cast<QHelpEvent *>(event);
        const QPointF point = help->pos();
        if (const std::optional<qsizetype> button = copyButtonAt(point)) {
            QToolTip::showText(help->globalPos(),
                               plainToolTip(*m_boxes.at(*button).event().chatLink), this,
                               copyButtonRect(*button).toAlignedRect());
        } else if (const std::optional<qsizetype> box = boxAt(point)) {
            const EventBoxGeometry &geometry = m_boxes.at(*box);
            QToolTip::showText(help->globalPos(), plainToolTip(boxDetails(*box)), this,
                               geometry.rect.toAlignedRect());
        } else {
            QToolTip::hideText();
            event->ignore();
        }
        return true;
    }
    return QWidget::event(event);
}

} // namespace eventtimer
