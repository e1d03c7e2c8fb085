#pragma once

#include <QtGlobal>

namespace eventtimer {

// The constants every position of the timetable derives from, in layout points.
struct LayoutConstants
{
    // Gap between category boxes, and above the first; a category box is twice this narrower
    // than the column of section names. Also the running height's start value.
    static constexpr double categoryDistance = 7.0;
    // Gap between section labels, and below a category's last label; part of a row's height.
    static constexpr double sectionDistance = 40.0;
    // Room for a category box's title above its first label.
    static constexpr double boxTitleHeight = 12.0;
    // Inner margin of category boxes, section labels and event boxes.
    static constexpr double boxMargin = 5.0;
    // Gap after each event box and around its labels; the clock label's distance from the
    // marker and from the top of the time axis.
    static constexpr double eventDistance = 3.0;
    // Points per minute on the time axis.
    static constexpr qint64 minutesMultiplier = 10;
    // The copy button's distance from an event box's bottom and right edges, and its size.
    static constexpr double copyButtonInset = 6.0;
    static constexpr double copyButtonWidth = 20.0;
    static constexpr double copyButtonHeight = 18.0;
};

// The window around the timetable: the sizes the rules above leave open, in pixels.
struct WindowConstants
{
    // The section column is as wide as its longest name or category title needs, within
    // these bounds.
    static constexpr int minSectionColumnWidth = 160;
    static constexpr int maxSectionColumnWidth = 320;
    // Room a category's title needs beside its text: it sits on the box's frame, inset.
    static constexpr int categoryTitleRoom = 20;
    // Slack beyond the widest name, so that no name touches its box's frame.
    static constexpr int sectionColumnSlack = 8;
    // The clipboard message's distance from the window's bottom edge.
    static constexpr int clipboardMessageBottom = 24;
};

} // namespace eventtimer
