#include "app/daypublisher.h"

#include "app/reminders.h"
#include "data/remindersettings.h"
#include "data/suiteexport.h"
#include "model/clock.h"
#include "model/globalsequence.h"
#include "ui/eventhook.h"

#include <QTimer>
#include <QWidget>

#include <memory>

namespace eventtimer {

DayPublisher::DayPublisher(Clock &clock, QTextStream &err, Reminders &reminders, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_err(err)
    , m_reminders(reminders)
{}

void DayPublisher::publishAfterFirstFrame(QWidget *axis, const DayData &day)
{
    const quint64 asked = ++m_asked;
    if (day.sections.isEmpty() || !axis->isVisible()) {
        publish(day);
        return;
    }
    auto done = std::make_shared<bool>(false);
    const auto once = [this, day, done, asked] {
        if (!std::exchange(*done, true) && asked == m_asked)
            publish(day);
    };
    new EventHook(axis, QEvent::Paint, [this, once] { QTimer::singleShot(0, this, once); });
    QTimer::singleShot(std::chrono::seconds(1), this, once);
}

void DayPublisher::publish(const DayData &day)
{
    // A suite that cannot be written leaves the timetable as it is.
    const QDateTime now = m_clock.now();
    if (const Status written =
            exportToSharedSuite(globalSequence(day.sections, m_clock.zone()), now);
        !written)
        m_err << "eventtimer: " << written.error() << Qt::endl;
    m_reminders.setDays({{day.day, day.sections}, {day.day.addDays(1), day.followingDay}}, now);
    if (!day.sections.isEmpty() && !m_unknownMarksSaid) {
        m_unknownMarksSaid = true;
        reportUnknownMarks(m_reminders.choices(), day.sections, m_err);
    }
}

} // namespace eventtimer
