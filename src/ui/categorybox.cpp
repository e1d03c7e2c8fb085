#include "ui/categorybox.h"

#include <QPainter>

namespace eventtimer {

CategoryBox::CategoryBox(const QString &title, QWidget *parent)
    : QGroupBox(title, parent)
{}

void CategoryBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QFontMetrics metrics = fontMetrics();
    const int titleHeight = metrics.height();

    // The frame starts at the middle of the title, which sits on it near the left.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Mid), 1.0));
    painter.setBrush(palette().color(QPalette::Window).darker(104));
    const QRectF frame = QRectF(rect()).adjusted(0.5, titleHeight / 2.0, -0.5, -0.5);
    painter.drawRoundedRect(frame, 4, 4);

    const QString text = metrics.elidedText(title(), Qt::ElideRight, width() - 16);
    const QRect titleRect(6, 0, metrics.horizontalAdvance(text) + 4, titleHeight);
    painter.fillRect(titleRect, palette().color(QPalette::Window));
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(titleRect, Qt::AlignCenter | Qt::TextSingleLine, text);
}

} // namespace eventtimer
