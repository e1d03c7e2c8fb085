// What a hostile event service costs a first start: peak memory and what is kept, when each of
// 60 icons is a body of 40 MB without a length, or a 5000 x 5000 picture, against a first start
// with ordinary icons. Each start is a process of its own; the service runs in this one.
//   bench_hostile                          runs the comparison
//   bench_hostile --start CACHE SERVICE    one first start; prints its peak memory and the
//                                          kept icons
#include "benchsupport.h"
#include "blockingcalls.h"
#include "data/cachefolder.h"
#include "data/eventdatasource.h"
#include "data/settingsstore.h"
#include "data/urlloader.h"
#include "localeventservice/localeventservice.h"
#include "manualclock.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

using namespace eventtimer;
using namespace Qt::StringLiterals;
using namespace eventtimer::bench;
using eventtimer::testing::ManualClock;

namespace {

constexpr int iconCount = 60;

QByteArray png(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(QColor(40, 120, 200));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

int start(const QString &cachePath, const QString &service)
{
    QTemporaryDir config;
    QString output;
    QTextStream out(&output);
    SettingsStore settings(config.filePath(u"eventtimer.conf"_s), out);
    settings.write({{settingskeys::serviceUrl, service}});
    CacheFolder cache(cachePath, out);
    UrlLoader loader;
    ManualClock clock(QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc()),
                      QTimeZone::utc());
    EventDataSource source(settings, cache, loader, clock, out, out);
    const SectionList sections = eventtimer::testing::loadDayNow(source).sections;
    // What the first paint would add: every icon decoded.
    for (const auto &section : sections)
        for (const auto &event : section->events)
            if (event->icon)
                event->icon->image();
    qint64 largest = 0;
    int kept = 0;
    for (QDirIterator it(cachePath + u"/icons"_s, QDir::Files); it.hasNext(); ++kept)
        largest = std::max(largest, it.nextFileInfo().size());
    std::printf("%lld %d %lld %lld\n", static_cast<long long>(peakResidentKb()), kept,
                static_cast<long long>(largest), static_cast<long long>(sections.size()));
    return sections.isEmpty() ? 1 : 0;
}

int compare()
{
    QTemporaryDir work;
    LocalEventService service;
    service.setDocument(realisticWithServedIcons(iconCount));
    if (!service.listen())
        qFatal("cannot start the local event service");
    const QByteArray ordinary = png(48, 48);
    const QByteArray huge = png(5000, 5000);
    struct Case
    {
        const char *name;
        LocalEventService::Behaviour icons;
    };
    const Case cases[] = {
        {"ordinary 48 x 48 icons", {.body = ordinary}},
        {"icons of 40 MB without a length", {.oversizeBytes = 40 * 1000 * 1000, .noLength = true}},
        {"icons of 5000 x 5000 pixels", {.body = huge}},
    };
    qint64 ordinaryPeak = 0;
    int index = 0;
    for (const Case &hostile : cases) {
        service.setBehaviour(u"*"_s, hostile.icons);
        service.setBehaviour(LocalEventService::documentPath.toString(), {});
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(
            QCoreApplication::applicationFilePath(),
            {u"--start"_s, work.filePath(QString::number(index++)), service.baseUrl().toString()});
        // The service answers from this process: turn its event loop while the child loads.
        while (!child.waitForFinished(10))
            QCoreApplication::processEvents();
        const QList<QByteArray> figures = child.readAllStandardOutput().trimmed().split(' ');
        if (figures.size() != 4)
            qFatal("%s: the start printed no figures", hostile.name);
        const qint64 peak = figures.at(0).toLongLong();
        if (ordinaryPeak == 0)
            ordinaryPeak = peak;
        std::printf("%-34s peak %6.1f MB (%+6.1f MB; target +100 MB), %2d icons kept, the "
                    "largest %lld bytes (target 65536)\n",
                    hostile.name, static_cast<double>(peak) / 1024.0,
                    static_cast<double>(peak - ordinaryPeak) / 1024.0, figures.at(1).toInt(),
                    figures.at(2).toLongLong());
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 4 && QByteArray(argv[1]) == "--start") {
        QGuiApplication application(argc, argv);
        return start(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    }
    QGuiApplication application(argc, argv);
    return compare();
}
