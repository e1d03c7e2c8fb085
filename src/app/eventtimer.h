#pragma once

#include "app/autostart.h"
#include "app/dayloader.h"
#include "app/preferencesdialog.h"
#include "app/reminders.h"
#include "app/timetablewindow.h"
#include "app/tray.h"
#include "data/cachefolder.h"
#include "data/settingsstore.h"
#include "data/urlloader.h"

#include <QObject>
#include <QPointer>
#include <QTextStream>

#include <memory>

namespace eventtimer {

class Clock;

// The program: the user's settings file, the cache folder, the event service, the reminders,
// the window and its tray, and the day's owner that runs them from one day to the next. What
// main() starts, and what the tests and the start-up benchmark drive.
//
// While events are marked, closing the window keeps the program reminding; so does a start
// without the window. It never goes on unseen without saying so once: from the tray where there
// is one, else in a notification that tells how to get the window back.
class EventTimer : public QObject
{
    Q_OBJECT

public:
    // The fixed lines go to out, everything else that is said to err.
    EventTimer(Clock &clock, QTextStream &out, QTextStream &err, QObject *parent = nullptr);
    ~EventTimer() override;

    // Loads today's timetable, and opens the window unless hidden.
    void show(bool hidden = false);
    // Loads again whatever the copy's age, from the address the settings file holds now.
    void reload();
    void showPreferences();
    // Writes or removes the autostart entry; a failure is said in the window and on stderr.
    void setStartAtLogin(bool start);
    // Hides a section or a category from the timetable by its name, or shows it again.
    void setHidden(bool category, const QString &name, bool hidden);

    TimetableWindow &window() { return m_window; }
    ViewController &controller() { return m_days->controller(); }
    DayLoader &days() { return *m_days; }
    Reminders &reminders() { return m_reminders; }
    SettingsStore &settings() { return m_settings; }
    Autostart &autostart() { return m_autostart; }

private:
    // The window is closed, or never opened, and the program goes on.
    void goneFromSight(const QString &summary, const QString &body);
    // The settings changed: the timetable and the preferences show what they now say.
    void followViewSettings();

    QTextStream &m_out;
    QTextStream &m_err;
    SettingsStore m_settings;
    CacheFolder m_cache;
    UrlLoader m_loader;
    Reminders m_reminders;
    Autostart m_autostart;
    TimetableWindow m_window;
    Tray m_tray;
    std::unique_ptr<DayLoader> m_days;
    QPointer<PreferencesDialog> m_preferences;
    bool m_goneFromSightSaid = false;
};

} // namespace eventtimer
