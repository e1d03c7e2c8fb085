#include "timelinewidget.h"

#include "event.h"
#include "layoutconstants.h"
#include "timelineaccessible.h"

#include <QAccessible>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStaticText>
#include <QToolTip>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

constexpr double cornerRadius = 4.0;

// The name and time carry a soft white halo, so they read on any fill colour. Static texts
// are laid out once and then only placed.
void drawHaloText(QPainter &painter, QPointF topLeft, const QStaticText &text)
{
    painter.setPen(QColor(255, 255, 255, 170));
    painter.drawStaticText(topLeft + QPointF(-1, 0), text);
    painter.drawStaticText(topLeft + QPointF(1, 0), text);
    painter.setPen(Qt::black);
    painter.drawStaticText(topLeft, text);
}

QStaticText plainStaticText(const QString &text)
{
    QStaticText prepared(text);
    prepared.setTextFormat(Qt::PlainText);
    prepared.setPerformanceHint(QStaticText::AggressiveCaching);
    return prepared;
}

// Two overlapping sheets: the usual sign for "copy".
void drawCopyGlyph(QPainter &painter, const QRectF &button)
{
    const QRectF sheet(0, 0, button.width() * 0.38, button.height() * 0.45);
    const QPointF centre = button.center();
    const QRectF back =
        sheet.translated(centre.x() - sheet.width() * 0.75, centre.y() - sheet.height() * 0.75);
    const QRectF front = back.translated(sheet.width() * 0.5, sheet.height() * 0.5);
    painter.setPen(QPen(QColor(40, 40, 40), 1.2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(back, 1, 1);
    painter.setBrush(QColor(250, 250, 250));
    painter.drawRoundedRect(front, 1, 1);
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
    m_nameTexts = QList<std::optional<QStaticText>>(m_boxes.size());
    m_icons.clear();
    m_boxPixmaps.clear();
    m_currentBox.reset();
    m_hoveredButton.reset();
    m_pressedButton.reset();

    qsizetype rowCount = 0;
    for (const EventBoxGeometry &box : std::as_const(m_boxes))
        rowCount = std::max(rowCount, box.row + 1);
    m_rows = QList<QList<qsizetype>>(rowCount);
    for (qsizetype i = 0; i < m_boxes.size(); ++i)
        m_rows[m_boxes.at(i).row].append(i);
    m_placeInRow = QList<qsizetype>(m_boxes.size());
    for (QList<qsizetype> &row : m_rows) {
        // A row's occurrences follow each other, so this only guards the order, and it keeps
        // equal starts in build order.
        std::stable_sort(row.begin(), row.end(), [this](qsizetype a, qsizetype b) {
            return m_boxes.at(a).rect.left() < m_boxes.at(b).rect.left();
        });
        for (qsizetype place = 0; place < row.size(); ++place)
            m_placeInRow[row.at(place)] = place;
    }

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
    if (previous)
        update(QRectF(*previous, 0, 1, height()).toAlignedRect());
    update(QRectF(x, 0, 1, height()).toAlignedRect());
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
    return EventBoxGeometry::copyButtonRect(m_boxes.at(box).rect, copyButtonSize);
}

std::optional<qsizetype> TimelineWidget::copyButtonAt(QPointF point) const
{
    const std::optional<qsizetype> box = boxAt(point);
    if (!box || !m_boxes.at(*box).event().chatLink)
        return std::nullopt;
    const QRectF button = copyButtonRect(*box).intersected(m_boxes.at(*box).rect);
    return button.contains(point) ? box : std::nullopt;
}

const QPixmap &TimelineWidget::iconOf(const Event &event)
{
    auto it = m_icons.find(&event);
    if (it == m_icons.end())
        it = m_icons.insert(&event, QPixmap::fromImage(*event.icon));
    return it.value();
}

const QStaticText &TimelineWidget::nameText(qsizetype index)
{
    std::optional<QStaticText> &name = m_nameTexts[index];
    if (!name) {
        const QRectF box = m_boxes.at(index).rect;
        const int width = static_cast<int>(box.width() - 2 * LayoutConstants::boxMargin);
        name = plainStaticText(fontMetrics().elidedText(m_boxes.at(index).event().name,
                                                        Qt::ElideRight, std::max(width, 0)));
    }
    return *name;
}

const QPixmap &TimelineWidget::buttonPixmap(ButtonState state)
{
    // Every copy button looks the same: drawn once per state, then copied.
    QPixmap &pixmap = m_buttonPixmaps[static_cast<int>(state)];
    if (pixmap.isNull()) {
        const qreal ratio = devicePixelRatioF();
        pixmap = QPixmap((copyButtonSize * ratio).toSize());
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF button(QPointF(0, 0), copyButtonSize);
        painter.setPen(QPen(QColor(0, 0, 0, 120), 1.0));
        painter.setBrush(state == ButtonState::Pressed   ? QColor(200, 200, 200)
                         : state == ButtonState::Hovered ? QColor(255, 255, 255)
                                                         : QColor(255, 255, 255, 200));
        painter.drawRoundedRect(button.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
        drawCopyGlyph(painter, button);
    }
    return pixmap;
}

const QStaticText &TimelineWidget::timeText(const QString &text)
{
    auto it = m_timeTexts.find(text);
    if (it == m_timeTexts.end())
        it = m_timeTexts.insert(text, plainStaticText(text));
    return it.value();
}

void TimelineWidget::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF exposed = event->rect();

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
            paintBox(painter, i);
    }
    m_paintedOnce = true;
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
    painter.setFont(font());
    painter.translate(-rect.topLeft());
    paintBox(painter, index);
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

void TimelineWidget::paintBox(QPainter &painter, qsizetype index)
{
    const EventBoxGeometry &box = m_boxes.at(index);
    const Event &event = box.event();
    const QRectF rect = box.rect;

    // A groove: a dark outer line, and a light one inside it along the top and left.
    painter.setPen(QPen(QColor(0, 0, 0, 110), 1.0));
    painter.setBrush(event.backgroundColor.toQColor());
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    painter.setPen(QPen(QColor(255, 255, 255, 120), 1.0));
    painter.drawLine(QPointF(rect.left() + cornerRadius, rect.top() + 1.5),
                     QPointF(rect.right() - cornerRadius, rect.top() + 1.5));
    painter.drawLine(QPointF(rect.left() + 1.5, rect.top() + cornerRadius),
                     QPointF(rect.left() + 1.5, rect.bottom() - cornerRadius));

    painter.save();
    painter.setClipRect(rect);
    const QFontMetricsF metrics(font());
    const double textHeight = metrics.height();
    drawHaloText(painter, EventBoxGeometry::nameRect(rect, textHeight).topLeft(), nameText(index));
    const QStaticText &time = timeText(box.startText);
    drawHaloText(
        painter,
        EventBoxGeometry::timeRect(rect, time.size().width(), time.size().height()).topLeft(),
        time);

    if (event.icon && !event.icon->isNull()) {
        const QPixmap &icon = iconOf(event);
        painter.setOpacity(0.5);
        painter.drawPixmap(EventBoxGeometry::iconRect(rect, icon.deviceIndependentSize()), icon,
                           icon.rect());
        painter.setOpacity(1.0);
    }

    if (event.chatLink) {
        const bool hovered = m_hoveredButton == index;
        const bool pressed = m_pressedButton == index && hovered;
        painter.drawPixmap(copyButtonRect(index).topLeft(),
                           buttonPixmap(pressed   ? ButtonState::Pressed
                                        : hovered ? ButtonState::Hovered
                                                  : ButtonState::Normal));
    }

    if (hasFocus() && m_currentBox == index) {
        // The ring is drawn over everything in the box: a highlight-coloured line with a white
        // one inside it, so it stands out on light and dark fills alike.
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
        painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
        painter.setPen(QPen(Qt::white, 1.0));
        painter.drawRoundedRect(rect.adjusted(2.5, 2.5, -2.5, -2.5), cornerRadius - 1,
                                cornerRadius - 1);
    }
    painter.restore();
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

void TimelineWidget::notifyAccessibleFocus()
{
    // Qt drops the notification at once while no assistive technology is listening.
    if (!m_currentBox)
        return;
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild(static_cast<int>(*m_currentBox));
    QAccessible::updateAccessibility(&event);
}

qsizetype TimelineWidget::nearestInRow(qsizetype row, double x) const
{
    const QList<qsizetype> &boxes = m_rows.at(row);
    // The candidates are the last box starting at or before x and the one after it.
    const auto after =
        std::upper_bound(boxes.begin(), boxes.end(), x, [this](double value, qsizetype box) {
            return value < m_boxes.at(box).rect.left();
        });
    const auto distance = [this, x](qsizetype box) {
        const QRectF rect = m_boxes.at(box).rect;
        return x < rect.left() ? rect.left() - x : x > rect.right() ? x - rect.right() : 0.0;
    };
    if (after == boxes.begin())
        return *after;
    const qsizetype before = *(after - 1);
    if (after == boxes.end())
        return before;
    return distance(*after) < distance(before) ? *after : before;
}

std::optional<qsizetype> TimelineWidget::rowWithBoxes(qsizetype from, qsizetype step) const
{
    for (qsizetype row = from + step; row >= 0 && row < m_rows.size(); row += step)
        if (!m_rows.at(row).isEmpty())
            return row;
    return std::nullopt;
}

std::optional<qsizetype> TimelineWidget::initialBox() const
{
    // The box nearest to the present time, in the first row in view that has one: keyboard
    // users start where the day stands, without the timetable jumping away from what they see.
    const QRectF visible = visibleRegion().boundingRect();
    std::optional<qsizetype> first;
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        if (m_rows.at(row).isEmpty())
            continue;
        const QRectF rect = m_boxes.at(m_rows.at(row).first()).rect;
        const bool inView = rect.bottom() > visible.top() && rect.top() < visible.bottom();
        if (!first || inView)
            first = row;
        if (inView)
            break;
    }
    if (!first)
        return std::nullopt;
    const double x = m_markerX.value_or(visible.isEmpty() ? 0.0 : visible.left());
    return nearestInRow(*first, x);
}

std::optional<qsizetype> TimelineWidget::boxForKey(int key) const
{
    const qsizetype current = *m_currentBox;
    const qsizetype row = m_boxes.at(current).row;
    const QList<qsizetype> &boxes = m_rows.at(row);
    const qsizetype place = m_placeInRow.at(current);
    switch (key) {
    case Qt::Key_Left:
        return boxes.at(std::max<qsizetype>(place - 1, 0));
    case Qt::Key_Right:
        return boxes.at(std::min(place + 1, boxes.size() - 1));
    case Qt::Key_Home:
        return boxes.first();
    case Qt::Key_End:
        return boxes.last();
    case Qt::Key_Up:
    case Qt::Key_Down: {
        const std::optional<qsizetype> next = rowWithBoxes(row, key == Qt::Key_Up ? -1 : 1);
        if (!next)
            return current;
        return nearestInRow(*next, m_boxes.at(current).rect.center().x());
    }
    default:
        return std::nullopt;
    }
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
    if (!copy && !move) {
        QWidget::keyPressEvent(event);
        return;
    }
    // Taken here even where nothing moves (at the end of a row): the scroll areas around would
    // otherwise scroll on the same key and leave the ring behind.
    event->accept();
    if (!m_currentBox) {
        // The first key shows where the ring is before it moves or copies anything.
        if (const std::optional<qsizetype> box = initialBox())
            setCurrent(*box, Reveal::Yes);
        return;
    }
    if (copy) {
        pressCopyButton(*m_currentBox);
        return;
    }
    if (const std::optional<qsizetype> target = boxForKey(event->key()))
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
    if (const std::optional<qsizetype> box = initialBox()) {
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

bool TimelineWidget::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        auto *help = static_cast<QHelpEvent *>(event);
        const QPointF point = help->pos();
        if (const std::optional<qsizetype> button = copyButtonAt(point)) {
            QToolTip::showText(help->globalPos(), *m_boxes.at(*button).event().chatLink, this,
                               copyButtonRect(*button).toAlignedRect());
        } else if (const std::optional<qsizetype> box = boxAt(point)) {
            const EventBoxGeometry &geometry = m_boxes.at(*box);
            QToolTip::showText(help->globalPos(),
                               geometry.event().name + u" \u2014 "_s + geometry.startText, this,
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
