// Event Timer: today's recurring events of the game, one row per section, on a scrolling day.
#include "app/appdelegate.h"
#include "app/timetablewindow.h"
#include "model/clock.h"

#include <QApplication>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setOrganizationName(u"tolmerkvarn"_s);
    QApplication::setApplicationName(u"eventtimer"_s);
    QApplication::setApplicationDisplayName(u"Event Timer"_s);

    eventtimer::AppDelegate delegate;
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &eventtimer::AppDelegate::applicationWillTerminate);

    eventtimer::SystemClock clock;
    eventtimer::TimetableWindow window(clock);
    window.show();
    delegate.applicationDidFinishLaunching();
    return QApplication::exec();
}
