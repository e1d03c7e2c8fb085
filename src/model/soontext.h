#pragma once

#include <QString>

namespace eventtimer {

// How soon something starts, seconds ahead: "now" once it has begun, else "in 12 min" or
// "in 2 h 5 min", a part of a minute counting as a whole one (59 s is "in 1 min"). The panel
// feed and the window's Next up list say it the same way. Qt Core alone: the feed includes it.
inline QString soonText(qint64 secondsAhead)
{
    using namespace Qt::StringLiterals;
    const qint64 minutes = (secondsAhead + 59) / 60;
    if (minutes <= 0)
        return u"now"_s;
    if (minutes < 60)
        return u"in "_s + QString::number(minutes) + u" min"_s;
    return u"in "_s + QString::number(minutes / 60) + u" h "_s + QString::number(minutes % 60) +
           u" min"_s;
}

} // namespace eventtimer
