#pragma once

#include "model/reminderplan.h"

#include <QDateTime>
#include <QObject>

#include <chrono>
#include <memory>
#include <optional>

namespace eventtimer {

class Clock;

// Announces the planned reminders at their moments with one timer of the clock, for the next
// one, set anew whenever the plan changes and at every check. Nothing is announced late: a
// moment that passed before the scheduler started, or more than a grace period ago (after a
// suspend, a clock change or a busy moment), is let go. A moment that passes while the first
// plan is still being made (the day is published after its first frame) is announced when the
// plan comes, within the grace period.
class ReminderScheduler : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::seconds grace{60};

    explicit ReminderScheduler(Clock &clock, QObject *parent = nullptr);
    ~ReminderScheduler() override;

    // Announces what is due under the plan so far, then follows this one.
    void setPlan(QList<Reminder> plan);
    // Announces what is due and sets the timer again from the clock's present time: after the
    // wall clock may have jumped.
    void check();

    // The next reminder still to come.
    std::optional<Reminder> next() const;

Q_SIGNALS:
    void remind(const eventtimer::Reminder &reminder);
    void nextChanged();

private:
    void announceDue();
    void arm();

    Clock &m_clock;
    QList<Reminder> m_plan;
    bool m_planned = false;
    // Moments up to this one are done with: announced, or let go.
    QDateTime m_doneUntil;
    std::unique_ptr<QObject> m_timer;
    std::optional<QDateTime> m_armedFor;
};

} // namespace eventtimer
