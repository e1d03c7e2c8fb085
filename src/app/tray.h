#pragma once

#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>

namespace eventtimer {

class Reminders;
class SettingsStore;
class TimetableWindow;

// The program's icon in the desktop's tray, where there is one: Show/Hide, Reload,
// Preferences and Quit in its menu, a click shows or hides the window, and its tooltip tells the
// next reminder. While events are marked, closing the window keeps the program reminding from
// here; the player is told so once.
class Tray : public QObject
{
    Q_OBJECT

public:
    Tray(TimetableWindow &window, Reminders &reminders, SettingsStore &settings,
         QObject *parent = nullptr);

    // Puts the icon in the tray, when the desktop has one; once.
    void setUp();
    QSystemTrayIcon *icon() const { return m_icon; }

Q_SIGNALS:
    void reloadRequested();
    void preferencesRequested();

private:
    void explainOnce();

    TimetableWindow &m_window;
    Reminders &m_reminders;
    SettingsStore &m_settings;
    QPointer<QSystemTrayIcon> m_icon;
};

} // namespace eventtimer
