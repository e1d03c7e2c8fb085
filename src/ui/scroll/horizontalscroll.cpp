#include "ui/scroll/horizontalscroll.h"

#include <QCoreApplication>
#include <QScrollBar>
#include <QWheelEvent>

#include <cstdlib>

namespace eventtimer {

HorizontalScroll::HorizontalScroll(QWidget *parent)
    : QScrollArea(parent)
{
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(false);
}

void HorizontalScroll::wheelEvent(QWheelEvent *event)
{
    // Only the first event of a gesture decides; its later and momentum events, and the events
    // of wheels that report no gestures at all, follow the latest decision.
    if (event->phase() == Qt::ScrollBegin) {
        // Pixel deltas are what a touchpad really moved; a plain wheel gives only angles.
        const QPoint delta =
            event->pixelDelta().isNull() ? event->angleDelta() : event->pixelDelta();
        m_currentScrollIsHorizontal = std::abs(delta.x()) > std::abs(delta.y());
    }
    if (!m_currentScrollIsHorizontal) {
        // Ignored, the event travels on to the enclosing vertical area.
        event->ignore();
        return;
    }
    scrollSideways(event);
    // The gesture belongs to this area, also where its edge stops it: the timetable around it
    // must not start moving half-way through a sideways swipe.
    event->accept();
}

void HorizontalScroll::scrollSideways(QWheelEvent *event)
{
    const QPoint angle = event->angleDelta();
    if (std::abs(angle.x()) > std::abs(angle.y())) {
        QScrollArea::wheelEvent(event);
        return;
    }
    // Qt would send an upright delta to the vertical bar, which this area never uses. Like the
    // platform's own sideways-only views, the upright part scrolls sideways instead: wheel down
    // moves later in the day.
    QWheelEvent upright(event->position(), event->globalPosition(),
                        QPoint(0, event->pixelDelta().y()), QPoint(0, angle.y()), event->buttons(),
                        event->modifiers(), event->phase(), event->inverted(), event->source(),
                        event->pointingDevice());
    QCoreApplication::sendEvent(horizontalScrollBar(), &upright);
}

} // namespace eventtimer
