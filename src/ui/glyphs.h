#pragma once

#include <QIcon>
#include <QRectF>

#include <functional>

class QPainter;

namespace eventtimer {

// The small signs the timetable draws itself, the same in a box and in a list.

// Two overlapping sheets: the usual sign for "copy", centred in button.
void drawCopyGlyph(QPainter &painter, const QRectF &button);
// A small bell filling frame, dark with a light halo, or light with a dark one on dark fills.
void drawBell(QPainter &painter, const QRectF &frame, bool onDark);

// An icon of size points at the screen's ratio, drawn by draw into its whole rectangle.
QIcon glyphIcon(QSize size, qreal ratio,
                const std::function<void(QPainter &, const QRectF &)> &draw);

} // namespace eventtimer
