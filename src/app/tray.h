#pragma once

#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>

namespace eventtimer {

class Autostart;
class Reminders;
class SettingsStore;
class TimetableWindow;

// The program's icon in the desktop's tray, where there is one: Show/Hide, Reload,
// Preferences, Start at login and Quit in its menu; a click shows or hides the window, and its
// tooltip tells the next reminder.
class Tray : public QObject
{
    Q_OBJECT

public:
    Tray(TimetableWindow &window, Reminders &reminders, SettingsStore &settings,
         const Autostart &autostart, QObject *parent = nullptr);

    // Puts the icon in the tray, when the desktop has one; once.
    void setUp();
    // Whether the icon stands in the tray.
    bool isShown() const { return m_icon && m_icon->isVisible(); }
    // The window was closed while the reminders go on from here: said once, the first time.
    void explainOnce();

Q_SIGNALS:
    void reloadRequested();
    void preferencesRequested();
    void startAtLoginRequested(bool start);

private:
    TimetableWindow &m_window;
    Reminders &m_reminders;
    SettingsStore &m_settings;
    const Autostart &m_autostart;
    QPointer<QSystemTrayIcon> m_icon;
};

} // namespace eventtimer
