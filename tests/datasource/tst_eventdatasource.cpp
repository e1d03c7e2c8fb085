#include "clock.h"
#include "eventdatasource.h"
#include "eventservice.h"
#include "iconcache.h"
#include "settingsstore.h"
#include "testimages.h"
#include "urlloader.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;
using eventtimer::testing::pngBytes;

namespace {

// One section whose events each have an icon under base/icons/file/set/<i>.png.
QByteArray documentWithIcons(const QUrl &base, int icons)
{
    QJsonObject segments;
    for (int i = 0; i < icons; ++i)
        segments.insert(QString::number(i),
                        QJsonObject{{u"name"_s, u"Event "_s + QString::number(i)},
                                    {u"icon"_s, base.toString() + u"/icons/file/set/"_s +
                                                    QString::number(i) + u".png"_s}});
    const QJsonObject pattern{{u"d"_s, 60}, {u"r"_s, 0}};
    const QJsonObject section{{u"category"_s, u"Coast"_s},
                              {u"name"_s, u"Harbour"_s},
                              {u"segments"_s, segments},
                              {u"sequences"_s, QJsonObject{{u"partial"_s, QJsonArray()},
                                                           {u"pattern"_s, QJsonArray{pattern}}}}};
    return QJsonDocument(QJsonArray{section}).toJson();
}

const QByteArray goodDocument = R"([
    {"category": "Coast", "name": "Harbour", "segments": {"0": {"name": "Tide Raid"}},
     "sequences": {"partial": [], "pattern": [{"d": 60, "r": 0}]}},
    {"category": "Peaks", "name": "Summit", "segments": {"1": {"name": "Ember Wyrm"}},
     "sequences": {"partial": [], "pattern": [{"d": 120, "r": 1}]}}
])";

// Noon of a fixed day, in UTC.
FixedClock noonClock()
{
    return FixedClock(QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc()),
                      QTimeZone::utc());
}

const QString connectionOk = u"[CONNECTION] OK, data correctly downloaded"_s;
const QString connectionError = u"[ERROR] There is an unspecified error with the connection"_s;
const QString parseError = u"[ERROR] An error has happened with parsing of json data"_s;
const QString jsonOk = u"[JSON] OK!"_s;

} // namespace

class TestEventDataSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void firstRunDownloadsAndStores();
    void secondRunWithinTheWeekUsesTheCache();
    void refreshRule_data();
    void refreshRule();
    void staleCacheWithServiceDownKeepsTheOldCopy();
    void nonJsonBodyIsStoredAndFailsEveryRun();
    void failedReadsStoreNothing_data();
    void failedReadsStoreNothing();
    void skippedSectionsAreReported();
    void bundledSampleLoadsWithAllItsIcons();
    void iconsAreFetchedOnceAndFailuresRetried();
    void serviceAddress_data();
    void serviceAddress();
    void addressRule_data();
    void addressRule();

private:
    QStringList load(UrlLoader::Limits limits = {});

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QSettings> m_settings;
    std::unique_ptr<SettingsStore> m_store;
    std::unique_ptr<EventService> m_service;
    FixedClock m_clock = noonClock();
    SectionList m_sections;
};

void TestEventDataSource::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_settings = std::make_unique<QSettings>(m_folder->filePath(u"eventtimer.conf"_s),
                                             SettingsStore::format());
    m_store = std::make_unique<SettingsStore>(*m_settings);
    m_service = std::make_unique<EventService>();
    QVERIFY(m_service->listen());
    m_service->setDocument(goodDocument);
    m_store->setValue(settingskeys::serviceUrl.toString(), m_service->baseUrl().toString());
    m_clock = noonClock();
}

void TestEventDataSource::cleanup()
{
    m_sections.clear();
    m_service.reset();
    m_store.reset();
    m_settings.reset();
    m_folder.reset();
}

QStringList TestEventDataSource::load(UrlLoader::Limits limits)
{
    QString output;
    QTextStream out(&output);
    UrlLoader loader(limits);
    EventDataSource source(*m_store, loader, m_clock, out);
    m_sections = source.loadSections();
    return output.split(u'\n', Qt::SkipEmptyParts);
}

void TestEventDataSource::firstRunDownloadsAndStores()
{
    QCOMPARE(load(), (QStringList{connectionOk, jsonOk}));
    QCOMPARE(m_sections.size(), 2);
    QCOMPARE(m_sections.at(1)->sequence.size(), 12);
    QCOMPARE(m_service->requestCount(EventService::documentPath.toString()), 1);

    // Both keys are on disk, as another process would read them.
    QSettings reread(m_settings->fileName(), SettingsStore::format());
    QCOMPARE(reread.value(settingskeys::documentBytes.toString()).toByteArray(), goodDocument);
    QCOMPARE(reread.value(settingskeys::documentDate.toString()).toDateTime(), m_clock.now());
}

void TestEventDataSource::secondRunWithinTheWeekUsesTheCache()
{
    load();
    m_service->setDocument("[]");
    m_clock.setNow(m_clock.now().addDays(6));
    QCOMPARE(load(), QStringList{jsonOk});
    QCOMPARE(m_sections.size(), 2);
    QCOMPARE(m_service->totalRequests(), 1);
}

void TestEventDataSource::refreshRule_data()
{
    QTest::addColumn<QVariant>("bytes");
    QTest::addColumn<QVariant>("date");
    QTest::addColumn<bool>("downloads");

    const QDateTime now = noonClock().now();
    const QVariant cached = QVariant("[]"_ba);
    QTest::newRow("604799.9 s old: cache") << cached << QVariant(now.addMSecs(-604799900)) << false;
    QTest::newRow("604800.0 s old: download") << cached << QVariant(now.addSecs(-604800)) << true;
    QTest::newRow("a stamp in the future is fresh") << cached << QVariant(now.addDays(30)) << false;
    QTest::newRow("bytes without a date: used for ever") << cached << QVariant() << false;
    QTest::newRow("a date that is not a date counts as none")
        << cached << QVariant(u"yesterday"_s) << false;
    QTest::newRow("a date without bytes downloads") << QVariant() << QVariant(now) << true;
    QTest::newRow("bytes that are not data download") << QVariant(u"[]"_s) << QVariant(now) << true;
    QTest::newRow("nothing stored downloads") << QVariant() << QVariant() << true;
}

void TestEventDataSource::refreshRule()
{
    QFETCH(QVariant, bytes);
    QFETCH(QVariant, date);
    QFETCH(bool, downloads);

    m_store->setValue(settingskeys::documentBytes.toString(), bytes);
    m_store->setValue(settingskeys::documentDate.toString(), date);
    const QStringList lines = load();
    QCOMPARE(m_service->totalRequests(), downloads ? 1 : 0);
    const QStringList expectedLines =
        downloads ? QStringList{connectionOk, jsonOk} : QStringList{jsonOk};
    QCOMPARE(lines, expectedLines);
    QCOMPARE(m_sections.size(), downloads ? 2 : 0);
}

void TestEventDataSource::staleCacheWithServiceDownKeepsTheOldCopy()
{
    const QDateTime old = m_clock.now().addDays(-8);
    m_store->setValue(settingskeys::documentBytes.toString(), goodDocument);
    m_store->setValue(settingskeys::documentDate.toString(), old);
    m_service.reset(); // nobody listens on the configured port any more

    QCOMPARE(load(), QStringList{connectionError});
    QVERIFY(m_sections.isEmpty());
    QCOMPARE(m_store->value(settingskeys::documentBytes.toString()).toByteArray(), goodDocument);
    QCOMPARE(m_store->value(settingskeys::documentDate.toString()).toDateTime(), old);
}

void TestEventDataSource::nonJsonBodyIsStoredAndFailsEveryRun()
{
    m_service->setDocument("<html>maintenance</html>");
    QCOMPARE(load(), (QStringList{connectionOk, parseError}));
    QCOMPARE(m_store->value(settingskeys::documentBytes.toString()).toByteArray(),
             "<html>maintenance</html>"_ba);
    QCOMPARE(load(), QStringList{parseError});
    QCOMPARE(m_service->totalRequests(), 1);

    // A top-level value that is not an array is no event document either.
    m_store->remove(settingskeys::documentBytes.toString());
    m_service->setDocument(R"({"sections": []})");
    QCOMPARE(load(), (QStringList{connectionOk, parseError}));
}

void TestEventDataSource::failedReadsStoreNothing_data()
{
    QTest::addColumn<EventService::Behaviour>("behaviour");

    QTest::newRow("HTTP 500") << EventService::Behaviour{0, 500, false, 0};
    QTest::newRow("HTTP 404") << EventService::Behaviour{0, 404, false, 0};
    QTest::newRow("connection closed mid-body") << EventService::Behaviour{0, 200, true, 0};
    QTest::newRow("slower than the time-out") << EventService::Behaviour{3000, 200, false, 0};
    QTest::newRow("body over the cap") << EventService::Behaviour{0, 200, false, 300 * 1024};
}

void TestEventDataSource::failedReadsStoreNothing()
{
    QFETCH(EventService::Behaviour, behaviour);

    m_service->setBehaviour(EventService::documentPath.toString(), behaviour);
    QCOMPARE(load({std::chrono::milliseconds(1000), 256 * 1024}), QStringList{connectionError});
    QVERIFY(m_sections.isEmpty());
    QVERIFY(!m_store->value(settingskeys::documentBytes.toString()).isValid());
    QVERIFY(!m_store->value(settingskeys::documentDate.toString()).isValid());
}

void TestEventDataSource::skippedSectionsAreReported()
{
    m_service->setDocument(R"([{"category": "Coast", "name": "Harbour", "segments": {},
        "sequences": {"partial": [], "pattern": []}}, 5])");
    QCOMPARE(
        load(),
        (QStringList{
            connectionOk,
            jsonOk,
            u"[ERROR] Skipped section 1: \"Harbour\": \"pattern\" is empty, so the day never fills"_s,
            u"[ERROR] Skipped section 2: not an object (found 5)"_s,
        }));
    QVERIFY(m_sections.isEmpty());
}

void TestEventDataSource::bundledSampleLoadsWithAllItsIcons()
{
    const QString sample = QStringLiteral(EVENTTIMER_SAMPLE_DIR);
    m_service->setDocumentFile(sample + u"/events.json"_s);
    m_service->setFilesFolder(sample);

    QCOMPARE(load(), (QStringList{connectionOk, jsonOk}));
    QCOMPARE(m_sections.size(), 18);
    QSet<QString> categories;
    int icons = 0;
    for (const auto &section : std::as_const(m_sections)) {
        categories.insert(section->category);
        QVERIFY(!section->sequence.isEmpty());
        for (const auto &event : section->events)
            icons += event->icon ? 1 : 0;
    }
    QVERIFY(categories.size() >= 5);
    QCOMPARE(m_service->requestCount(EventService::documentPath.toString()), 1);
    // Every icon the document names was served and decoded.
    QCOMPARE(m_service->totalRequests() - 1, 63);
    QVERIFY(icons >= 63);
}

void TestEventDataSource::iconsAreFetchedOnceAndFailuresRetried()
{
    QTemporaryDir icons;
    QVERIFY(QDir(icons.path()).mkpath(u"icons/file/set"_s));
    for (int i = 0; i < 5; ++i) {
        QFile file(icons.filePath(u"icons/file/set/"_s + QString::number(i) + u".png"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(pngBytes(QColor(i * 40, 0, 0)));
    }
    m_service->setFilesFolder(icons.path());
    m_service->setDocument(documentWithIcons(m_service->baseUrl(), 6)); // icon 5 does not exist

    load();
    QCOMPARE(m_sections.size(), 1);
    const auto &events = m_sections.first()->events;
    QCOMPARE(events.size(), 6);
    for (int i = 0; i < 5; ++i) {
        QVERIFY(events.at(i)->icon);
        QCOMPARE(events.at(i)->icon->pixelColor(0, 0), QColor(i * 40, 0, 0));
    }
    QVERIFY(!events.at(5)->icon);
    for (int i = 0; i < 6; ++i)
        QCOMPARE(m_service->requestCount(u"/icons/file/set/"_s + QString::number(i) + u".png"_s),
                 1);

    // Next start: the five come from the store, the failed one is asked for again.
    QFile missing(icons.filePath(u"icons/file/set/5.png"_s));
    QVERIFY(missing.open(QIODevice::WriteOnly));
    missing.write(pngBytes(Qt::blue));
    missing.close();
    load();
    QVERIFY(m_sections.first()->events.at(0)->icon);
    QCOMPARE(m_sections.first()->events.at(5)->icon->pixelColor(0, 0), QColor(Qt::blue));
    QCOMPARE(m_service->requestCount(u"/icons/file/set/0.png"_s), 1);
    QCOMPARE(m_service->requestCount(u"/icons/file/set/5.png"_s), 2);
}

void TestEventDataSource::serviceAddress_data()
{
    QTest::addColumn<QVariant>("configured");
    QTest::addColumn<QString>("expected");

    const QString builtIn = QStringLiteral(EVENTTIMER_SERVICE_URL) + u"/api/events/sequence"_s;
    QTest::newRow("built in") << QVariant() << builtIn;
    QTest::newRow("configured") << QVariant(u"https://events.example.test"_s)
                                << u"https://events.example.test/api/events/sequence"_s;
    QTest::newRow("configured with a trailing slash")
        << QVariant(u"http://127.0.0.1:8080/"_s) << u"http://127.0.0.1:8080/api/events/sequence"_s;
    QTest::newRow("empty text falls back") << QVariant(u""_s) << builtIn;
}

void TestEventDataSource::serviceAddress()
{
    QFETCH(QVariant, configured);
    QFETCH(QString, expected);

    m_store->setValue(settingskeys::serviceUrl.toString(), configured);
    UrlLoader loader;
    QString output;
    QTextStream out(&output);
    const EventDataSource source(*m_store, loader, m_clock, out);
    QCOMPARE(source.serviceUrl().toString(), expected);
}

void TestEventDataSource::addressRule_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("allowed");

    QTest::newRow("https") << u"https://events.example.test/x"_s << true;
    QTest::newRow("http to 127.0.0.1") << u"http://127.0.0.1:8080/x"_s << true;
    QTest::newRow("http to 127.5.0.9") << u"http://127.5.0.9/x"_s << true;
    QTest::newRow("http to ::1") << u"http://[::1]:8080/x"_s << true;
    QTest::newRow("http to localhost") << u"http://LocalHost/x"_s << true;
    QTest::newRow("http elsewhere") << u"http://events.example.test/x"_s << false;
    QTest::newRow("http to a private address") << u"http://192.168.1.4/x"_s << false;
    QTest::newRow("ftp") << u"ftp://127.0.0.1/x"_s << false;
    QTest::newRow("file") << u"file:///etc/passwd"_s << false;
}

void TestEventDataSource::addressRule()
{
    QFETCH(QString, url);
    QFETCH(bool, allowed);
    QCOMPARE(UrlLoader::checkAddress(QUrl(url)).ok(), allowed);
}

QTEST_GUILESS_MAIN(TestEventDataSource)
#include "tst_eventdatasource.moc"
