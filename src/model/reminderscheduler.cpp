#include "model/reminderscheduler.h"

#include "model/clock.h"

#include <algorithm>

namespace eventtimer {

ReminderScheduler::ReminderScheduler(Clock &clock, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_doneUntil(clock.now())
{}

ReminderScheduler::~ReminderScheduler() = default;

void ReminderScheduler::setPlan(QList<Reminder> plan)
{
    announceDue();
    m_plan = std::move(plan);
    m_planned = true;
    arm();
}

void ReminderScheduler::check()
{
    announceDue();
    arm();
}

std::optional<Reminder> ReminderScheduler::next() const
{
    for (const Reminder &reminder : m_plan)
        if (reminder.at > m_doneUntil)
            return reminder;
    return std::nullopt;
}

void ReminderScheduler::announceDue()
{
    // Before the first plan nothing is known yet: a check then lets no moment go.
    if (!m_planned)
        return;
    const QDateTime now = m_clock.now();
    if (now <= m_doneUntil)
        return; // the clock went back: what is done stays done
    const QDateTime late = now.addSecs(-grace.count());
    const QDateTime from = std::max(m_doneUntil, late);
    m_doneUntil = now;
    for (const Reminder &reminder : std::as_const(m_plan))
        if (reminder.at > from && reminder.at <= now)
            Q_EMIT remind(reminder);
}

void ReminderScheduler::arm()
{
    const std::optional<Reminder> upcoming = next();
    const std::optional<QDateTime> moment =
        upcoming ? std::optional(upcoming->at) : std::optional<QDateTime>();
    // The timer is set anew even for the same moment: the wall clock may have jumped since.
    m_timer = std::make_unique<QObject>();
    if (moment) {
        const qint64 delay = std::max<qint64>(0, m_clock.now().msecsTo(*moment));
        m_clock.callAfter(std::chrono::milliseconds(delay), m_timer.get(), [this] { check(); });
    }
    if (moment != m_armedFor) {
        m_armedFor = moment;
        Q_EMIT nextChanged();
    }
}

} // namespace eventtimer
