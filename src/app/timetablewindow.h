#pragma once

#include "app/reminders.h"
#include "data/cachefolder.h"
#include "data/eventdatasource.h"
#include "data/settingsstore.h"
#include "data/urlloader.h"
#include "model/clock.h"
#include "ui/viewcontroller.h"

#include <QMainWindow>
#include <QObject>
#include <QPointer>
#include <QStackedWidget>
#include <QTextStream>

#include <memory>

namespace eventtimer {

// The program's one window and its timetable, wired to the user's settings file, the cache
// folder, the event service, the shared suite and the reminders: what main() starts, and what
// the start-up benchmark measures. The window shows at once and says what it is loading; each
// load (at the start, on Reload, when the local day changes) makes a timetable controller of
// its own, which takes the place of the one shown when its data is in. Where the desktop has
// a tray, the program has an icon there, and while events are marked a closed window keeps
// the program reminding from it.
class TimetableWindow : public QObject
{
    Q_OBJECT

public:
    explicit TimetableWindow(Clock &clock, QObject *parent = nullptr);
    ~TimetableWindow() override;

    // Shows the window and starts loading.
    void show();
    // Downloads the document again, whatever its age, and builds a new timetable from it.
    void reload();
    // Shows the window in front of the others (a second start asked for it).
    void bringToFront();
    void showPreferences();

    Reminders &reminders() { return *m_reminders; }

    QMainWindow &window() { return m_window; }
    ViewController &controller() { return *m_controller; }
    SettingsStore &settings() { return m_settings; }

Q_SIGNALS:
    // A new timetable stands in the window.
    void timetableReplaced();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addActions();
    void setUpTray();
    // Every minute, from the timetable's time update.
    void minuteTick();
    void restoreGeometry();
    void saveGeometry();
    void load(bool download);
    QString progressText(EventDataSource::Stage stage, int done, int total) const;

    Clock &m_clock;
    QTextStream m_out;
    QTextStream m_err;
    std::unique_ptr<QSettings> m_settingsFile;
    SettingsStore m_settings;
    CacheFolder m_cache;
    UrlLoader m_loader;
    std::unique_ptr<EventDataSource> m_source;
    std::unique_ptr<ViewController> m_controller;
    std::unique_ptr<ViewController> m_next;
    QMainWindow m_window;
    QStackedWidget *m_stack = nullptr;
    std::unique_ptr<Reminders> m_reminders;
    // The local day of the timetable loaded last.
    QDate m_day;
    bool m_unknownMarksSaid = false;
    QPointer<QSystemTrayIcon> m_tray;
    QPointer<QDialog> m_preferences;
};

} // namespace eventtimer
