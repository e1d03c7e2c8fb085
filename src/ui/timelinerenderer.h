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
class TimelineRenderer
{
public:
    // The widget painted on: its colours, font, pixel ratio, height and focus.
    explicit TimelineRenderer(const QWidget &surface);

    // Paints the part of the axis that is exposed.
    void paint(QPainter &painter, const QRectF &exposed, const QList<EventBoxGeometry> &boxes,
               const TimelineState &state);

    // A box's look changed (its button, ring, bell): it is drawn anew at its next paint.
    void invalidate(qsizetype box);
    // New boxes, a new theme or font: every box is drawn anew.
    void clear();

private:
    // A box is drawn once into a pixmap that later paints copy: scrolling back and forth and
    // each minute's marker move then cost a blit per box. Bounded to a few screens' worth.
    static constexpr qsizetype pixmapCacheKb = 12 * 1024;

    void paintHourLines(QPainter &painter, const QRectF &exposed,
                        const QList<RulerMark> &marks) const;
    void paintDayEnd(QPainter &painter, double x, const QString &nextDay) const;
    EventBoxPainter::State lookOf(const QList<EventBoxGeometry> &boxes, const TimelineState &state,
                                  qsizetype index) const;
    QColor veil(float opacity) const;
    const QPixmap &boxPixmap(const QList<EventBoxGeometry> &boxes, const TimelineState &state,
                             qsizetype index);

    const QWidget &m_surface;
    QRegion m_veil;
    std::optional<std::pair<double, double>> m_veilAt;
    EventBoxPainter m_painter;
    // Which boxes a paint asks for, made again for new boxes.
    BoxIndex m_index;
    std::pair<const EventBoxGeometry *, qsizetype> m_indexed;
    QCache<qsizetype, QPixmap> m_boxPixmaps{pixmapCacheKb};
    QPixmap m_uncached;
    bool m_paintedOnce = false;
};

} // namespace eventtimer
