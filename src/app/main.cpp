// Event Timer: today's recurring events of the game, one row per section, on a scrolling day.
#include "app/appdelegate.h"
#include "app/singleinstance.h"
#include "app/timetablewindow.h"
#include "model/clock.h"
#include "version.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// --help and --version are answered without a window (and without a display); any other
// argument is refused. Returns the exit status, or -1 to start the program.
int answerCommandLine(int argc, char *argv[])
{
    QStringList arguments{u"eventtimer"_s};
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Event Timer: today's recurring events of the game, one row per section on a day\n"
        u"that scrolls sideways; one click copies an event's chat link. Settings:\n"
        u"$XDG_CONFIG_HOME/tolmerkvarn/eventtimer.conf; downloads:\n"
        u"$XDG_CACHE_HOME/tolmerkvarn/eventtimer/; shared with companion programs:\n"
        u"$XDG_DATA_HOME/tolmerkvarn.eventtimer/suite.json."_s);
    const QCommandLineOption help(QStringList{u"h"_s, u"help"_s}, u"Show this help."_s);
    const QCommandLineOption version(u"version"_s, u"Show the version."_s);
    parser.addOptions({help, version});
    if (!parser.parse(arguments) || !parser.positionalArguments().isEmpty()) {
        const QString problem =
            parser.errorText().isEmpty()
                ? u"unexpected argument "_s + parser.positionalArguments().first()
                : parser.errorText();
        std::fprintf(stderr, "eventtimer: %s\nUsage: eventtimer [--help | --version]\n",
                     qUtf8Printable(problem));
        return 2;
    }
    if (parser.isSet(help)) {
        std::printf("Usage: eventtimer [--help | --version]\n\n%s\n\nOptions:\n"
                    "  -h, --help  Show this help.\n  --version   Show the version.\n",
                    qUtf8Printable(parser.applicationDescription()));
        return 0;
    }
    if (parser.isSet(version)) {
        std::printf("eventtimer %s\n", EVENTTIMER_VERSION);
        return 0;
    }
    return -1;
}

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
    if (const int status = answerCommandLine(argc, argv); status >= 0)
        return status;

    QApplication application(argc, argv);
    QApplication::setOrganizationName(u"tolmerkvarn"_s);
    QApplication::setApplicationName(u"eventtimer"_s);
    QApplication::setApplicationDisplayName(u"Event Timer"_s);
    QApplication::setApplicationVersion(QStringLiteral(EVENTTIMER_VERSION));
    // Docks and Wayland find the icon and the name through it.
    QGuiApplication::setDesktopFileName(u"org.tolmerkvarn.eventtimer"_s);

    eventtimer::SingleInstance instance(u"org.tolmerkvarn.eventtimer"_s);
    if (!instance.claim()) {
        if (instance.activateFirst())
            return 0;
        std::fprintf(stderr, "eventtimer: another Event Timer holds the lock but does not "
                             "answer\n");
        return 1;
    }

    eventtimer::AppDelegate delegate;
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &eventtimer::AppDelegate::applicationWillTerminate);

    eventtimer::SystemClock clock(clockShift());
    eventtimer::TimetableWindow window(clock);
    QObject::connect(&instance, &eventtimer::SingleInstance::activationRequested, &window,
                     &eventtimer::TimetableWindow::bringToFront);
    window.show();
    delegate.applicationDidFinishLaunching();
    return QApplication::exec();
}
