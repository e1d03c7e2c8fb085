#include "app/eventtimer.h"

#include "app/preferencesdialog.h"
#include "ui/viewcontroller.h"

#include <QTimer>

using namespace Qt::StringLiterals;

namespace eventtimer {

EventTimer::EventTimer(Clock &clock, QObject *parent)
    : QObject(parent)
    , m_out(stdout)
    , m_err(stderr)
    , m_settingsFile(SettingsStore::openStandard())
    , m_settings(*m_settingsFile, m_err)
    , m_cache(CacheFolder::standardPath(), m_err)
    , m_reminders(m_settings, clock, m_err)
    , m_window(m_settings, m_err)
    , m_tray(m_window, m_reminders, m_settings)
    , m_days(std::make_unique<DayLoader>(DayLoader::Parts{m_settings, m_cache, m_loader, clock,
                                                          m_out, m_err, m_reminders, m_window}))
{
    connect(&m_window, &TimetableWindow::reloadRequested, this, &EventTimer::reload);
    connect(&m_window, &TimetableWindow::preferencesRequested, this, &EventTimer::showPreferences);
    connect(&m_tray, &Tray::reloadRequested, this, &EventTimer::reload);
    connect(&m_tray, &Tray::preferencesRequested, this, &EventTimer::showPreferences);
    connect(&m_reminders, &Reminders::copyRequested, this,
            [this](const QString &link) { controller().copyChatLink(link); });
}

// The day's owner, and with it the timetable's views, goes before the window that holds them.
EventTimer::~EventTimer() = default;

void EventTimer::show()
{
    m_days->start();
    m_window.open();
    // After the first frames: the icon's pictures are decoded as it is set, and asking for the
    // tray may cost a round trip to the desktop.
    QTimer::singleShot(std::chrono::milliseconds(300), this, [this] {
        QIcon icon;
        icon.addFile(u":/icons/org.tolmerkvarn.eventtimer-48.png"_s, QSize(48, 48));
        icon.addFile(u":/icons/org.tolmerkvarn.eventtimer-256.png"_s, QSize(256, 256));
        m_window.setWindowIcon(icon);
        m_tray.setUp();
    });
}

void EventTimer::showPreferences()
{
    if (!m_preferences) {
        m_preferences = new PreferencesDialog(m_reminders.choices(), &m_window);
        m_preferences->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_preferences->show();
    m_preferences->raise();
    m_preferences->activateWindow();
}

} // namespace eventtimer
