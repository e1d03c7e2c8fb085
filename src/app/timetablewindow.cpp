#include "app/timetablewindow.h"

#include "app/preferencesdialog.h"
#include "data/remindersettings.h"
#include "data/suiteexport.h"
#include "ui/eventhook.h"

#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace eventtimer {

TimetableWindow::TimetableWindow(Clock &clock, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_out(stdout)
    , m_err(stderr)
    , m_settingsFile(SettingsStore::openStandard())
    , m_settings(*m_settingsFile, m_err)
    , m_cache(CacheFolder::standardPath(), m_err)
{
    m_window.setWindowTitle(u"Event Timer"_s);
    m_window.setMinimumSize(640, 360);
    m_stack = new QStackedWidget(&m_window);
    m_window.setCentralWidget(m_stack);
    restoreGeometry();
    addActions();
    m_window.installEventFilter(this);

    m_reminders = std::make_unique<Reminders>(m_settings, m_clock, m_err);
    m_clock.callEvery(ViewController::timeUpdateInterval, this, [this] { minuteTick(); });
    connect(m_reminders.get(), &Reminders::copyRequested, this,
            [this](const QString &link) { m_controller->copyChatLink(link); });
}

bool TimetableWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != &m_window || event->type() != QEvent::Close)
        return false;
    saveGeometry();
    if (m_tray && m_tray->isVisible() && m_reminders->choices().hasMarks()) {
        // The reminders go on from the tray; said once, the first time.
        event->ignore();
        m_window.hide();
        if (!m_settings.value(settingskeys::trayExplained).toBool()) {
            m_tray->showMessage(u"Event Timer keeps reminding you"_s,
                                u"The window is closed; the reminders of the marked events go "
                                u"on from here. Quit from this icon's menu."_s);
            m_settings.setValue(settingskeys::trayExplained, true);
            m_settings.sync();
        }
        return true;
    }
    // With a tray the program does not end with its last window on its own.
    if (!QApplication::quitOnLastWindowClosed())
        QCoreApplication::quit();
    return false;
}

void TimetableWindow::setUpTray()
{
    if (m_tray || !QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_tray = new QSystemTrayIcon(m_window.windowIcon(), this);
    auto *menu = new QMenu(&m_window);
    QAction *showHide = menu->addAction(u"Hide"_s, this, [this] {
        if (m_window.isVisible())
            m_window.hide();
        else
            bringToFront();
    });
    connect(menu, &QMenu::aboutToShow, this,
            [this, showHide] { showHide->setText(m_window.isVisible() ? u"Hide"_s : u"Show"_s); });
    menu->addAction(u"Reload"_s, this, &TimetableWindow::reload);
    menu->addAction(u"Preferences\u2026"_s, this, &TimetableWindow::showPreferences);
    menu->addSeparator();
    menu->addAction(u"Quit"_s, qApp, &QCoreApplication::quit);
    m_tray->setContextMenu(menu);
    connect(m_tray, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason why) {
                if (why == QSystemTrayIcon::Trigger)
                    m_window.isVisible() ? m_window.hide() : bringToFront();
            });
    QApplication::setQuitOnLastWindowClosed(false);
    m_reminders->setTray(m_tray);
    m_tray->show();
}

void TimetableWindow::showPreferences()
{
    if (!m_preferences) {
        m_preferences = new PreferencesDialog(m_reminders->choices(), &m_window);
        m_preferences->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_preferences->show();
    m_preferences->raise();
    m_preferences->activateWindow();
}

void TimetableWindow::minuteTick()
{
    m_reminders->check();
    // A new local day (at midnight, or found after a suspend or a clock change): its own
    // timetable, unless one is loading already.
    if (!m_next && m_clock.now().toTimeZone(m_clock.zone()).date() != m_day)
        load(false);
}

void TimetableWindow::addActions()
{
    const auto add = [this](const QString &text, const QList<QKeySequence> &keys, auto slot) {
        auto *action = new QAction(text, &m_window);
        action->setShortcuts(keys);
        action->setShortcutContext(Qt::WindowShortcut);
        connect(action, &QAction::triggered, this, slot);
        m_window.addAction(action);
    };
    add(u"Reload"_s, {QKeySequence::Refresh}, [this] { reload(); });
    add(u"Quit"_s, {QKeySequence::Quit}, [] { QCoreApplication::quit(); });
    add(u"Close"_s, {QKeySequence::Close}, [this] { m_window.close(); });
    add(u"Preferences"_s, {QKeySequence::Preferences}, [this] { showPreferences(); });
    add(u"Full screen"_s, {QKeySequence(Qt::Key_F11)},
        [this] { m_window.setWindowState(m_window.windowState() ^ Qt::WindowFullScreen); });
}

void TimetableWindow::restoreGeometry()
{
    // Where it was, within the screens there are now: a screen that is gone, or smaller, takes
    // the window onto one that is there.
    const QRect saved = m_settings.value(settingskeys::windowGeometry).toRect();
    QScreen *screen = saved.isValid() ? QGuiApplication::screenAt(saved.center()) : nullptr;
    if (!screen)
        screen = m_window.screen();
    const QRect area = screen->availableGeometry();
    QRect placed = saved.isValid() ? saved : QRect(QPoint(), QSize(1280, 800));
    placed.setSize(placed.size().expandedTo(m_window.minimumSize()).boundedTo(area.size()));
    if (!saved.isValid() || !area.contains(placed))
        placed.moveTopLeft(QPoint(
            std::clamp(placed.left(), area.left(), area.left() + area.width() - placed.width()),
            std::clamp(placed.top(), area.top(), area.top() + area.height() - placed.height())));
    if (saved.isValid())
        m_window.setGeometry(placed);
    else
        m_window.resize(placed.size());
}

void TimetableWindow::saveGeometry()
{
    if (m_settings.isDamaged())
        return; // said once when it was read, and left as it is
    m_settings.setValue(settingskeys::windowGeometry, m_window.normalGeometry());
    m_settings.setValue(settingskeys::windowMaximized, m_window.isMaximized());
    if (const Status saved = m_settings.sync(); !saved)
        m_err << "eventtimer: " << saved.error() << Qt::endl;
}

void TimetableWindow::bringToFront()
{
    if (m_window.isMinimized())
        m_window.showNormal();
    m_window.show();
    m_window.raise();
    m_window.activateWindow();
}

TimetableWindow::~TimetableWindow()
{
    // Whatever is still on its way is dropped at once.
    m_loader.cancel();
}

void TimetableWindow::show()
{
    load(false);
    if (m_settings.value(settingskeys::windowMaximized).toBool())
        m_window.showMaximized();
    else
        m_window.show();
    // After the first frames: the icon's pictures are decoded as it is set, and asking for the
    // tray may cost a round trip to the desktop.
    QTimer::singleShot(std::chrono::milliseconds(300), this, [this] {
        QIcon icon;
        icon.addFile(u":/icons/org.tolmerkvarn.eventtimer-48.png"_s, QSize(48, 48));
        icon.addFile(u":/icons/org.tolmerkvarn.eventtimer-256.png"_s, QSize(256, 256));
        m_window.setWindowIcon(icon);
        setUpTray();
    });
}

void TimetableWindow::reload()
{
    load(true);
}

void TimetableWindow::load(bool download)
{
    // A load already under way gives way to this one.
    m_loader.cancel();
    m_next = std::make_unique<ViewController>(m_clock);
    ViewController *next = m_next.get();
    next->viewDidLoad();
    next->setReminderChoices(&m_reminders->choices());
    next->setWikiPageUrl(m_settings.value(settingskeys::wikiPageUrl).toString().trimmed());
    connect(next, &ViewController::preferencesRequested, this, &TimetableWindow::showPreferences);
    // The timetable is built when its view first shows, as it is on the screen.
    new EventHook(next->view(), QEvent::Show, [next] { next->viewDidAppear(); });
    if (!m_controller) {
        // Nothing to keep showing: the new view shows its loading.
        m_stack->addWidget(next->view());
        m_controller = std::move(m_next);
    }

    m_source =
        std::make_unique<EventDataSource>(m_settings, m_cache, m_loader, m_clock, m_out, m_err);
    connect(m_source.get(), &EventDataSource::progress, this,
            [this, next](EventDataSource::Stage stage, int done, int total) {
                next->showProgress(progressText(stage, done, total));
            });
    connect(m_source.get(), &EventDataSource::finished, this, [this, next](const DayData &day) {
        // A kept copy does not stand in for a failed download here.
        const SectionList sections =
            day.origin == DayData::Origin::Kept ? SectionList() : day.sections;
        const SectionList following =
            day.origin == DayData::Origin::Kept ? SectionList() : day.followingDay;
        connect(next, &ViewController::timetableBuilt, this, [this, sections] {
            // A suite that cannot be written leaves the timetable as it is.
            if (const Status written =
                    exportToSharedSuite(globalSequence(sections, m_clock.zone()), m_clock.now());
                !written)
                m_err << "eventtimer: " << written.error() << Qt::endl;
        });
        next->loadDidFinish(sections, following, day.problem ? day.problem->text() : QString());
        if (m_next.get() == next) {
            m_stack->addWidget(next->view());
            m_stack->setCurrentWidget(next->view());
            m_stack->removeWidget(m_controller->view());
            m_controller = std::move(m_next);
        }
        // A window in the tray builds the new day's timetable all the same: it keeps
        // the time and the shared suite current.
        if (!m_window.isVisible())
            next->viewDidAppear();
        m_day = day.day;
        m_reminders->setDays({{m_day, sections}, {m_day.addDays(1), following}}, m_clock.now());
        if (!sections.isEmpty() && !m_unknownMarksSaid) {
            m_unknownMarksSaid = true;
            reportUnknownMarks(m_reminders->choices(), sections, m_err);
        }
        Q_EMIT timetableReplaced();
    });
    m_source->load(download);
}

QString TimetableWindow::progressText(EventDataSource::Stage stage, int done, int total) const
{
    const QString host = m_source->serviceUrl().host();
    if (stage == EventDataSource::Stage::Document)
        return u"Loading the events from "_s + host + u"\u2026"_s;
    return u"Loading the events from "_s + host + u": icons "_s + QString::number(done) +
           u" of "_s + QString::number(total);
}

} // namespace eventtimer
