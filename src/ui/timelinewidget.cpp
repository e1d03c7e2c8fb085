#include "timelinewidget.h"

#include "event.h"
#include "layoutconstants.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

constexpr double cornerRadius = 4.0;

// The name and time carry a soft white halo, so they read on any fill colour.
void drawHaloText(QPainter &painter, const QRectF &rect, int flags, const QString &text)
{
    painter.setPen(QColor(255, 255, 255, 150));
    for (const QPointF offset : {QPointF(-1, 0), QPointF(1, 0), QPointF(0, -1), QPointF(0, 1)})
        painter.drawText(rect.translated(offset), flags, text);
    painter.setPen(Qt::black);
    painter.drawText(rect, flags, text);
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
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
}

void TimelineWidget::setBoxes(QList<EventBoxGeometry> boxes)
{
    m_boxes = std::move(boxes);
    m_elidedNames = QList<std::optional<QString>>(m_boxes.size());
    m_icons.clear();
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

const QString &TimelineWidget::elidedName(qsizetype index)
{
    std::optional<QString> &name = m_elidedNames[index];
    if (!name) {
        const QRectF box = m_boxes.at(index).rect;
        const int width = static_cast<int>(box.width() - 2 * LayoutConstants::boxMargin);
        name = fontMetrics().elidedText(m_boxes.at(index).event().name, Qt::ElideRight,
                                        std::max(width, 0));
    }
    return *name;
}

void TimelineWidget::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF exposed = event->rect();

    if (m_markerX) {
        painter.fillRect(QRectF(*m_markerX, 0, 1.0, height()), Qt::red);
    }
    for (qsizetype i = 0; i < m_boxes.size(); ++i)
        if (m_boxes.at(i).rect.intersects(exposed))
            paintBox(painter, i);
}

void TimelineWidget::paintBox(QPainter &painter, qsizetype index)
{
    const EventBoxGeometry &box = m_boxes.at(index);
    const Event &event = box.event();
    const QRectF rect = box.rect;
    if (rect.width() <= 0 || rect.height() <= 0)
        return;

    // A groove: a dark outer line with a light one inside it.
    painter.setPen(QPen(QColor(0, 0, 0, 110), 1.0));
    painter.setBrush(event.backgroundColor.toQColor());
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    painter.setPen(QPen(QColor(255, 255, 255, 120), 1.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(1.5, 1.5, -1.5, -1.5), cornerRadius - 1,
                            cornerRadius - 1);

    painter.save();
    painter.setClipRect(rect);
    const QFontMetricsF metrics(font());
    const double textHeight = metrics.height();
    drawHaloText(painter, EventBoxGeometry::nameRect(rect, textHeight),
                 Qt::AlignLeft | Qt::AlignTop, elidedName(index));
    drawHaloText(
        painter,
        EventBoxGeometry::timeRect(rect, metrics.horizontalAdvance(box.startText) + 1, textHeight),
        Qt::AlignLeft | Qt::AlignBottom, box.startText);

    if (event.icon && !event.icon->isNull()) {
        const QPixmap &icon = iconOf(event);
        painter.setOpacity(0.5);
        painter.drawPixmap(EventBoxGeometry::iconRect(rect, icon.deviceIndependentSize()), icon,
                           icon.rect());
        painter.setOpacity(1.0);
    }

    if (event.chatLink) {
        const QRectF button = copyButtonRect(index);
        const bool hovered = m_hoveredButton == index;
        const bool pressed = m_pressedButton == index && hovered;
        painter.setPen(QPen(QColor(0, 0, 0, 120), 1.0));
        painter.setBrush(pressed   ? QColor(200, 200, 200)
                         : hovered ? QColor(255, 255, 255)
                                   : QColor(255, 255, 255, 200));
        painter.drawRoundedRect(button.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
        drawCopyGlyph(painter, button);
    }
    painter.restore();
}

void TimelineWidget::setHovered(std::optional<qsizetype> button)
{
    if (button == m_hoveredButton)
        return;
    if (m_hoveredButton)
        update(copyButtonRect(*m_hoveredButton).toAlignedRect().adjusted(-1, -1, 1, 1));
    m_hoveredButton = button;
    if (button) {
        update(copyButtonRect(*button).toAlignedRect().adjusted(-1, -1, 1, 1));
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
        if (const std::optional<qsizetype> button = copyButtonAt(event->position())) {
            m_pressedButton = button;
            update(copyButtonRect(*button).toAlignedRect().adjusted(-1, -1, 1, 1));
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
        update(copyButtonRect(pressed).toAlignedRect().adjusted(-1, -1, 1, 1));
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
