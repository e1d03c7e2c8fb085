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

// A clock that stands still, at whatever moment and in whatever zone it is set to.
class FixedClock final : public Clock
{
public:
    FixedClock(QDateTime now, QTimeZone zone)
        : m_now(std::move(now))
        , m_zone(std::move(zone))
    {}

    QDateTime now() const override { return m_now; }
    QTimeZone zone() const override { return m_zone; }
    void setNow(const QDateTime &now) { m_now = now; }

private:
    QDateTime m_now;
    QTimeZone m_zone;
};

} // namespace eventtimer
