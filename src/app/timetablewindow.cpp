#include "app/timetablewindow.h"

#include "data/suiteexport.h"
#include "ui/eventhook.h"

#include <QAction>
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
    const QSize available = m_window.screen()->availableSize();
    m_window.resize(std::min(1280, available.width()), std::min(800, available.height()));

    auto *reloading = new QAction(u"Reload"_s, &m_window);
    reloading->setShortcut(QKeySequence::Refresh);
    reloading->setShortcutContext(Qt::WindowShortcut);
    connect(reloading, &QAction::triggered, this, &TimetableWindow::reload);
    m_window.addAction(reloading);
}

TimetableWindow::~TimetableWindow()
{
    // Whatever is still on its way is dropped at once.
    m_loader.cancel();
}

void TimetableWindow::show()
{
    load(false);
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
