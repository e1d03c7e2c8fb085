#include "app/eventtimer.h"

#include "app/preferencesdialog.h"
#include "data/viewsettings.h"
#include "model/icon.h"
#include "ui/viewcontroller.h"

#include <QApplication>
#include <QFile>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace eventtimer {

EventTimer::EventTimer(Clock &clock, QTextStream &out, QTextStream &err, QObject *parent)
    : QObject(parent)
    , m_out(out)
    , m_err(err)
    , m_settings(SettingsStore::standardPath(), m_err)
    , m_cache(CacheFolder::standardPath(), m_err)
    , m_reminders(m_settings, clock, m_err)
    , m_autostart(QCoreApplication::applicationFilePath())
    , m_window(m_settings)
    , m_tray(m_window, m_reminders, m_settings, m_autostart)
    , m_days(std::make_unique<DayLoader>(DayLoader::Parts{m_settings, m_cache, m_loader, clock,
                                                          m_out, m_err, m_reminders, m_window}))
{
    connect(&m_window, &TimetableWindow::reloadRequested, this, &EventTimer::reload);
    // The settings file is the truth: what is edited by hand while the program runs is taken,
    // and a file whose changes cannot be kept is said under the timetable.
    connect(&m_settings, &SettingsStore::changedOnDisk, this, &EventTimer::followViewSettings);
    const auto showSettingsProblem = [this](const QString &problem) {
        m_window.showStatus(problem.isEmpty() ? QString() : u"Settings: "_s + problem,
                            TimetableWindow::Topic::Settings);
    };
    connect(&m_settings, &SettingsStore::problemChanged, this, showSettingsProblem);
    showSettingsProblem(m_settings.problem());
    connect(&m_window, &TimetableWindow::preferencesRequested, this, &EventTimer::showPreferences);
    connect(&m_window, &TimetableWindow::followPresentToggled, this, [this](bool follows) {
        // Remembered in the settings file, which the timetable follows.
        m_settings.write({{settingskeys::followPresent, follows}});
        m_days->followSettings();
        if (follows)
            controller().scrollToPresent();
    });
    // The view choices, remembered in the settings file as they are made.
    connect(&m_window, &TimetableWindow::nextUpToggled, this, [this](bool shown) {
        m_settings.write({{settingskeys::nextUp, shown}});
        followViewSettings();
    });
    connect(&m_window, &TimetableWindow::markedOnlyToggled, this, [this](bool markedOnly) {
        m_settings.write({{settingskeys::markedOnly, markedOnly}});
        followViewSettings();
    });
    connect(m_days.get(), &DayLoader::hideRequested, this,
            [this](bool category, const QString &name) { setHidden(category, name, true); });
    connect(&m_window, &TimetableWindow::presentRequested, this,
            [this] { controller().scrollToPresent(); });
    connect(&m_tray, &Tray::reloadRequested, this, &EventTimer::reload);
    connect(&m_tray, &Tray::preferencesRequested, this, &EventTimer::showPreferences);
    connect(&m_tray, &Tray::startAtLoginRequested, this, &EventTimer::setStartAtLogin);
    // The window's close ends the program, unless the reminders are to go on.
    QApplication::setQuitOnLastWindowClosed(false);
    m_window.setHideOnClose([this] { return m_reminders.choices().hasMarks(); });
    connect(&m_window, &TimetableWindow::hiddenOnClose, this, [this] {
        goneFromSight(u"Event Timer keeps reminding you"_s,
                      u"The window is closed; the reminders of the marked events go on."_s);
    });
    connect(&m_reminders, &Reminders::copyRequested, this,
            [this](const QString &link) { controller().copyChatLink(link); });
}

// The day's owner, and with it the timetable's views, goes before the window that holds them.
EventTimer::~EventTimer() = default;

void EventTimer::reload()
{
    // F5 asks the address the file holds now.
    m_settings.reload();
    m_days->reload();
}

void EventTimer::show(bool hidden)
{
    m_settings.watch();
    m_days->start();
    if (!hidden)
        m_window.open();
    // After the first frames: the icon's pictures are decoded as it is set, and asking for the
    // tray may cost a round trip to the desktop.
    QTimer::singleShot(std::chrono::milliseconds(300), this, [this, hidden] {
        // Read as the PNGs they are: asking every image plugin first costs more than the pixels.
        QIcon icon;
        for (const QString &size : {u"48"_s, u"256"_s}) {
            QFile file(u":/icons/org.tolmerkvarn.eventtimer-"_s + size + u".png"_s);
            if (file.open(QIODevice::ReadOnly))
                icon.addPixmap(QPixmap::fromImage(Icon::decode(file.readAll())));
        }
        m_window.setWindowIcon(icon);
        m_tray.setUp();
        if (hidden)
            goneFromSight(u"Event Timer is running"_s,
                          m_reminders.choices().hasMarks()
                              ? u"It reminds you of the marked events without its window."_s
                              : u"It keeps the day's timetable and shared events current without "
                                u"its window."_s);
    });
}

void EventTimer::goneFromSight(const QString &summary, const QString &body)
{
    if (m_tray.isShown()) {
        m_tray.explainOnce();
        return;
    }
    // Without a tray there is no icon to find the program by: it says how to get the window.
    if (m_goneFromSightSaid)
        return;
    m_goneFromSightSaid = true;
    m_reminders.tell(summary, body + u" Start Event Timer again to see the window."_s);
}

void EventTimer::setStartAtLogin(bool start)
{
    if (const Status done = m_autostart.setEnabled(start); !done) {
        m_err << "eventtimer: " << done.error() << Qt::endl;
        m_window.showStatus(u"Start at login could not be changed: "_s + done.error());
    }
}

void EventTimer::followViewSettings()
{
    m_days->followSettings();
    if (m_preferences) {
        const ViewChoices &choices = m_days->viewChoices();
        m_preferences->setHidden(choices.hiddenSections, choices.hiddenCategories);
    }
}

void EventTimer::setHidden(bool category, const QString &name, bool hidden)
{
    // A write that fails is said by the store, and the choice holds while the program runs.
    writeHidden(m_settings, category, name, hidden);
    followViewSettings();
}

void EventTimer::showPreferences()
{
    if (!m_preferences) {
        auto *preferences = new PreferencesDialog(m_reminders.choices(), m_autostart, &m_window);
        connect(preferences, &PreferencesDialog::startAtLoginRequested, this,
                &EventTimer::setStartAtLogin);
        connect(preferences, &PreferencesDialog::showAgainRequested, this,
                [this](bool category, const QString &name) { setHidden(category, name, false); });
        const ViewChoices &choices = m_days->viewChoices();
        preferences->setHidden(choices.hiddenSections, choices.hiddenCategories);
        m_preferences = preferences;
        m_preferences->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_preferences->show();
    m_preferences->raise();
    m_preferences->activateWindow();
}

} // namespace eventtimer
