#pragma once

#include <QRectF>

namespace eventtimer {

// Where the two scroll areas go so that the box with the keyboard's focus ring (or find's
// current match) is in view, with room around it for the ring. Each answer is the scroll
// bar's new value; a box already in view leaves it where it is.
class RevealScroll
{
public:
    // One scroll bar: where it stands, how much of the content its viewport shows, and how far
    // it goes.
    struct Axis
    {
        int value = 0;
        int visible = 0;
        int maximum = 0;
    };

    // Room around the box, so that its focus ring does not touch the edge of the view.
    static constexpr double padding = 8.0;

    // Sideways, over the time axis: as much of the box as the view holds. A box that shows
    // that much already stays where it is, even a long one seen only in its middle; otherwise
    // its start comes into view, where its name and time are.
    static int sideways(const QRectF &box, Axis axis);
    // Up and down, over the timetable: the whole box, its top given in the timetable's
    // coordinates.
    static int upright(int top, double height, Axis axis);

private:
    // The least scroll that shows a point with a margin on either side of it.
    static int showPoint(int point, int margin, Axis axis);
};

} // namespace eventtimer
