#pragma once

#include "timetable/layoutconstants.h"
#include "timetable/timetablelayout.h"

#include <QColor>
#include <QFont>
#include <QHash>
#include <QPixmap>
#include <QStaticText>

#include <optional>

class QPainter;

namespace eventtimer {

class Event;

// Paints one event box: the fill with a groove border, the name along the top and the start
// time at the bottom left (each with a soft halo, so they read on any fill), the icon at half
// opacity in the middle, the copy button of an event with a chat link, the bell of a marked
// event and the keyboard's focus ring. Texts, icons and the button are prepared once and then only
// placed.
class EventBoxPainter
{
public:
    static constexpr QSizeF copyButtonSize{LayoutConstants::copyButtonWidth,
                                           LayoutConstants::copyButtonHeight};

    enum class Button
    {
        Normal,
        Hovered,
        Pressed
    };
    struct State
    {
        Button button = Button::Normal;
        // The focus ring's colour, when the box carries it.
        std::optional<QColor> focusRing;
        // The event is marked for reminders: a bell at the end of the name's line.
        bool marked = false;
    };
    static constexpr double bellSize = 12.0;

    // The font of the names and times, the pixel ratio of what is painted on, and the colour
    // the boxes' translucent fills lie on; a change drops what was prepared.
    void setFont(const QFont &font);
    void setDevicePixelRatio(qreal ratio);
    void setBackground(const QColor &background) { m_background = background; }

    // Dark text with a light halo on a box that is light once its fill lies on the
    // background, light text with a dark halo on a dark one: names read on any document's
    // colours, in a light desktop theme and a dark one.
    static bool isDark(const QColor &fill, const QColor &background);
    void clear();

    // Paints a box; returns false when its icon is still to be decoded (the box has the room
    // for it, and shows it once it is painted again after decodeIcon).
    bool paint(QPainter &painter, const EventBoxGeometry &box, const State &state);
    // Decodes a box's icon: never while painting, so that no frame waits for a picture.
    static void decodeIcon(const EventBoxGeometry &box);

private:
    const QStaticText &nameText(const EventBoxGeometry &box, double reserved);
    const QStaticText &timeText(const QString &text);
    // The event's icon at the screen's resolution; absent while it is to be decoded.
    const QPixmap *iconOf(const Event &event);
    const QPixmap &buttonPixmap(Button state);

    QFont m_font;
    qreal m_ratio = 1.0;
    QColor m_background = Qt::white;
    // Names cut to their box's width, keyed by name and width.
    QHash<QString, QStaticText> m_names;
    QHash<QString, QStaticText> m_times;
    QHash<const Event *, QPixmap> m_icons;
    QPixmap m_buttons[3];
};

} // namespace eventtimer
