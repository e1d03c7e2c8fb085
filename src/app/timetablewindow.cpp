#include "timetablewindow.h"

#include "eventdatasource.h"
#include "settingsstore.h"
#include "suiteexport.h"
#include "urlloader.h"

#include <QEvent>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

// Builds the timetable the first time the view is shown.
class FirstShow : public QObject
{
public:
    FirstShow(QWidget *view, ViewController &controller)
        : QObject(view)
        , m_controller(controller)
    {
        view->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Show)
            m_controller.viewDidAppear();
        return false;
    }

private:
    ViewController &m_controller;
};

} // namespace

TimetableWindow::TimetableWindow(const Clock &clock)
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
    new FirstShow(m_controller->view(), *m_controller);
}

void TimetableWindow::show()
{
    m_controller->viewDidLoad();
    m_window.show();
}

} // namespace eventtimer
