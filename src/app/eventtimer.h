#pragma once

#include "app/dayloader.h"
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
class EventTimer : public QObject
{
    Q_OBJECT

public:
    explicit EventTimer(Clock &clock, QObject *parent = nullptr);
    ~EventTimer() override;

    // Opens the window and loads today's timetable.
    void show();
    void reload() { m_days->reload(); }
    void showPreferences();

    TimetableWindow &window() { return m_window; }
    ViewController &controller() { return m_days->controller(); }
    DayLoader &days() { return *m_days; }
    Reminders &reminders() { return m_reminders; }
    SettingsStore &settings() { return m_settings; }

private:
    QTextStream m_out;
    QTextStream m_err;
    std::unique_ptr<QSettings> m_settingsFile;
    SettingsStore m_settings;
    CacheFolder m_cache;
    UrlLoader m_loader;
    Reminders m_reminders;
    TimetableWindow m_window;
    Tray m_tray;
    std::unique_ptr<DayLoader> m_days;
    QPointer<QDialog> m_preferences;
};

} // namespace eventtimer
