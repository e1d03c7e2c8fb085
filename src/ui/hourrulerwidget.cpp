#include "ui/hourrulerwidget.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace eventtimer {

namespace {

constexpr double hourTick = 7.0;
constexpr double quarterTick = 3.0;

} // namespace

HourRulerWidget::HourRulerWidget(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void HourRulerWidget::setMarks(QList<RulerMark> marks)
{
    m_marks = std::move(marks);
    update();
}

void HourRulerWidget::setScroll(int x)
{
    if (x != m_scroll) {
        m_scroll = x;
        update();
    }
}

QSize HourRulerWidget::sizeHint() const
{
    return QSize(100, fontMetrics().height() + static_cast<int>(hourTick) + 4);
}

void HourRulerWidget::paintEvent(QPaintEvent *event)
{
    if (m_marks.isEmpty())
        return;
    QPainter painter(this);
    const QRectF exposed = event->rect();
    const QFontMetricsF metrics(font());
    const double bottom = height() - 0.5;
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(QPointF(exposed.left(), bottom), QPointF(exposed.right(), bottom));
    // Labels reach half their width beyond the exposed part.
    const double slack = metrics.horizontalAdvance(QStringLiteral("00:00"));
    for (const RulerMark &mark : marksBetween(m_marks, m_scroll + exposed.left() - slack,
                                              m_scroll + exposed.right() + slack)) {
        const double x = mark.x - m_scroll + 0.5;
        painter.setPen(palette().color(mark.hour ? QPalette::WindowText : QPalette::Mid));
        painter.drawLine(QPointF(x, bottom),
                         QPointF(x, bottom - (mark.hour ? hourTick : quarterTick)));
        if (!mark.hour)
            continue;
        // A label stands over its hour, and one that an edge would cut is kept whole inside the
        // ruler: cut, "20:00" would read "0:00".
        const double labelWidth = metrics.horizontalAdvance(mark.label);
        if (x + labelWidth / 2 <= 0 || x - labelWidth / 2 >= width())
            continue;
        const double left = std::max(0.0, std::min(x - labelWidth / 2, width() - labelWidth));
        painter.drawText(QPointF(left, bottom - hourTick - 2 - metrics.descent()), mark.label);
    }
}

} // namespace eventtimer
