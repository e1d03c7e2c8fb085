// From start to the first painted frame, each start a fresh process, against a minimal Qt window
// with one label: the real window on a first start whose document comes 2 s late (the window
// must not wait for it), and on a later start with the document and icons cached (to the
// timetable's first paint). Also their peak memory.
//   bench_startup            runs the comparison (starts itself in the modes below)
//   bench_startup --window   the app; quits after its window first paints
//   bench_startup --app      the app; quits after its timetable first paints
//   bench_startup --minimal  one label in a window; quits after it first paints
#include "app/eventtimer.h"
#include "benchsupport.h"
#include "localeventservice/localeventservice.h"
#include "model/clock.h"
#include "ui/timelinewidget.h"
#include "ui/viewcontroller.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#endif

using namespace Qt::StringLiterals;
using namespace eventtimer::bench;

namespace {

// Quits once the watched widget has painted, printing the peak memory. It watches from the
// application, ahead of the program's own hooks, so that what the program leaves for after its
// first frame comes after this too.
class QuitAfterPaint : public QObject
{
public:
    explicit QuitAfterPaint(QWidget *watched)
        : QObject(watched)
        , m_watched(watched)
    {
        qApp->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (object == m_watched && event->type() == QEvent::Paint && !m_done) {
            m_done = true;
            QTimer::singleShot(0, qApp, [] {
#if __has_include(<valgrind/callgrind.h>)
                // Under callgrind, what comes after the first frame is not counted.
                CALLGRIND_TOGGLE_COLLECT;
#endif
                std::printf("painted %lld\n", static_cast<long long>(peakResidentKb()));
                std::fflush(stdout);
                QCoreApplication::quit();
            });
        }
        return false;
    }

private:
    QObject *m_watched;
    bool m_done = false;
};

int runApp(int argc, char *argv[], bool timetable)
{
    QApplication application(argc, argv);
    eventtimer::SystemClock clock;
    QTextStream out(stdout);
    QTextStream err(stderr);
    eventtimer::EventTimer program(clock, out, err);
    program.show();
    if (timetable)
        new QuitAfterPaint(program.controller().horizontalScrollContent());
    else
        new QuitAfterPaint(program.controller().view());
    return QApplication::exec();
}

int runMinimal(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QLabel label(u"Event Timer"_s);
    new QuitAfterPaint(&label);
    label.show();
    return QApplication::exec();
}

struct Run
{
    double ms = 0;
    qint64 peakKb = 0;
};

// From the child's start to the moment it says it has painted (not to its exit: how long a
// program takes to end is not its start). With `serve`, this process's event loop turns while
// the child runs, so that the service in it answers; otherwise it blocks, which times the child
// to the millisecond.
Run runChild(const QString &mode, const QProcessEnvironment &environment, bool serve = false)
{
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    child.start(QCoreApplication::applicationFilePath(), {mode});
    QByteArray output;
    double ms = -1;
    while (true) {
        const bool more = serve ? !child.waitForFinished(5) : child.waitForReadyRead(60000);
        output += child.readAllStandardOutput();
        if (const qsizetype said = output.indexOf("painted ");
            ms < 0 && said >= 0 && output.indexOf('\n', said) > said)
            ms = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        if (serve)
            QCoreApplication::processEvents();
        if (!more && child.state() == QProcess::NotRunning)
            break;
    }
    const qsizetype at = output.indexOf("painted ");
    if (at < 0 || ms < 0)
        qFatal("%s did not paint: %s", qPrintable(mode), output.constData());
    return {ms, output.mid(at + 8).trimmed().toLongLong()};
}

// "app 131.1 M, minimal window 64.2 M instructions: 2.04 x", or nothing without valgrind.
void printInstructions(const char *what, qint64 app, qint64 minimal)
{
    if (app > 0 && minimal > 0)
        std::printf("%s, in instructions: app %.1f M, minimal window %.1f M: %.2f x\n", what,
                    static_cast<double>(app) / 1e6, static_cast<double>(minimal) / 1e6,
                    static_cast<double>(app) / static_cast<double>(minimal));
}

int compare(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QTemporaryDir config;
    eventtimer::LocalEventService service;
    service.setDocumentFile(QStringLiteral(EVENTTIMER_SAMPLE_DIR) + u"/events.json"_s);
    service.setFilesFolder(QStringLiteral(EVENTTIMER_SAMPLE_DIR));
    if (!service.listen())
        qFatal("cannot start the local event service");
    QDir().mkpath(config.filePath(u"tolmerkvarn"_s));
    QFile settings(config.filePath(u"tolmerkvarn/eventtimer.conf"_s));
    if (!settings.open(QIODevice::WriteOnly))
        qFatal("cannot write the settings");
    settings.write("[General]\nevent_service_url=" + service.baseUrl().toString().toUtf8() + '\n');
    settings.close();

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_CONFIG_HOME"_s, config.path());
    environment.insert(u"XDG_DATA_HOME"_s, config.filePath(u"data"_s));
    QDir().mkpath(config.filePath(u"run"_s));
    QFile::setPermissions(config.filePath(u"run"_s),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    environment.insert(u"XDG_RUNTIME_DIR"_s, config.filePath(u"run"_s));
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    constexpr int runs = 9;

    // First starts, each with an empty cache, the document 2 s late.
    service.setBehaviour(eventtimer::LocalEventService::documentPath.toString(), {.delayMs = 2000});
    QList<double> firstWindow;
    QList<double> firstMinimal;
    for (int run = 0; run < runs; ++run) {
        QProcessEnvironment fresh = environment;
        fresh.insert(u"XDG_CACHE_HOME"_s, config.filePath(u"first-"_s + QString::number(run)));
        firstWindow.append(runChild(u"--window"_s, fresh).ms);
        firstMinimal.append(runChild(u"--minimal"_s, fresh).ms);
    }
    std::printf("first start, the document 2 s late: start to the window's first paint, median "
                "of %d: app %.1f ms, minimal window %.1f ms: %.2f x (target 1.3 x)\n",
                runs, median(firstWindow), median(firstMinimal),
                median(firstWindow) / median(firstMinimal));
    {
        QProcessEnvironment fresh = environment;
        fresh.insert(u"XDG_CACHE_HOME"_s, config.filePath(u"first-counted"_s));
        printInstructions("first start", instructions({u"--window"_s}, fresh),
                          instructions({u"--minimal"_s}, fresh));
    }
    service.clearBehaviours();

    // The start that fills the cache, then later starts from it.
    environment.insert(u"XDG_CACHE_HOME"_s, config.filePath(u"cache"_s));
    runChild(u"--app"_s, environment, true);
    if (service.requestCount(eventtimer::LocalEventService::documentPath.toString()) == 0)
        qFatal("the first start did not download");
    const int requestsBefore = service.totalRequests();
    QList<double> app;
    QList<double> minimal;
    qint64 appPeak = 0;
    qint64 minimalPeak = 0;
    for (int run = 0; run < runs; ++run) {
        const Run a = runChild(u"--app"_s, environment);
        const Run m = runChild(u"--minimal"_s, environment);
        app.append(a.ms);
        minimal.append(m.ms);
        appPeak = std::max(appPeak, a.peakKb);
        minimalPeak = std::max(minimalPeak, m.peakKb);
    }
    std::printf("later start from the cache: start to the timetable's first paint, median of "
                "%d: app %.1f ms, minimal window %.1f ms: %.2f x (target 1.4 x)\n",
                runs, median(app), median(minimal), median(app) / median(minimal));
    printInstructions("later start from the cache", instructions({u"--app"_s}, environment),
                      instructions({u"--minimal"_s}, environment));
    std::printf("peak RSS: app %lld kB, minimal window %lld kB: +%.1f MB (target +15 MB)\n",
                static_cast<long long>(appPeak), static_cast<long long>(minimalPeak),
                static_cast<double>(appPeak - minimalPeak) / 1024.0);
    std::printf("requests made by the cached starts: %d\n",
                service.totalRequests() - requestsBefore);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    const QByteArray mode = argc > 1 ? QByteArray(argv[1]) : QByteArray();
    if (mode == "--app" || mode == "--window")
        return runApp(argc, argv, mode == "--app");
    if (mode == "--minimal")
        return runMinimal(argc, argv);
    return compare(argc, argv);
}
