#pragma once

#include <QColor>

namespace eventtimer {

// The fill colour of an event's boxes. A record's colour keeps its components exactly as
// computed (double precision, unclamped); an event without a usable colour carries the default
// colour, which is recognisable as such.
class EventColor
{
public:
    // The default colour: a neutral mid grey, drawn with the same alpha as record colours.
    static constexpr double defaultRed = 0.6;
    static constexpr double defaultGreen = 0.6;
    static constexpr double defaultBlue = 0.6;
    static constexpr double defaultAlpha = 0.8;

    EventColor() = default;
    static EventColor fromRgb(double red, double green, double blue, double alpha);

    bool isDefault() const { return m_isDefault; }
    double red() const { return m_red; }
    double green() const { return m_green; }
    double blue() const { return m_blue; }
    double alpha() const { return m_alpha; }

    // For painting: components clamped to 0…1.
    QColor toQColor() const;

    // "#rrggbbaa", as a document author would write it.
    QString toHexText() const;

    friend bool operator==(const EventColor &, const EventColor &) = default;

private:
    double m_red = defaultRed;
    double m_green = defaultGreen;
    double m_blue = defaultBlue;
    double m_alpha = defaultAlpha;
    bool m_isDefault = true;
};

} // namespace eventtimer
