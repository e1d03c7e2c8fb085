#include "app/timetablewindow.h"

#include "data/suiteexport.h"
#include "ui/eventhook.h"

#include <QAction>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>

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
    new EventHook(&m_window, QEvent::Close, [this] { saveGeometry(); });
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
}

void TimetableWindow::reload()
{
    load(true);
}

void TimetableWindow::load(bool download)
{
    const auto exportToSuite = [this](const GlobalSequence &sequence, const QDateTime &now) {
        // A suite that cannot be written leaves the timetable as it is.
        if (const Status written = exportToSharedSuite(sequence, now); !written)
            m_err << "eventtimer: " << written.error() << Qt::endl;
    };
    // A load already under way gives way to this one.
    m_loader.cancel();
    m_next = std::make_unique<ViewController>(exportToSuite, m_clock);
    ViewController *next = m_next.get();
    next->viewDidLoad();
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
    connect(m_source.get(), &EventDataSource::finished, this,
            [this, next](const SectionList &sections) {
                const QString problem = m_source->problem();
                next->loadDidFinish(sections, problem.isEmpty()
                                                  ? QString()
                                                  : problem + u"\n"_s +
                                                        m_source->serviceUrl().toDisplayString());
                if (m_next.get() == next) {
                    m_stack->addWidget(next->view());
                    m_stack->setCurrentWidget(next->view());
                    m_stack->removeWidget(m_controller->view());
                    m_controller = std::move(m_next);
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
