#include "app/timetablewindow.h"

#include "data/cachefolder.h"
#include "data/eventdatasource.h"
#include "data/settingsstore.h"
#include "data/suiteexport.h"
#include "data/urlloader.h"
#include "ui/eventhook.h"

#include <QScreen>

using namespace Qt::StringLiterals;

namespace eventtimer {

TimetableWindow::TimetableWindow(Clock &clock)
    : m_clock(clock)
    , m_out(stdout)
    , m_err(stderr)
{
    const auto loadSections = [this] {
        const std::unique_ptr<QSettings> file = SettingsStore::openStandard();
        const SettingsStore settings(*file, m_err);
        CacheFolder cache(CacheFolder::standardPath(), m_err);
        UrlLoader loader;
        EventDataSource source(settings, cache, loader, m_clock, m_out, m_err);
        return source.loadSections();
    };
    const auto exportToSuite = [this](const GlobalSequence &sequence, const QDateTime &now) {
        // A suite that cannot be written leaves the timetable as it is.
        if (const Status written = exportToSharedSuite(sequence, now); !written)
            m_err << "eventtimer: " << written.error() << Qt::endl;
    };
    m_controller = std::make_unique<ViewController>(loadSections, exportToSuite, m_clock);

    m_window.setWindowTitle(u"Event Timer"_s);
    m_window.setMinimumSize(640, 360);
    m_window.setCentralWidget(m_controller->view());
    const QSize available = m_window.screen()->availableSize();
    m_window.resize(std::min(1280, available.width()), std::min(800, available.height()));
    // The timetable is built when the view first shows, as it is on the screen.
    ViewController *controller = m_controller.get();
    new EventHook(m_controller->view(), QEvent::Show,
                  [controller] { controller->viewDidAppear(); });
}

void TimetableWindow::show()
{
    m_controller->viewDidLoad();
    m_window.show();
}

} // namespace eventtimer
