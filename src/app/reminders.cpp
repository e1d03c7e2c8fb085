#include "app/reminders.h"

#include "data/remindersettings.h"
#include "data/settingsstore.h"
#include "model/clock.h"
#include "model/oneline.h"

using namespace Qt::StringLiterals;

namespace eventtimer {

Reminders::Reminders(SettingsStore &settings, Clock &clock, QTextStream &err, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_clock(clock)
    , m_err(err)
    , m_scheduler(clock)
{
    loadReminderChoices(m_settings, m_choices, m_err);
    connect(&m_choices, &ReminderChoices::changed, this, [this] {
        save();
        replan();
    });
    connect(&m_scheduler, &ReminderScheduler::remind, this, &Reminders::announce);
    connect(&m_scheduler, &ReminderScheduler::nextChanged, this, &Reminders::showNext);
}

Reminders::~Reminders() = default;

void Reminders::setDays(QList<PlannedDay> days, const QDateTime &textsAt)
{
    m_days = std::move(days);
    m_textsAt = textsAt;
    replan();
}

void Reminders::replan()
{
    m_scheduler.setPlan(planReminders(m_days, m_choices.markedSet(), m_choices.leadMinutes(),
                                      m_clock.zone(), m_textsAt));
}

void Reminders::save()
{
    const Status saved = saveReminderChoices(m_settings, m_choices);
    // A damaged file was said when it was read; the choices then last until the program ends.
    if (!saved && !m_saveFailureSaid && !m_settings.isDamaged()) {
        m_saveFailureSaid = true;
        m_err << "eventtimer: the reminder choices are not kept: " << saved.error() << Qt::endl;
    }
}

void Reminders::setBus(const QDBusConnection &bus)
{
    m_bus = bus;
    m_notifier.reset();
}

void Reminders::setTray(QSystemTrayIcon *tray)
{
    m_tray = tray;
    showNext();
}

void Reminders::announce(const Reminder &reminder)
{
    Notification notification;
    notification.summary = reminder.summary();
    notification.body = reminder.body();
    if (reminder.event->icon)
        notification.image = reminder.event->icon->image();
    notification.chatLink = reminder.event->chatLink;
    notify(notification);
}

void Reminders::tell(const QString &summary, const QString &body)
{
    notify({summary, body, {}, std::nullopt});
}

void Reminders::notify(const Notification &notification)
{
    if (!m_notifier) {
        m_notifier = std::make_unique<Notifier>(m_bus.value_or(QDBusConnection::sessionBus()));
        connect(m_notifier.get(), &Notifier::copyRequested, this, &Reminders::copyRequested);
        connect(m_notifier.get(), &Notifier::undelivered, this, &Reminders::announceElsewhere);
    }
    m_notifier->notify(notification);
}

void Reminders::announceElsewhere(const Notification &notification)
{
    if (m_tray && m_tray->isVisible() && QSystemTrayIcon::supportsMessages()) {
        m_tray->showMessage(notification.summary, notification.body);
        return;
    }
    m_err << "eventtimer: reminder: " << oneLine(notification.summary) << " ("
          << oneLine(notification.body) << ')' << Qt::endl;
}

void Reminders::showNext()
{
    if (!m_tray)
        return;
    const std::optional<Reminder> next = m_scheduler.next();
    m_tray->setToolTip(next ? u"Event Timer\nNext reminder at "_s +
                                  next->at.toTimeZone(m_clock.zone()).toString(u"HH:mm") + u": "_s +
                                  next->event->name + u", "_s + next->startText
                            : u"Event Timer"_s);
}

} // namespace eventtimer
