#include "ui/glyphs.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace eventtimer {

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

void drawBell(QPainter &painter, const QRectF &frame, bool onDark)
{
    const double w = frame.width();
    const double h = frame.height();
    QPainterPath bell;
    bell.moveTo(frame.left() + 0.1 * w, frame.top() + 0.78 * h);
    bell.cubicTo(frame.left() + 0.25 * w, frame.top() + 0.6 * h, frame.left() + 0.15 * w,
                 frame.top() + 0.1 * h, frame.center().x(), frame.top() + 0.1 * h);
    bell.cubicTo(frame.right() - 0.15 * w, frame.top() + 0.1 * h, frame.right() - 0.25 * w,
                 frame.top() + 0.6 * h, frame.right() - 0.1 * w, frame.top() + 0.78 * h);
    bell.closeSubpath();
    bell.addEllipse(QPointF(frame.center().x(), frame.top() + 0.88 * h), 0.12 * w, 0.1 * h);
    painter.setPen(QPen(onDark ? QColor(0, 0, 0, 170) : QColor(255, 255, 255, 200), 1.5));
    painter.setBrush(onDark ? Qt::white : Qt::black);
    painter.drawPath(bell);
}

QIcon glyphIcon(QSize size, qreal ratio,
                const std::function<void(QPainter &, const QRectF &)> &draw)
{
    QPixmap pixmap(size * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter, QRectF(QPointF(), QSizeF(size)));
    painter.end();
    return QIcon(pixmap);
}

} // namespace eventtimer
