// The data source's two costs that a user feels: the first start, which downloads the document
// and every icon, and every later start, which reads both from the cache folder.
#include "benchsupport.h"
#include "blockingcalls.h"
#include "data/cachefolder.h"
#include "data/eventdatasource.h"
#include "data/settingsstore.h"
#include "data/urlloader.h"
#include "localeventservice/localeventservice.h"
#include "manualclock.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace eventtimer;
using namespace Qt::StringLiterals;
using namespace eventtimer::bench;
using eventtimer::testing::ManualClock;

namespace {

constexpr int iconCount = 40;
constexpr int latencyMs = 50;

void writeIcons(const QString &folder)
{
    QDir().mkpath(folder + u"/icons/file/set"_s);
    for (int i = 0; i < iconCount; ++i) {
        QImage image(48, 48, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setBrush(QColor::fromHsv(i * 9, 200, 220));
        painter.drawEllipse(2, 2, 44, 44);
        painter.end();
        image.save(folder + u"/icons/file/set/"_s + QString::number(i) + u".png"_s);
    }
}

} // namespace

class BenchDataSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void firstStartWithSlowIcons();
    void startFromTheCache();

private:
    SectionList load(UrlLoader &loader);

    QTemporaryDir m_folder;
    LocalEventService m_service;
    QString m_cachePath;
};

void BenchDataSource::initTestCase()
{
    writeIcons(m_folder.path());
    m_service.setFilesFolder(m_folder.path());
    m_service.setDocument(realisticWithServedIcons(iconCount));
    QVERIFY(m_service.listen());
    QSettings settings(m_folder.filePath(u"eventtimer.conf"_s), QSettings::IniFormat);
    settings.setValue(settingskeys::serviceUrl.toString(), m_service.baseUrl().toString());
}

void BenchDataSource::firstStartWithSlowIcons()
{
    m_service.setBehaviour(u"*"_s, {.delayMs = latencyMs});
    m_service.setBehaviour(LocalEventService::documentPath.toString(), {});

    constexpr int runs = 5;
    QList<double> single;
    QList<double> firstStart;
    for (int run = 0; run < runs; ++run) {
        UrlLoader loader;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(eventtimer::testing::readNow(
            loader, QUrl(m_service.baseUrl().toString() + u"/icons/file/set/0.png"_s)));
        single.append(static_cast<double>(timer.nsecsElapsed()) / 1e6);

        m_cachePath = m_folder.filePath(u"first-"_s + QString::number(run));
        timer.restart();
        const SectionList sections = load(loader);
        firstStart.append(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        QCOMPARE(sections.size(), 18);
    }
    qInfo("one icon request (%d ms latency): %.1f ms; first start with %d new icons: %.1f ms "
          "(%.2f x one request)",
          latencyMs, median(single), iconCount, median(firstStart),
          median(firstStart) / median(single));
    m_service.clearBehaviours();
}

void BenchDataSource::startFromTheCache()
{
    QVERIFY(!m_cachePath.isEmpty());
    constexpr int runs = 101;
    QList<double> loads;
    const int requestsBefore = m_service.totalRequests();
    for (int run = 0; run < runs; ++run) {
        UrlLoader loader;
        QElapsedTimer timer;
        timer.start();
        const SectionList sections = load(loader);
        loads.append(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        QCOMPARE(sections.size(), 18);
        QVERIFY(sections.first()->events.first()->icon);
    }
    QCOMPARE(m_service.totalRequests(), requestsBefore);
    qInfo("start from the cache (document parsed, %d icons read and checked): median %.2f ms "
          "(target 2 ms)",
          iconCount, median(loads));

    // What the first paint adds for every icon it shows: decoding.
    QList<double> decodes;
    for (int run = 0; run < runs; ++run) {
        UrlLoader loader;
        const SectionList sections = load(loader);
        QElapsedTimer timer;
        timer.start();
        QSet<const Event *> decoded;
        for (const auto &section : sections)
            for (const auto &event : section->events)
                if (event->icon && !decoded.contains(event.get()) && !event->icon->image().isNull())
                    decoded.insert(event.get());
        decodes.append(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    qInfo("decoding every one of them, as drawing them all would: median %.2f ms", median(decodes));
}

SectionList BenchDataSource::load(UrlLoader &loader)
{
    QString output;
    QTextStream out(&output);
    const SettingsStore settings(m_folder.filePath(u"eventtimer.conf"_s), out);
    CacheFolder cache(m_cachePath, out);
    ManualClock clock(QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc()),
                      QTimeZone::utc());
    EventDataSource source(settings, cache, loader, clock, out, out);
    return eventtimer::testing::loadDayNow(source).sections;
}

QTEST_GUILESS_MAIN(BenchDataSource)
#include "bench_datasource.moc"
