#include "ui/boxreveal.h"

#include "timetable/revealscroll.h"
#include "ui/timelinewidget.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QtMath>

namespace eventtimer {

BoxReveal::BoxReveal(TimelineWidget *timeline, QScrollArea *sideways, QScrollArea *upright,
                     QObject *parent)
    : QObject(parent)
    , m_timeline(timeline)
    , m_sideways(sideways)
    , m_upright(upright)
{
    connect(timeline, &TimelineWidget::revealRequested, this, &BoxReveal::reveal);
}

void BoxReveal::reveal(qsizetype box)
{
    if (box < 0 || box >= m_timeline->boxes().size())
        return;
    const QRectF rect = m_timeline->boxes().at(box).rect;
    QScrollBar *sideways = m_sideways->horizontalScrollBar();
    sideways->setValue(RevealScroll::sideways(
        rect, {sideways->value(), m_sideways->viewport()->width(), sideways->maximum()}));
    // Up and down in the coordinates of the vertically scrolling content.
    const int top = m_timeline->mapTo(m_upright->widget(), QPoint(0, qFloor(rect.top()))).y();
    QScrollBar *upright = m_upright->verticalScrollBar();
    upright->setValue(RevealScroll::upright(
        top, rect.height(),
        {upright->value(), m_upright->viewport()->height(), upright->maximum()}));
}

} // namespace eventtimer
