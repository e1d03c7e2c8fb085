#include "model/eventcolor.h"

#include <algorithm>

namespace eventtimer {

EventColor EventColor::fromRgb(double red, double green, double blue, double alpha)
{
    EventColor color;
    color.m_red = red;
    color.m_green = green;
    color.m_blue = blue;
    color.m_alpha = alpha;
    color.m_isDefault = false;
    return color;
}

static float unit(double component)
{
    return static_cast<float>(std::clamp(component, 0.0, 1.0));
}

QColor EventColor::toQColor() const
{
    return QColor::fromRgbF(unit(m_red), unit(m_green), unit(m_blue), unit(m_alpha));
}

QString EventColor::toHexText() const
{
    // Qt names the colour "#aarrggbb"; move the alpha to the end.
    const QString argb = toQColor().name(QColor::HexArgb);
    return u'#' + argb.mid(3) + argb.mid(1, 2);
}

} // namespace eventtimer
