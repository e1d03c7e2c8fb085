#pragma once

#include "model/clock.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QTimeZone>

#include <chrono>
#include <vector>

namespace eventtimer::testing {

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
    // Callbacks made so far.
    int callbacksMade() const { return m_callbacksMade; }

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

} // namespace eventtimer::testing
