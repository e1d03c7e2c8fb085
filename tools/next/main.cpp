// eventtimer-next: the next chat-link events of today, for a desktop panel.
#include "next/next.h"
#include "suite/suiteformat.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

// Prints again at every new minute, and whenever the suite's folder changes (the suite is
// replaced, not written in place, so its folder is what changes).
int watch(const QStringList &arguments, QTextStream &out, QTextStream &err, const QTimeZone &zone,
          const QString &suitePath)
{
    QFileSystemWatcher watcher;
    QTimer minute;
    minute.setSingleShot(true);
    minute.setTimerType(Qt::PreciseTimer);
    const QString folder = QFileInfo(suitePath).path();
    const auto print = [&] {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        eventtimer::next::run(arguments, out, err, now, zone, suitePath);
        if (!watcher.directories().contains(folder) && QFileInfo(folder).isDir())
            watcher.addPath(folder);
        minute.start(60000 - now.time().msecsSinceStartOfDay() % 60000 + 20);
    };
    QObject::connect(&minute, &QTimer::timeout, &minute, print);
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &minute, print);
    print();
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    // A panel asks every few seconds, so a single answer starts no application object: every
    // millisecond of start-up counts. Watching needs the event loop.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    QTextStream out(stdout);
    QTextStream err(stderr);
    const QTimeZone zone = QTimeZone::systemTimeZone();
    const QString suitePath = eventtimer::suitekeys::suitePath();
    const int status = eventtimer::next::run(arguments, out, err, QDateTime::currentDateTimeUtc(),
                                             zone, suitePath);
    if (status >= 0)
        return status;
    QCoreApplication application(argc, argv);
    return watch(arguments, out, err, zone, suitePath);
}
