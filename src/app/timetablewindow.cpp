#include "app/timetablewindow.h"

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
{
    const auto loadSections = [this] {
        const std::unique_ptr<QSettings> settings = SettingsStore::openStandard();
        SettingsStore store(*settings);
        UrlLoader loader;
        EventDataSource source(store, loader, m_clock, m_out);
        return source.loadSections();
    };
    const auto exportToSuite = [](const GlobalSequence &sequence) {
        // A suite that cannot be written leaves the timetable as it is.
        exportToSharedSuite(sequence);
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
