// The program as it mostly runs: idle, with reminders set. Its resident memory after the
// timetable is up against a window with one label, each a process of its own; its wake-ups
// while idle, counted as the voluntary context switches of those processes over 20 s; and the
// timer callbacks over 10 simulated minutes with three reminders in them.
//   bench_idle            runs the comparison (starts itself in the modes below)
//   bench_idle --app      the app from its cache, idle for 20 s after its first paint
//   bench_idle --minimal  one label in a window, idle for 20 s after its first paint
#include "app/eventtimer.h"
#include "benchsupport.h"
#include "localeventservice/localeventservice.h"
#include "manualclock.h"
#include "ui/viewcontroller.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace eventtimer::bench;
using namespace std::chrono_literals;

namespace {

constexpr auto idleFor = 20s;

// Once the watched widget has painted: idles, then prints its memory and wake-ups and quits.
class IdleAfterPaint : public QObject
{
public:
    explicit IdleAfterPaint(QWidget *watched)
        : QObject(watched)
    {
        watched->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !m_started) {
            m_started = true;
            // Settled first: what the start left to do is not idling.
            QTimer::singleShot(2s, qApp, [] {
                const qint64 before = processStatus("voluntary_ctxt_switches");
                QTimer::singleShot(idleFor, qApp, [before] {
                    std::printf("idle %lld %lld\n", static_cast<long long>(processStatus("VmRSS")),
                                static_cast<long long>(processStatus("voluntary_ctxt_switches") -
                                                       before - 1));
                    std::fflush(stdout);
                    QCoreApplication::quit();
                });
            });
        }
        return false;
    }

private:
    bool m_started = false;
};

int runApp(int argc, char *argv[])
{
    QApplication application(argc, argv);
    eventtimer::SystemClock clock;
    QTextStream out(stdout);
    QTextStream err(stderr);
    eventtimer::EventTimer program(clock, out, err);
    program.show();
    QObject::connect(
        &program.days(), &eventtimer::DayLoader::timetableReplaced, &program,
        [&program] { new IdleAfterPaint(program.controller().horizontalScrollContent()); });
    return QApplication::exec();
}

int runMinimal(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QLabel label(u"Event Timer"_s);
    new IdleAfterPaint(&label);
    label.show();
    return QApplication::exec();
}

struct Idle
{
    qint64 residentKb = 0;
    qint64 wakeUps = 0;
};

Idle runChild(const QString &mode, const QProcessEnvironment &environment)
{
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {mode});
    while (!child.waitForFinished(50))
        QCoreApplication::processEvents();
    const QByteArray output = child.readAllStandardOutput();
    const qsizetype at = output.lastIndexOf("idle ");
    if (at < 0)
        qFatal("%s did not idle: %s", qPrintable(mode), output.constData());
    const QList<QByteArray> numbers = output.mid(at + 5).trimmed().split(' ');
    return {numbers.value(0).toLongLong(), numbers.value(1).toLongLong()};
}

// The window with the document's three next events marked, its clock moved 10 minutes on.
void countSimulatedWakeUps()
{
    eventtimer::testing::ManualClock clock(
        QDateTime(QDate(2026, 11, 22), QTime(1, 9), QTimeZone::utc()), QTimeZone::utc());
    QTextStream out(stdout);
    QTextStream err(stderr);
    eventtimer::EventTimer program(clock, out, err);
    program.reminders().setBus(QDBusConnection(u"none"_s));
    program.reminders().choices().assign(
        {u"Marsh Leviathan"_s, u"Rift of Brine"_s, u"Vyrnax the Hoarfrost"_s}, 5);
    int reminders = 0;
    QObject::connect(&program.reminders().scheduler(), &eventtimer::ReminderScheduler::remind,
                     &program, [&reminders] { ++reminders; });
    program.show();
    while (!program.controller().isBuilt())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    const int before = clock.callbacksMade();
    clock.advance(10min);
    // Two callbacks a minute: the marker's and the day's owner's (which also asks the reminders).
    std::printf("10 simulated idle minutes with %d reminders in them: %d timer callbacks "
                "(target at most 20 + %d)\n",
                reminders, clock.callbacksMade() - before, reminders);
}

int compare(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QTemporaryDir home;
    eventtimer::LocalEventService service;
    service.setDocumentFile(QStringLiteral(EVENTTIMER_SAMPLE_DIR) + u"/events.json"_s);
    service.setFilesFolder(QStringLiteral(EVENTTIMER_SAMPLE_DIR));
    if (!service.listen())
        qFatal("cannot start the local event service");
    QDir().mkpath(home.filePath(u"config/tolmerkvarn"_s));
    QFile settings(home.filePath(u"config/tolmerkvarn/eventtimer.conf"_s));
    if (!settings.open(QIODevice::WriteOnly))
        qFatal("cannot write the settings");
    settings.write("[General]\nevent_service_url=" + service.baseUrl().toString().toUtf8() +
                   "\n[reminders]\nevents=Marsh Leviathan, Rift of Brine, Sky Leviathan\n"
                   "lead_minutes=5\n");
    settings.close();
    QDir().mkpath(home.filePath(u"run"_s));
    QFile::setPermissions(home.filePath(u"run"_s),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    for (const auto &[variable, folder] :
         {std::pair{"XDG_CONFIG_HOME", "config"}, std::pair{"XDG_CACHE_HOME", "cache"},
          std::pair{"XDG_DATA_HOME", "data"}, std::pair{"XDG_RUNTIME_DIR", "run"}})
        qputenv(variable, home.filePath(QString::fromLatin1(folder)).toUtf8());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);

    // The first start fills the cache; the simulated minutes then start from it.
    countSimulatedWakeUps();
    const Idle app = runChild(u"--app"_s, environment);
    const Idle minimal = runChild(u"--minimal"_s, environment);
    std::printf("idle with reminders set: resident %lld kB, minimal window %lld kB: +%.1f MB "
                "(target +8 MB)\n",
                static_cast<long long>(app.residentKb), static_cast<long long>(minimal.residentKb),
                static_cast<double>(app.residentKb - minimal.residentKb) / 1024.0);
    std::printf("wake-ups over %lld idle seconds: app %lld, minimal window %lld\n",
                static_cast<long long>(idleFor.count()), static_cast<long long>(app.wakeUps),
                static_cast<long long>(minimal.wakeUps));
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    const QByteArray mode = argc > 1 ? QByteArray(argv[1]) : QByteArray();
    if (mode == "--app")
        return runApp(argc, argv);
    if (mode == "--minimal")
        return runMinimal(argc, argv);
    return compare(argc, argv);
}
