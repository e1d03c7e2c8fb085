// Event Timer: today's recurring events of the game, one row per section, on a scrolling day.
#include "app/appdelegate.h"
#include "app/commandline.h"
#include "app/eventtimer.h"
#include "app/singleinstance.h"
#include "model/clock.h"
#include "version.h"

#include <QApplication>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// EVENTTIMER_NOW=2026-11-22T23:58:00 starts the clock at that local time (for rehearsing a
// reminder or the change of day); it runs on from there.
std::chrono::milliseconds clockShift()
{
    const QString wanted = qEnvironmentVariable("EVENTTIMER_NOW");
    if (wanted.isEmpty())
        return {};
    const QDateTime start = QDateTime::fromString(wanted, Qt::ISODate);
    if (!start.isValid()) {
        std::fprintf(stderr, "eventtimer: EVENTTIMER_NOW is no date and time: %s\n",
                     qUtf8Printable(wanted));
        return {};
    }
    return std::chrono::milliseconds(QDateTime::currentDateTimeUtc().msecsTo(start));
}

} // namespace

int main(int argc, char *argv[])
{
    // Help, the version and a wrong argument are answered before anything needs a display.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const eventtimer::CommandLine commandLine = eventtimer::CommandLine::parse(arguments);
    std::fputs(qUtf8Printable(commandLine.out), stdout);
    std::fputs(qUtf8Printable(commandLine.err), stderr);
    if (commandLine.exitStatus >= 0)
        return commandLine.exitStatus;

    // Takes Qt's own options off the command line.
    QApplication application(argc, argv);
    QApplication::setOrganizationName(u"tolmerkvarn"_s);
    QApplication::setApplicationName(u"eventtimer"_s);
    QApplication::setApplicationDisplayName(u"Event Timer"_s);
    QApplication::setApplicationVersion(QStringLiteral(EVENTTIMER_VERSION));
    // Docks and Wayland find the icon and the name through it.
    QGuiApplication::setDesktopFileName(u"org.tolmerkvarn.eventtimer"_s);

    eventtimer::SingleInstance instance(u"org.tolmerkvarn.eventtimer"_s);
    if (!instance.claim()) {
        if (instance.activateFirst()) {
            std::fputs("eventtimer: Event Timer is running already and was brought to the front; "
                       "this start's options and environment are not used\n",
                       stderr);
            return 0;
        }
        std::fprintf(stderr, "eventtimer: another Event Timer holds the lock but does not "
                             "answer\n");
        return 1;
    }

    eventtimer::AppDelegate delegate;
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &eventtimer::AppDelegate::applicationWillTerminate);

    eventtimer::SystemClock clock(clockShift());
    QTextStream out(stdout);
    QTextStream err(stderr);
    eventtimer::EventTimer program(clock, out, err);
    QObject::connect(&instance, &eventtimer::SingleInstance::activationRequested, &program.window(),
                     &eventtimer::TimetableWindow::bringToFront);
    program.show(commandLine.hidden);
    delegate.applicationDidFinishLaunching();
    return QApplication::exec();
}
