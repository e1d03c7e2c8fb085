#include "app/tray.h"

#include "app/autostart.h"
#include "app/reminders.h"
#include "app/timetablewindow.h"
#include "data/settingsstore.h"

#include <QCoreApplication>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace eventtimer {

Tray::Tray(TimetableWindow &window, Reminders &reminders, SettingsStore &settings,
           const Autostart &autostart, QObject *parent)
    : QObject(parent)
    , m_window(window)
    , m_reminders(reminders)
    , m_settings(settings)
    , m_autostart(autostart)
{}

void Tray::setUp()
{
    if (m_icon || !QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_icon = new QSystemTrayIcon(m_window.windowIcon(), this);
    auto *menu = new QMenu(&m_window);
    QAction *showHide = menu->addAction(u"Hide"_s, this, [this] {
        if (m_window.isVisible())
            m_window.hide();
        else
            m_window.bringToFront();
    });
    menu->addAction(u"Reload"_s, this, [this] { Q_EMIT reloadRequested(); });
    menu->addActions({m_window.nextUpAction(), m_window.markedOnlyAction()});
    menu->addAction(u"Preferences\u2026"_s, this, [this] { Q_EMIT preferencesRequested(); });
    QAction *atLogin = menu->addAction(u"Start at login"_s);
    atLogin->setCheckable(true);
    connect(atLogin, &QAction::triggered, this, &Tray::startAtLoginRequested);
    // What the menu shows is read when it opens: the autostart file may have been removed by hand.
    connect(menu, &QMenu::aboutToShow, this, [this, showHide, atLogin] {
        showHide->setText(m_window.isVisible() ? u"Hide"_s : u"Show"_s);
        atLogin->setChecked(m_autostart.isEnabled());
    });
    menu->addSeparator();
    menu->addAction(u"Quit"_s, qApp, &QCoreApplication::quit);
    m_icon->setContextMenu(menu);
    connect(m_icon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason why) {
                if (why == QSystemTrayIcon::Trigger)
                    m_window.isVisible() ? m_window.hide() : m_window.bringToFront();
            });
    m_reminders.setTray(m_icon);
    m_icon->show();
}

void Tray::explainOnce()
{
    if (m_settings.value(settingskeys::trayExplained).toBool())
        return;
    m_icon->showMessage(u"Event Timer keeps reminding you"_s,
                        u"The window is closed; the reminders of the marked events go on from "
                        u"here. Quit from this icon's menu."_s);
    m_settings.write({{settingskeys::trayExplained, true}});
}

} // namespace eventtimer
