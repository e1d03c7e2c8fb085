#pragma once

#include <QDateTime>
#include <QObject>
#include <QTimeZone>

#include <chrono>
#include <functional>

namespace eventtimer {

// The one place the program asks for the time and the zone, and asks to be called back later:
// tests pin the time and move it on without waiting, and every timer moves with it.
class Clock
{
public:
    using Callback = std::function<void()>;

    virtual ~Clock() = default;

    virtual QDateTime now() const = 0;
    virtual QTimeZone zone() const = 0;

    // Calls back once after delay, unless context is gone by then. Never cancelled otherwise.
    virtual void callAfter(std::chrono::milliseconds delay, QObject *context,
                           Callback callback) = 0;
    // Calls back every interval, counted from now, for as long as context lives.
    virtual void callEvery(std::chrono::milliseconds interval, QObject *context,
                           Callback callback) = 0;
};

// The system's wall clock and zone, with Qt's timers; shifted by a fixed amount for a
// rehearsal of another moment (the clock then runs on from there at its own pace).
class SystemClock final : public Clock
{
public:
    explicit SystemClock(std::chrono::milliseconds shift = {})
        : m_shift(shift)
    {}

    QDateTime now() const override
    {
        return QDateTime::currentDateTimeUtc().addMSecs(m_shift.count());
    }
    QTimeZone zone() const override { return QTimeZone::systemTimeZone(); }
    void callAfter(std::chrono::milliseconds delay, QObject *context, Callback callback) override;
    void callEvery(std::chrono::milliseconds interval, QObject *context,
                   Callback callback) override;

private:
    std::chrono::milliseconds m_shift;
};

} // namespace eventtimer
