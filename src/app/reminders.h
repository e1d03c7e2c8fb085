#pragma once

#include "app/notifier.h"
#include "data/remindersettings.h"
#include "model/reminderchoices.h"
#include "model/reminderplan.h"
#include "model/reminderscheduler.h"

#include <QDBusConnection>
#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QTextStream>

#include <memory>
#include <optional>

namespace eventtimer {

class Clock;
class SettingsStore;

// The reminders of the marked events: the player's choices, kept in the settings file; their
// plan over the days the window has; and their announcement as desktop notifications, or,
// where no notification service answers, as the tray's message, else a line on the error
// stream.
class Reminders : public QObject
{
    Q_OBJECT

public:
    Reminders(SettingsStore &settings, Clock &clock, QTextStream &err, QObject *parent = nullptr);
    ~Reminders() override;

    ReminderChoices &choices() { return m_choices; }
    const ReminderScheduler &scheduler() const { return m_scheduler; }

    // The days to plan from, with the moment the boxes' texts are made for; replans.
    void setDays(QList<PlannedDay> days, const QDateTime &textsAt);
    // Every minute: announces what is due and follows a clock that jumped.
    void check() { m_scheduler.check(); }

    // Where notifications go; the session bus, connected when the first one is sent, unless a
    // bus is given here first.
    void setBus(const QDBusConnection &bus);
    // Shows the next reminder in its tooltip, and takes messages no service took.
    void setTray(QSystemTrayIcon *tray);

    // A word from the program itself, the way reminders go: a notification, else the tray's
    // message, else a line on the error stream.
    void tell(const QString &summary, const QString &body);

Q_SIGNALS:
    // The player chose "Copy chat link" on a notification.
    void copyRequested(const QString &link);

private:
    void replan();
    void save();
    // The settings file was changed by hand: its choices are the player's.
    void followFile();
    void follow(const ReminderSettings &file);
    void announce(const Reminder &reminder);
    void notify(const Notification &notification);
    void announceElsewhere(const Notification &notification);
    void showNext();

    SettingsStore &m_settings;
    Clock &m_clock;
    QTextStream &m_err;
    ReminderChoices m_choices;
    ReminderScheduler m_scheduler;
    QList<PlannedDay> m_days;
    QDateTime m_textsAt;
    std::optional<QDBusConnection> m_bus;
    std::unique_ptr<Notifier> m_notifier;
    QPointer<QSystemTrayIcon> m_tray;
    // What the settings file holds, as last read or written.
    ReminderSettings m_saved;
    bool m_following = false;
};

} // namespace eventtimer
