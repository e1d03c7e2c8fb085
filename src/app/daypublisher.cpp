#include "app/daypublisher.h"

#include "app/reminders.h"
#include "data/suiteexport.h"
#include "model/clock.h"
#include "model/event.h"
#include "model/globalsequence.h"
#include "model/oneline.h"
#include "ui/eventhook.h"

#include <QTimer>
#include <QWidget>

#include <memory>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

// Marks that name no event of the sections, said in one line: they stay marked (another
// document may have the event) and remind of nothing.
void reportUnknownMarks(const ReminderChoices &choices, const SectionList &sections,
                        QTextStream &err)
{
    QSet<QString> known;
    for (const auto &section : sections)
        for (const auto &event : section->events)
            known.insert(event->name);
    QStringList unknown;
    for (const QString &name : choices.marked())
        if (!known.contains(name))
            unknown.append(u'"' + oneLine(name) + u'"');
    if (!unknown.isEmpty())
        err << "eventtimer: reminders: no event of the event document is named "
            << unknown.join(u", "_s) << "; kept, but nothing to remind of" << Qt::endl;
}

} // namespace

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
