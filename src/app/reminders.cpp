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
    m_saved = readReminderSettings(m_settings, m_err);
    m_choices.assign(m_saved.marked, m_saved.leadMinutes);
    connect(&m_choices, &ReminderChoices::changed, this, [this] {
        if (!m_following)
            save();
        replan();
    });
    connect(&m_settings, &SettingsStore::changedOnDisk, this, &Reminders::followFile);
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
    // Only the player's change goes to the file, onto what it holds now; a failure is the
    // store's to say, and the change lasts for the session.
    const Result<ReminderSettings> saved =
        writeReminderChanges(m_settings, m_saved, {m_choices.marked(), m_choices.leadMinutes()});
    if (saved)
        follow(saved.value());
}

void Reminders::followFile()
{
    const ReminderSettings read = readReminderSettings(m_settings, m_err);
    if (read != m_saved)
        follow(read);
}

void Reminders::follow(const ReminderSettings &file)
{
    m_saved = file;
    if (file == ReminderSettings{m_choices.marked(), m_choices.leadMinutes()})
        return;
    m_following = true;
    m_choices.assign(file.marked, file.leadMinutes);
    m_following = false;
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
