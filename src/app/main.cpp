// Event Timer: today's recurring events of the game, one row per section, on a scrolling day.
#include "appdelegate.h"
#include "clock.h"
#include "eventdatasource.h"
#include "settingsstore.h"
#include "suiteexport.h"
#include "urlloader.h"
#include "viewcontroller.h"

#include <QApplication>
#include <QMainWindow>
#include <QScreen>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

// Builds the timetable the first time the window is shown.
class FirstShow : public QObject
{
public:
    FirstShow(QWidget *view, eventtimer::ViewController &controller)
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
    eventtimer::ViewController &m_controller;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setOrganizationName(u"tolmerkvarn"_s);
    QApplication::setApplicationName(u"eventtimer"_s);
    QApplication::setApplicationDisplayName(u"Event Timer"_s);

    eventtimer::AppDelegate delegate;
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &eventtimer::AppDelegate::applicationWillTerminate);

    const eventtimer::SystemClock clock;
    QTextStream out(stdout);
    const auto loadSections = [&clock, &out] {
        const std::unique_ptr<QSettings> settings = eventtimer::SettingsStore::openStandard();
        eventtimer::SettingsStore store(*settings);
        eventtimer::UrlLoader loader;
        eventtimer::EventDataSource source(store, loader, clock, out);
        return source.loadSections();
    };
    const auto exportToSharedSuite = [](const eventtimer::GlobalSequence &sequence) {
        eventtimer::exportToSharedSuite(sequence);
    };
    eventtimer::ViewController controller(loadSections, exportToSharedSuite, clock);

    QMainWindow window;
    window.setWindowTitle(u"Event Timer"_s);
    window.setMinimumSize(640, 360);
    window.setCentralWidget(controller.view());
    const QSize available = window.screen()->availableSize();
    window.resize(std::min(1280, available.width()), std::min(800, available.height()));
    new FirstShow(controller.view(), controller);

    controller.viewDidLoad();
    window.show();
    delegate.applicationDidFinishLaunching();
    return application.exec();
}
