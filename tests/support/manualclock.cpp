#include "manualclock.h"

#include <algorithm>

namespace eventtimer::testing {

ManualClock::ManualClock(QDateTime now, QTimeZone zone)
    : m_now(std::move(now))
    , m_zone(std::move(zone))
{}

void ManualClock::callAfter(std::chrono::milliseconds delay, QObject *context, Callback callback)
{
    m_scheduled.push_back(
        {m_elapsedMs + delay.count(), 0, m_order++, context, std::move(callback)});
}

void ManualClock::callEvery(std::chrono::milliseconds interval, QObject *context, Callback callback)
{
    const qint64 every = std::max<qint64>(interval.count(), 1);
    m_scheduled.push_back({m_elapsedMs + every, every, m_order++, context, std::move(callback)});
}

void ManualClock::advance(std::chrono::milliseconds by)
{
    const qint64 target = m_elapsedMs + by.count();
    while (true) {
        std::erase_if(m_scheduled, [](const Scheduled &entry) { return !entry.context; });
        // The earliest due callback, and among equals the one scheduled first.
        const auto next = std::min_element(
            m_scheduled.begin(), m_scheduled.end(), [](const Scheduled &a, const Scheduled &b) {
                return a.dueMs != b.dueMs ? a.dueMs < b.dueMs : a.order < b.order;
            });
        if (next == m_scheduled.end() || next->dueMs > target)
            break;
        m_now = m_now.addMSecs(next->dueMs - m_elapsedMs);
        m_elapsedMs = next->dueMs;
        Callback callback = next->callback;
        if (next->everyMs > 0) {
            next->dueMs += next->everyMs;
            next->order = m_order++;
        } else {
            m_scheduled.erase(next);
        }
        ++m_callbacksMade;
        callback(); // may schedule more
    }
    m_now = m_now.addMSecs(target - m_elapsedMs);
    m_elapsedMs = target;
}

} // namespace eventtimer::testing
