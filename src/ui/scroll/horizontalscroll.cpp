#include "ui/scroll/horizontalscroll.h"

#include <QCoreApplication>
#include <QKeyEvent>
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
    if (event->modifiers() & Qt::ShiftModifier) {
        scrollRows(event);
        return;
    }
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

void HorizontalScroll::keyPressEvent(QKeyEvent *event)
{
    // This area has no rows of its own to page through; the enclosing one has.
    if (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown) {
        event->ignore();
        return;
    }
    QScrollArea::keyPressEvent(event);
}

void HorizontalScroll::scrollRows(QWheelEvent *event)
{
    QWidget *outer = parentWidget();
    while (outer && !qobject_cast<QAbstractScrollArea *>(outer))
        outer = outer->parentWidget();
    if (!outer) {
        event->ignore();
        return;
    }
    // Whichever way a desktop turns a wheel with Shift held, its turn moves the rows, a step at a
    // time as without Shift.
    const auto upright = [](QPoint delta) {
        return QPoint(0, std::abs(delta.y()) >= std::abs(delta.x()) ? delta.y() : delta.x());
    };
    QWheelEvent rows(event->position(), event->globalPosition(), upright(event->pixelDelta()),
                     upright(event->angleDelta()), event->buttons(),
                     event->modifiers() & ~Qt::ShiftModifier, event->phase(), event->inverted(),
                     event->source(), event->pointingDevice());
    QCoreApplication::sendEvent(static_cast<QAbstractScrollArea *>(outer)->verticalScrollBar(),
                                &rows);
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
