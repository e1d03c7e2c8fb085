#include "ui/timelinerenderer.h"

#include "timetable/hourruler.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QWidget>

#include <algorithm>

namespace eventtimer {

TimelineRenderer::TimelineRenderer(const QWidget &surface)
    : m_surface(surface)
{}

void TimelineRenderer::clear()
{
    m_indexed = {};
    m_veilAt.reset();
    m_painter.clear();
    m_boxPixmaps.clear();
}

void TimelineRenderer::invalidate(qsizetype box)
{
    m_boxPixmaps.remove(box);
}

QColor TimelineRenderer::veil(float opacity) const
{
    QColor colour = m_surface.palette().color(QPalette::Window);
    colour.setAlphaF(opacity);
    return colour;
}

EventBoxPainter::State TimelineRenderer::lookOf(const QList<EventBoxGeometry> &boxes,
                                                const TimelineState &state, qsizetype index) const
{
    EventBoxPainter::State look;
    if (state.hoveredButton() == index)
        look.button = state.pressedButton() == index ? EventBoxPainter::Button::Pressed
                                                     : EventBoxPainter::Button::Hovered;
    if ((m_surface.hasFocus() && state.currentBox() == index) || state.findCurrent() == index)
        look.focusRing = m_surface.palette().color(QPalette::Highlight);
    look.marked = state.isMarked(boxes.at(index));
    return look;
}

void TimelineRenderer::paint(QPainter &painter, const QRectF &exposed,
                             const QList<EventBoxGeometry> &boxes, const TimelineState &state)
{
    painter.setRenderHint(QPainter::Antialiasing);
    const double height = m_surface.height();
    m_painter.setFont(m_surface.font());
    m_painter.setDevicePixelRatio(m_surface.devicePixelRatioF());
    m_painter.setBackground(m_surface.palette().color(QPalette::Window));
    // The box pictures kept cover twice what is exposed, at the screen's pixel ratio: enough
    // to scroll back and forth on any screen without drawing a box twice.
    const qreal ratio = m_surface.devicePixelRatioF();
    m_boxPixmaps.setMaxCost(std::max<qsizetype>(
        pixmapCacheKb,
        static_cast<qsizetype>(2 * exposed.width() * exposed.height() * ratio * ratio * 4 / 1024)));

    paintHourLines(painter, exposed, state.hourMarks());
    if (state.dayEndX() && exposed.intersects(QRectF(*state.dayEndX() - 1, 0, 200, height)))
        paintDayEnd(painter, *state.dayEndX(), state.nextDay());
    if (state.markerX())
        painter.fillRect(QRectF(*state.markerX(), 0, 1.0, height), Qt::red);
    // The first paint draws straight away: nothing is cached yet, and a start should not wait
    // for pixmaps it may never reuse.
    if (boxes.constData() != m_indexed.first || boxes.size() != m_indexed.second) {
        m_index = BoxIndex(boxes);
        m_indexed = {boxes.constData(), boxes.size()};
    }
    for (const qsizetype i : m_index.boxesIn(boxes, exposed)) {
        const QRectF &rect = boxes.at(i).rect;
        if (m_paintedOnce)
            painter.drawPixmap(rect.topLeft(), boxPixmap(boxes, state, i));
        else
            m_painter.paint(painter, boxes.at(i), lookOf(boxes, state, i));
        if (!state.isFound(i))
            painter.fillRect(rect, veil(0.75F));
    }
    m_paintedOnce = true;
    // What is over reads as over: a veil in the window's own colour, lighter in a light theme
    // and darker in a dark one, up to the marker; the events on now stay clear. Made once per
    // marker's place.
    if (state.markerX()) {
        if (m_veilAt != std::pair(*state.markerX(), height)) {
            m_veil = pastVeil(*state.markerX(), height, boxes);
            m_veilAt = {*state.markerX(), height};
        }
        for (const QRect &part : m_veil &exposed.toAlignedRect())
            painter.fillRect(part, veil(0.45F));
    }
}

void TimelineRenderer::paintHourLines(QPainter &painter, const QRectF &exposed,
                                      const QList<RulerMark> &marks) const
{
    // Faint lines at the hours the ruler shows, behind the boxes.
    QColor faint = m_surface.palette().color(QPalette::WindowText);
    faint.setAlphaF(0.08F);
    for (const RulerMark &mark : marksBetween(marks, exposed.left() - 1, exposed.right() + 1))
        if (mark.hour)
            painter.fillRect(QRectF(mark.x, exposed.top(), 1.0, exposed.height()), faint);
}

void TimelineRenderer::paintDayEnd(QPainter &painter, double x, const QString &nextDay) const
{
    const QPalette &palette = m_surface.palette();
    QColor faint = palette.color(QPalette::WindowText);
    faint.setAlphaF(0.35F);
    painter.fillRect(QRectF(x - 1, 0, 1.0, m_surface.height()), faint);
    painter.setPen(palette.color(QPalette::PlaceholderText));
    painter.drawText(QPointF(x + 4, QFontMetricsF(m_surface.font()).ascent() + 3), nextDay);
}

const QPixmap &TimelineRenderer::boxPixmap(const QList<EventBoxGeometry> &boxes,
                                           const TimelineState &state, qsizetype index)
{
    if (const QPixmap *cached = m_boxPixmaps.object(index))
        return *cached;
    const QRectF rect = boxes.at(index).rect;
    const qreal ratio = m_surface.devicePixelRatioF();
    auto *pixmap = new QPixmap((rect.size() * ratio).toSize().expandedTo(QSize(1, 1)));
    pixmap->setDevicePixelRatio(ratio);
    // Opaque, with what lies behind the box on the axis drawn in first (the window's colour,
    // the hour lines, the day's end): a paint then copies the box instead of blending it.
    pixmap->fill(m_surface.palette().color(QPalette::Window));
    QPainter painter(pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-rect.topLeft());
    paintHourLines(painter, rect, state.hourMarks());
    if (state.dayEndX())
        paintDayEnd(painter, *state.dayEndX(), state.nextDay());
    m_painter.paint(painter, boxes.at(index), lookOf(boxes, state, index));
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

} // namespace eventtimer
