#pragma once

#include "timetable/boxindex.h"

#include "ui/eventboxpainter.h"
#include "ui/timelinestate.h"

#include <QCache>
#include <QColor>
#include <QPixmap>
#include <QRectF>
#include <QRegion>

#include <optional>
#include <utility>

class QPainter;
class QWidget;

namespace eventtimer {

// Paints the time axis in layers: the faint hour lines, the day's end with the next day's
// date, the current-time marker, the boxes (find's veil over those that do not match), and
// over them all the veil of the past up to the marker.
//
// The layers are drawn once into tiles that later paints copy: scrolling back and forth costs
// a copy of the pixels shown, whatever the day holds. What changes (a box's button, ring or
// bell, the marker's minute) drops the tiles it touches, which are drawn anew when next shown.
class TimelineRenderer
{
public:
    // The widget painted on: its colours, font, pixel ratio, height and focus.
    explicit TimelineRenderer(const QWidget &surface);

    // Paints the part of the axis that is exposed.
    void paint(QPainter &painter, const QRectF &exposed, const QList<EventBoxGeometry> &boxes,
               const TimelineState &state);

    // What lies in an area changed (a box's button, ring or bell): drawn anew there.
    void invalidate(const QRectF &area);
    // The marker stands where the state says now: returns what that changes on screen (its
    // old and new place, and where the veil of the past changed), which is drawn anew.
    QRegion markerMoved(const QList<EventBoxGeometry> &boxes, const TimelineState &state);
    // The whole axis is drawn anew: new boxes, hour marks, find, size.
    void invalidateAll();
    // A new theme or font as well: the boxes' texts and pictures are made anew.
    void clear();

    // The boxes painted without their icon, which was still to be decoded, since the last call.
    bool awaitsIcons() const { return !m_awaitingIcons.isEmpty(); }
    QList<qsizetype> takeAwaitingIcons() { return std::exchange(m_awaitingIcons, {}); }

private:
    // A tile's side in device pixels: a few hundred tiles cover a large screen.
    static constexpr int tileSize = 256;

    void paintLayers(QPainter &painter, const QRectF &area, const QList<EventBoxGeometry> &boxes,
                     const TimelineState &state);
    void paintHourLines(QPainter &painter, const QRectF &area, const QList<RulerMark> &marks) const;
    void paintDayEnd(QPainter &painter, double x, const QString &nextDay) const;
    EventBoxPainter::State lookOf(const QList<EventBoxGeometry> &boxes, const TimelineState &state,
                                  qsizetype index) const;
    QColor veil(float opacity) const;
    // The veil of the past for the marker's place and the axis's height, made when either
    // changed otherwise than by markerMoved.
    void followVeil(const QList<EventBoxGeometry> &boxes, const TimelineState &state);
    // The tiles an area of the axis touches, in device pixels' columns and rows.
    QRect tilesOf(const QRectF &area) const;
    const QPixmap &tile(QPoint at, const QList<EventBoxGeometry> &boxes,
                        const TimelineState &state);

    const QWidget &m_surface;
    QRegion m_veil;
    std::optional<std::pair<double, double>> m_veilAt;
    EventBoxPainter m_painter;
    // Which boxes a paint asks for, made again for new boxes.
    BoxIndex m_index;
    std::pair<const EventBoxGeometry *, qsizetype> m_indexed;
    // Tiles by column and row, counted in tiles; the bound grows with the largest area shown.
    QCache<quint64, QPixmap> m_tiles{64};
    qreal m_tileRatio = 0.0;
    bool m_paintedOnce = false;
    QList<qsizetype> m_awaitingIcons;
};

} // namespace eventtimer
