#pragma once

#include "timetable/timetablelayout.h"

#include <QList>

#include <optional>

namespace eventtimer {

// How the keyboard moves a focus ring between the event boxes of the time axis: left and
// right in time within a row, Home and End to the row's ends, up and down to the box of the
// nearest row with boxes that lies nearest the current box's middle.
class TimelineNavigation
{
public:
    // What a key does to the box with the ring: copy its chat link (Enter, Return, the copy
    // shortcut), set or remove its event's reminder mark (R), move the ring (the arrows, Home,
    // End), or nothing here. Keys held with modifiers do nothing but copy.
    enum class KeyAction
    {
        None,
        Copy,
        Mark,
        Move
    };
    static KeyAction actionOf(int key, Qt::KeyboardModifiers modifiers, bool copyShortcut);

    void setBoxes(const QList<EventBoxGeometry> &boxes);

    // The box of a row nearest to x: the one spanning it, else the one with the closest edge.
    qsizetype nearestInRow(qsizetype row, double x) const;

    // Where the ring goes when the keyboard enters without a current box: the box nearest x
    // in the first row whose boxes lie between top and bottom (what is in view), else in the
    // first row that has boxes. Absent without boxes.
    std::optional<qsizetype> entryBox(double top, double bottom, double x) const;

    // The box a key (Qt::Key_Left, _Right, _Up, _Down, _Home, _End) moves the ring to from
    // current; the same box where nothing lies further; absent for other keys.
    std::optional<qsizetype> target(qsizetype current, int key) const;

private:
    // The nearest row before or after a row that has boxes.
    std::optional<qsizetype> rowWithBoxes(qsizetype from, qsizetype step) const;

    QList<QRectF> m_rects;
    QList<qsizetype> m_rowOf;
    // Per row (section label index), its boxes in time order; per box, its place there.
    QList<QList<qsizetype>> m_rows;
    QList<qsizetype> m_placeInRow;
};

} // namespace eventtimer
