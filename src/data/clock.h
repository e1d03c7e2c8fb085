#pragma once

#include <QDateTime>
#include <QTimeZone>

namespace eventtimer {

// The one place the program asks for the time and the zone, so that tests can pin both.
class Clock
{
public:
    virtual ~Clock() = default;

    virtual QDateTime now() const = 0;
    virtual QTimeZone zone() const = 0;
};

class SystemClock final : public Clock
{
public:
    QDateTime now() const override { return QDateTime::currentDateTimeUtc(); }
    QTimeZone zone() const override { return QTimeZone::systemTimeZone(); }
};

} // namespace eventtimer
