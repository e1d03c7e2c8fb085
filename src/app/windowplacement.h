#pragma once

#include <QList>
#include <QRect>
#include <QSize>

namespace eventtimer {

// Where the window opens: its geometry, and whether it is placed there or only sized (a window
// without a remembered place is left where the desktop puts it).
struct WindowPlacement
{
    QRect geometry;
    bool placed = false;
};

// The window where it was last closed (saved; invalid on a first start), within the screens
// there are now (their available areas; the first is the one a window opens on by default).
// A place on a screen that is gone moves to the screen the window opens on; a size larger than
// the screen is cut to it and one smaller than minimum grows to it; whatever sticks out is
// moved in. A first start takes preferred, within the screen. Where the window system places
// windows itself (Wayland), only the size is taken.
WindowPlacement placeWindow(const QRect &saved, const QList<QRect> &screens, QSize minimum,
                            QSize preferred, bool placeable = true);

} // namespace eventtimer
