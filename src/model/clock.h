#pragma once

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QTimeZone>

#include <chrono>
#include <functional>
#include <vector>

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

// A clock that stands still until it is moved. advance() lets time pass: the wall clock and
// the timers move together, and every callback falls due at its own moment, in order.
// setNow() changes only the wall clock, as a clock change or a suspend does to a real system.
class ManualClock final : public Clock
{
public:
    ManualClock(QDateTime now, QTimeZone zone);

    QDateTime now() const override { return m_now; }
    QTimeZone zone() const override { return m_zone; }
    void callAfter(std::chrono::milliseconds delay, QObject *context, Callback callback) override;
    void callEvery(std::chrono::milliseconds interval, QObject *context,
                   Callback callback) override;

    void setNow(const QDateTime &now) { m_now = now; }
    void advance(std::chrono::milliseconds by);
    // Callbacks made so far, and those still waiting whose context lives.
    int callbacksMade() const { return m_callbacksMade; }
    int pending() const;

private:
    struct Scheduled
    {
        qint64 dueMs;
        qint64 everyMs; // 0: once
        quint64 order;
        QPointer<QObject> context;
        Callback callback;
    };

    QDateTime m_now;
    QTimeZone m_zone;
    qint64 m_elapsedMs = 0;
    quint64 m_order = 0;
    int m_callbacksMade = 0;
    std::vector<Scheduled> m_scheduled;
};

} // namespace eventtimer
