#include "ui/eventboxpainter.h"

#include "model/event.h"
#include "timetable/layoutconstants.h"
#include "ui/glyphs.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

constexpr double cornerRadius = 4.0;

void drawHaloText(QPainter &painter, QPointF topLeft, const QStaticText &text, bool onDark)
{
    painter.setPen(onDark ? QColor(0, 0, 0, 170) : QColor(255, 255, 255, 170));
    painter.drawStaticText(topLeft + QPointF(-1, 0), text);
    painter.drawStaticText(topLeft + QPointF(1, 0), text);
    painter.setPen(onDark ? Qt::white : Qt::black);
    painter.drawStaticText(topLeft, text);
}

QStaticText plainStaticText(const QString &text)
{
    QStaticText prepared(text);
    prepared.setTextFormat(Qt::PlainText);
    prepared.setPerformanceHint(QStaticText::AggressiveCaching);
    return prepared;
}

} // namespace

bool EventBoxPainter::isDark(const QColor &fill, const QColor &background)
{
    const double alpha = fill.alphaF();
    const auto lay = [alpha](float front, float back) {
        return alpha * front + (1 - alpha) * back;
    };
    const double red = lay(fill.redF(), background.redF());
    const double green = lay(fill.greenF(), background.greenF());
    const double blue = lay(fill.blueF(), background.blueF());
    return 0.299 * red + 0.587 * green + 0.114 * blue < 0.5;
}

void EventBoxPainter::setFont(const QFont &font)
{
    if (font != m_font) {
        m_font = font;
        m_names.clear();
        m_times.clear();
    }
}

void EventBoxPainter::setDevicePixelRatio(qreal ratio)
{
    if (ratio != m_ratio) {
        m_ratio = ratio;
        m_icons.clear();
        for (QPixmap &button : m_buttons)
            button = QPixmap();
    }
}

void EventBoxPainter::clear()
{
    m_names.clear();
    m_times.clear();
    m_icons.clear();
}

const QStaticText &EventBoxPainter::nameText(const EventBoxGeometry &box, double reserved)
{
    const int width =
        std::max(0, static_cast<int>(box.rect.width() - 2 * LayoutConstants::boxMargin - reserved));
    const QString key = box.event().name + u'\n' + QString::number(width);
    auto it = m_names.find(key);
    if (it == m_names.end()) {
        const QFontMetrics metrics(m_font);
        it = m_names.insert(
            key, plainStaticText(metrics.elidedText(box.event().name, Qt::ElideRight, width)));
    }
    return it.value();
}

const QStaticText &EventBoxPainter::timeText(const QString &text)
{
    auto it = m_times.find(text);
    if (it == m_times.end())
        it = m_times.insert(text, plainStaticText(text));
    return it.value();
}

const QPixmap *EventBoxPainter::iconOf(const Event &event)
{
    auto it = m_icons.find(&event);
    if (it == m_icons.end()) {
        if (!event.icon->isDecoded())
            return nullptr;
        it = m_icons.insert(&event, QPixmap::fromImage(event.icon->image()));
    }
    return &it.value();
}

void EventBoxPainter::decodeIcon(const EventBoxGeometry &box)
{
    if (const std::optional<Icon> &icon = box.event().icon)
        icon->image();
}

const QPixmap &EventBoxPainter::buttonPixmap(Button state)
{
    // Every copy button looks the same: drawn once per state, then copied.
    QPixmap &pixmap = m_buttons[static_cast<int>(state)];
    if (pixmap.isNull()) {
        pixmap = QPixmap((copyButtonSize * m_ratio).toSize());
        pixmap.setDevicePixelRatio(m_ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF button(QPointF(0, 0), copyButtonSize);
        painter.setPen(QPen(QColor(0, 0, 0, 120), 1.0));
        painter.setBrush(state == Button::Pressed   ? QColor(200, 200, 200)
                         : state == Button::Hovered ? QColor(255, 255, 255)
                                                    : QColor(255, 255, 255, 200));
        painter.drawRoundedRect(button.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
        drawCopyGlyph(painter, button);
    }
    return pixmap;
}

bool EventBoxPainter::paint(QPainter &painter, const EventBoxGeometry &box, const State &state)
{
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
    painter.setFont(m_font);
    const bool onDark = isDark(event.backgroundColor.toQColor(), m_background);
    const double textHeight = QFontMetricsF(m_font).height();
    const QRectF nameRect = EventBoxGeometry::nameRect(rect, textHeight);
    const QStaticText &time = timeText(box.startText);
    drawHaloText(
        painter,
        EventBoxGeometry::timeRect(rect, time.size().width(), time.size().height()).topLeft(), time,
        onDark);

    // The icon at the right, where the box has room for it beside the time; the name and its
    // bell end before it. One still to be decoded has its room already: its header told its size.
    const QPixmap *icon = event.icon ? iconOf(event) : nullptr;
    const QSizeF iconSize = icon                                     ? icon->deviceIndependentSize()
                            : event.icon && !event.icon->isDecoded() ? QSizeF(event.icon->size())
                                                                     : QSizeF();
    const QRectF iconRect =
        iconSize.isEmpty() ? QRectF()
                           : EventBoxGeometry::iconRect(rect, iconSize, event.chatLink.has_value(),
                                                        time.size().width());
    if (icon && !iconRect.isEmpty()) {
        // Drawn from all the pixels the picture has, at the screen's own resolution.
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setOpacity(0.5);
        painter.drawPixmap(iconRect, *icon, icon->rect());
        painter.setOpacity(1.0);
    }
    const double iconRoom =
        iconRect.isEmpty() ? 0.0
                           : nameRect.right() - iconRect.left() + LayoutConstants::eventDistance;
    const double bellRoom = state.marked ? bellSize + LayoutConstants::eventDistance : 0.0;
    drawHaloText(painter, nameRect.topLeft(), nameText(box, iconRoom + bellRoom), onDark);
    if (state.marked)
        drawBell(painter,
                 QRectF(nameRect.right() - iconRoom - bellSize,
                        nameRect.center().y() - bellSize / 2, bellSize, bellSize),
                 onDark);

    if (event.chatLink)
        painter.drawPixmap(EventBoxGeometry::copyButtonRect(rect, copyButtonSize).topLeft(),
                           buttonPixmap(state.button));

    if (state.focusRing) {
        // Drawn over everything in the box: a highlight-coloured line with a white one inside
        // it, so it stands out on light and dark fills alike.
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(*state.focusRing, 2.0));
        painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
        painter.setPen(QPen(Qt::white, 1.0));
        painter.drawRoundedRect(rect.adjusted(2.5, 2.5, -2.5, -2.5), cornerRadius - 1,
                                cornerRadius - 1);
    }
    painter.restore();
    return !event.icon || icon;
}

} // namespace eventtimer
