#include "ui/timelinerenderer.h"

#include "timetable/hourruler.h"
#include "timetable/pastveil.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace eventtimer {

namespace {

quint64 tileKey(QPoint at)
{
    return (quint64{static_cast<quint32>(at.x())} << 32) | static_cast<quint32>(at.y());
}

// Fills a rectangle in translucent colour in bands of at most 64 rows of pixels. Qt hands a
// fill of more rows to its thread pool, and for a thin line or a veil, waking the threads costs
// more than the fill. The bands meet at whole rows of pixels, so nothing is filled twice.
void fillInBands(QPainter &painter, const QRectF &rect, const QColor &colour)
{
    constexpr double rows = 64;
    const QTransform toDevice = painter.deviceTransform();
    const QTransform fromDevice = toDevice.inverted();
    const QRectF device = toDevice.mapRect(rect);
    double top = rect.top();
    for (double row = std::floor(device.top()) + rows; row < device.bottom(); row += rows) {
        const double bottom = fromDevice.map(QPointF(0, row)).y();
        painter.fillRect(QRectF(rect.left(), top, rect.width(), bottom - top), colour);
        top = bottom;
    }
    painter.fillRect(QRectF(rect.left(), top, rect.width(), rect.bottom() - top), colour);
}

} // namespace

TimelineRenderer::TimelineRenderer(const QWidget &surface)
    : m_surface(surface)
{}

void TimelineRenderer::clear()
{
    invalidateAll();
    m_painter.clear();
    m_awaitingIcons.clear();
}

void TimelineRenderer::invalidateAll()
{
    m_indexed = {};
    m_veilAt.reset();
    m_tiles.clear();
}

QRect TimelineRenderer::tilesOf(const QRectF &area) const
{
    const double scale = m_tileRatio / tileSize;
    const auto tileAt = [scale](double x, double y) {
        return QPoint(static_cast<int>(std::floor(std::max(0.0, x * scale))),
                      static_cast<int>(std::floor(std::max(0.0, y * scale))));
    };
    return QRect(tileAt(area.left(), area.top()), tileAt(area.right(), area.bottom()));
}

void TimelineRenderer::invalidate(const QRectF &area)
{
    if (m_tiles.isEmpty())
        return;
    // A pixel's width around it: what antialiasing lays on its edges.
    const QRect tiles = tilesOf(area.adjusted(-1, -1, 1, 1));
    for (int row = tiles.top(); row <= tiles.bottom(); ++row)
        for (int column = tiles.left(); column <= tiles.right(); ++column)
            m_tiles.remove(tileKey(QPoint(column, row)));
}

QRegion TimelineRenderer::markerMoved(const QList<EventBoxGeometry> &boxes,
                                      const TimelineState &state)
{
    const double height = m_surface.height();
    // Without a veil made for this height, the next paint makes it and draws everything anew.
    if (!m_veilAt || m_veilAt->second != height || !state.markerX())
        return QRegion(m_surface.rect());
    const double from = m_veilAt->first;
    const double to = *state.markerX();
    const QRegion veil = pastVeil(to, height, boxes);
    // The veil's change: the minutes between the two places, and the boxes that were running
    // and are over, or start now.
    QRegion changed = m_veil.xored(veil);
    changed += QRectF(from - 1, 0, 3, height).toAlignedRect();
    changed += QRectF(to - 1, 0, 3, height).toAlignedRect();
    m_veil = veil;
    m_veilAt = {to, height};
    for (const QRect &part : changed)
        invalidate(part);
    return changed;
}

void TimelineRenderer::followVeil(const QList<EventBoxGeometry> &boxes, const TimelineState &state)
{
    const std::optional<std::pair<double, double>> at =
        state.markerX()
            ? std::optional(std::pair(*state.markerX(), static_cast<double>(m_surface.height())))
            : std::nullopt;
    if (at == m_veilAt)
        return;
    m_veil = at ? pastVeil(at->first, at->second, boxes) : QRegion();
    m_veilAt = at;
    m_tiles.clear();
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
    const qreal ratio = m_surface.devicePixelRatioF();
    const QColor background = m_surface.palette().color(QPalette::Window);
    m_painter.setFont(m_surface.font());
    m_painter.setDevicePixelRatio(ratio);
    m_painter.setBackground(background);
    if (ratio != m_tileRatio) {
        m_tiles.clear();
        m_tileRatio = ratio;
    }
    if (boxes.constData() != m_indexed.first || boxes.size() != m_indexed.second) {
        m_index = BoxIndex(boxes);
        m_indexed = {boxes.constData(), boxes.size()};
        m_tiles.clear();
    }
    followVeil(boxes, state);

    // The first paint draws straight away: a start should not wait for tiles it may never
    // reuse.
    if (!m_paintedOnce) {
        m_paintedOnce = true;
        painter.fillRect(exposed, background);
        paintLayers(painter, exposed, boxes, state);
        return;
    }
    const QRect tiles = tilesOf(exposed);
    // Twice the tiles of the largest area shown: enough to scroll back and forth.
    m_tiles.setMaxCost(
        std::max(m_tiles.maxCost(), qsizetype{2} * (tiles.width() + 1) * (tiles.height() + 1)));
    // Copied pixel for pixel: in device pixels, where a tile is one.
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    for (int row = tiles.top(); row <= tiles.bottom(); ++row)
        for (int column = tiles.left(); column <= tiles.right(); ++column)
            painter.drawPixmap(QPoint(column, row) * tileSize,
                               tile(QPoint(column, row), boxes, state));
    painter.restore();
}

const QPixmap &TimelineRenderer::tile(QPoint at, const QList<EventBoxGeometry> &boxes,
                                      const TimelineState &state)
{
    const quint64 key = tileKey(at);
    if (const QPixmap *kept = m_tiles.object(key))
        return *kept;
    auto *pixmap = new QPixmap(tileSize, tileSize);
    pixmap->setDevicePixelRatio(m_tileRatio);
    // Opaque: a paint copies it instead of blending it.
    pixmap->fill(m_surface.palette().color(QPalette::Window));
    QPainter painter(pixmap);
    const QRectF area(QPointF(at) * tileSize / m_tileRatio,
                      QSizeF(tileSize, tileSize) / m_tileRatio);
    painter.translate(-area.topLeft());
    paintLayers(painter, area, boxes, state);
    painter.end();
    pixmap->setDevicePixelRatio(1.0);
    m_tiles.insert(key, pixmap);
    return *pixmap;
}

void TimelineRenderer::paintLayers(QPainter &painter, const QRectF &area,
                                   const QList<EventBoxGeometry> &boxes, const TimelineState &state)
{
    painter.setRenderHint(QPainter::Antialiasing);
    const double height = m_surface.height();
    paintHourLines(painter, area, state.hourMarks());
    if (state.dayEndX() && area.intersects(QRectF(*state.dayEndX() - 1, 0, 200, height)))
        paintDayEnd(painter, *state.dayEndX(), state.nextDay());
    // The marker runs behind the boxes.
    if (state.markerX())
        painter.fillRect(QRectF(*state.markerX(), 0, 1.0, height), Qt::red);
    for (const qsizetype i : m_index.boxesIn(boxes, area)) {
        if (!m_painter.paint(painter, boxes.at(i), lookOf(boxes, state, i)))
            m_awaitingIcons.append(i);
        if (!state.isFound(i))
            fillInBands(painter, boxes.at(i).rect, veil(0.75F));
    }
    // What is over reads as over: a veil in the window's own colour, lighter in a light theme
    // and darker in a dark one, up to the marker; the events on now stay clear.
    for (const QRect &part : m_veil &area.toAlignedRect())
        fillInBands(painter, part, veil(0.45F));
}

void TimelineRenderer::paintHourLines(QPainter &painter, const QRectF &area,
                                      const QList<RulerMark> &marks) const
{
    // Faint lines at the hours the ruler shows, behind the boxes.
    QColor faint = m_surface.palette().color(QPalette::WindowText);
    faint.setAlphaF(0.08F);
    for (const RulerMark &mark : marksBetween(marks, area.left() - 1, area.right() + 1))
        if (mark.hour)
            fillInBands(painter, QRectF(mark.x, area.top(), 1.0, area.height()), faint);
}

void TimelineRenderer::paintDayEnd(QPainter &painter, double x, const QString &nextDay) const
{
    const QPalette &palette = m_surface.palette();
    QColor faint = palette.color(QPalette::WindowText);
    faint.setAlphaF(0.35F);
    fillInBands(painter, QRectF(x - 1, 0, 1.0, m_surface.height()), faint);
    painter.setPen(palette.color(QPalette::PlaceholderText));
    painter.drawText(QPointF(x + 4, QFontMetricsF(m_surface.font()).ascent() + 3), nextDay);
}

} // namespace eventtimer
