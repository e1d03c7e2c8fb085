#include "data/cachefolder.h"
#include "data/eventdatasource.h"
#include "data/settingsstore.h"
#include "data/urlloader.h"
#include "eventservice/eventservice.h"
#include "model/clock.h"
#include "testimages.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QSet>
#include <QSslConfiguration>
#include <QSslKey>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;
using eventtimer::testing::pngBytes;

namespace {

const QByteArray goodDocument = R"([
    {"category": "Coast", "name": "Harbour", "segments": {"0": {"name": "Tide Raid"}},
     "sequences": {"partial": [], "pattern": [{"d": 60, "r": 0}]}},
    {"category": "Peaks", "name": "Summit", "segments": {"1": {"name": "Ember Wyrm"}},
     "sequences": {"partial": [], "pattern": [{"d": 120, "r": 1}]}}
])";

const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc());
const QString connectionOk = u"[CONNECTION] OK, data correctly downloaded"_s;
const QString connectionError = u"[ERROR] There is an unspecified error with the connection"_s;
const QString parseError = u"[ERROR] An error has happened with parsing of json data"_s;
const QString jsonOk = u"[JSON] OK!"_s;

QByteArray dateText(const QDateTime &date)
{
    return date.toUTC().toString(Qt::ISODateWithMs).toLatin1();
}

// What the cache holds before a start (the document's and the date's files), and what the
// start says, shows and asks for.
struct Load
{
    std::optional<QByteArray> bytes;
    std::optional<QByteArray> date;
    QStringList lines;
    qsizetype sections = 0;
    int requests = 0;
    bool serviceDown = false;
    EventService::Behaviour behaviour;
    QByteArray document = goodDocument;
};

} // namespace

class TestEventDataSource : public QObject
{
    Q_OBJECT

private:
    QStringList load(int timeoutMs = 2000)
    {
        QString output;
        QTextStream out(&output);
        QTextStream err(&m_errors);
        const SettingsStore settings(*m_settings, err);
        CacheFolder cache(m_cachePath, err);
        UrlLoader loader({std::chrono::milliseconds(timeoutMs), 1024 * 1024});
        EventDataSource source(settings, cache, loader, *m_clock, out, err);
        m_sections = source.loadSections();
        m_following = source.followingDay();
        return output.split(u'\n', Qt::SkipEmptyParts);
    }

    std::optional<QByteArray> kept(QStringView file) const
    {
        QString err;
        QTextStream errors(&err);
        return CacheFolder(m_cachePath, errors).read(file.toString(), 1 << 20);
    }
    void keep(QStringView file, const std::optional<QByteArray> &bytes)
    {
        QString err;
        QTextStream errors(&err);
        if (bytes)
            CacheFolder(m_cachePath, errors).write(file.toString(), *bytes);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_cachePath;
    QString m_errors;
    std::unique_ptr<QSettings> m_settings;
    std::unique_ptr<EventService> m_service;
    std::unique_ptr<ManualClock> m_clock;
    SectionList m_sections;
    SectionList m_following;

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_cachePath = m_folder->filePath(u"cache"_s);
        m_errors.clear();
        m_service = std::make_unique<EventService>();
        QVERIFY(m_service->listen());
        m_service->setDocument(goodDocument);
        // The address of the service's root, with a slash at the end as users write it.
        m_settings = std::make_unique<QSettings>(m_folder->filePath(u"eventtimer.conf"_s),
                                                 QSettings::IniFormat);
        m_settings->setValue(settingskeys::serviceUrl.toString(),
                             m_service->baseUrl().toString() + u'/');
        m_clock = std::make_unique<ManualClock>(noon, QTimeZone::utc());
    }

    void cleanup()
    {
        m_sections.clear();
        m_service.reset();
        m_settings.reset();
        m_folder.reset();
    }

    void firstRunDownloadsThenTheWeekUsesTheCopy()
    {
        QCOMPARE(load(), (QStringList{connectionOk, jsonOk}));
        QCOMPARE(m_sections.size(), 2);
        // The same document from the next midnight, for looking past the day's end.
        QCOMPARE(m_following.size(), 2);
        QCOMPARE(m_following.first()->sequence.first()->time,
                 secondsSinceEpoch(noon.date().addDays(1).startOfDay(QTimeZone::utc())));
        // Both files are kept, as the next start reads them.
        QCOMPARE(kept(EventDataSource::documentFile), goodDocument);
        QCOMPARE(kept(EventDataSource::dateFile), dateText(noon));
        QVERIFY(m_errors.isEmpty());

        m_service->setDocument("[]");
        m_clock->setNow(noon.addDays(6));
        QCOMPARE(load(), QStringList{jsonOk});
        QCOMPARE(m_sections.size(), 2);
        QCOMPARE(m_service->totalRequests(), 1);
    }

    void loads_data()
    {
        QTest::addColumn<Load>("load");
        const QByteArray cached = "[]";
        const QStringList downloaded{connectionOk, jsonOk};
        QTest::newRow("604799.9 s old: the copy")
            << Load{cached, dateText(noon.addMSecs(-604799900)), {jsonOk}};
        QTest::newRow("604800.0 s old: download")
            << Load{cached, dateText(noon.addSecs(-604800)), downloaded, 2, 1};
        QTest::newRow("a date in the future is fresh")
            << Load{cached, dateText(noon.addDays(30)), {jsonOk}};
        QTest::newRow("bytes without a date: used for ever") << Load{cached, {}, {jsonOk}};
        QTest::newRow("a date that is no date counts as none")
            << Load{cached, "yesterday", {jsonOk}};
        QTest::newRow("a date without bytes downloads")
            << Load{{}, dateText(noon), downloaded, 2, 1};
        QTest::newRow("records left out are said, one line each")
            << Load{{},
                    {},
                    {connectionOk, jsonOk,
                     u"[ERROR] Skipped section 1: \"Harbour\": \"pattern\" is empty, so the "
                     u"day never fills"_s,
                     u"[ERROR] Skipped section 3: not an object (found 5)"_s},
                    1,
                    1,
                    false,
                    {},
                    R"([{"category": "C", "name": "Harbour", "segments": {},
                         "sequences": {"partial": [], "pattern": []}},
                        {"category": "C", "name": "Kept", "segments": {"0": {"name": "A"}},
                         "sequences": {"partial": [], "pattern": [{"d": 1440, "r": 0}]}}, 5])"};
        // A failed read shows nothing, not even an old copy, and keeps that for the next try.
        QTest::newRow("8 days old, nobody listening")
            << Load{goodDocument, dateText(noon.addDays(-8)), {connectionError}, 0, 0, true};
        QTest::newRow("nothing kept, HTTP 404")
            << Load{{}, {}, {connectionError}, 0, 1, false, {.status = 404}};
    }

    void loads()
    {
        QFETCH(Load, load);
        keep(EventDataSource::documentFile, load.bytes);
        keep(EventDataSource::dateFile, load.date);
        m_service->setBehaviour(EventService::documentPath.toString(), load.behaviour);
        m_service->setDocument(load.document);
        if (load.serviceDown)
            m_service.reset();
        QCOMPARE(this->load(), load.lines);
        QCOMPARE(m_sections.size(), load.sections);
        if (!load.serviceDown)
            QCOMPARE(m_service->totalRequests(), load.requests);
        if (load.lines.first() == connectionError) {
            QCOMPARE(kept(EventDataSource::documentFile), load.bytes);
            QCOMPARE(kept(EventDataSource::dateFile), load.date);
        }
    }

    void aCacheThatCannotBeWrittenOrReadCostsOnlyItsCopy()
    {
        // The document's file is a folder: it counts as absent, and nothing can be kept.
        QVERIFY(QDir().mkpath(m_cachePath + u'/' + EventDataSource::documentFile.toString()));
        QCOMPARE(load(), (QStringList{connectionOk, jsonOk}));
        QCOMPARE(m_sections.size(), 2);
        QCOMPARE(m_errors.count(u'\n'), 1);
        QVERIFY(!kept(EventDataSource::dateFile));
    }

    void hostileServicesCostBoundedTimeAndDisk_data()
    {
        QTest::addColumn<EventService::Behaviour>("icons");
        QTest::addColumn<QString>("said"); // on the error stream
        QTest::addColumn<int>("kept");     // icon files kept
        QTest::addColumn<int>("shown");    // icons shown

        QImage huge(1500, 1200, QImage::Format_RGB32);
        huge.fill(Qt::darkGreen);
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        huge.save(&buffer, "PNG");
        QTest::newRow("a picture of 1500 x 1200 is drawn at 512 x 410")
            << EventService::Behaviour{.body = png} << QString() << 3 << 3;
        QTest::newRow("bodies without a length, past the cap")
            << EventService::Behaviour{.oversizeBytes = 3 * 1024 * 1024, .noLength = true}
            << u"body larger than 1 MiB"_s << 0 << 0;
        QTest::newRow("one byte a second: the icons' time is up together")
            << EventService::Behaviour{.body = pngBytes(Qt::red), .dripMs = 1000}
            << u"timed out after 1.5 s"_s << 0 << 0;
    }

    void hostileServicesCostBoundedTimeAndDisk()
    {
        QFETCH(EventService::Behaviour, icons);
        QFETCH(QString, said);
        QFETCH(int, kept);
        QFETCH(int, shown);

        m_service->setBehaviour(u"*"_s, icons);
        m_service->setBehaviour(EventService::documentPath.toString(), {.redirects = 2});
        m_service->setDocument(R"([{"category": "C", "name": "S", "segments": {
            "0": {"name": "A", "icon": "{service}/i/A/1.png"},
            "1": {"name": "B", "icon": "{service}/i/B/1.png"},
            "2": {"name": "C", "icon": "{service}/i/C/1.png"}},
            "sequences": {"partial": [], "pattern": [{"d": 1440, "r": 0}]}}])");
        QElapsedTimer elapsed;
        elapsed.start();
        QCOMPARE(load(1500), (QStringList{connectionOk, jsonOk}));
        QCOMPARE_LT(elapsed.elapsed(), 4000);
        QVERIFY2(m_errors.contains(said), qPrintable(m_errors));
        QCOMPARE(QDir(m_cachePath + u"/icons"_s).entryList(QDir::Files).size(), kept);
        int drawn = 0;
        for (const auto &event : m_sections.first()->events) {
            if (event->icon) {
                ++drawn;
                QCOMPARE_LE(event->icon->image().width(), Icon::maxSide);
            }
        }
        QCOMPARE(drawn, shown);
    }

    void certificatesAreVerified()
    {
        const auto fixture = [](const char *name) {
            QFile file(QStringLiteral(EVENTTIMER_FIXTURES_DIR "/tls/") + QLatin1StringView(name));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        m_service = std::make_unique<EventService>();
        m_service->useTls(QSslCertificate(fixture("server.pem")),
                          QSslKey(fixture("server.key"), QSsl::Ec));
        QVERIFY(m_service->listen());
        m_service->setDocument(goodDocument);
        m_settings->setValue(settingskeys::serviceUrl.toString(), m_service->baseUrl().toString());

        // A certificate nobody vouches for: nothing is read, nothing kept.
        QCOMPARE(load(), QStringList{connectionError});
        QVERIFY(!kept(EventDataSource::documentFile));

        // Trusted the way the system's own authorities are, through the process's defaults.
        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration trusting = before;
        trusting.addCaCertificates(QSslCertificate::fromData(fixture("ca.pem")));
        QSslConfiguration::setDefaultConfiguration(trusting);
        const QStringList lines = load();
        QSslConfiguration::setDefaultConfiguration(before);
        QCOMPARE(lines, (QStringList{connectionOk, jsonOk}));
        QCOMPARE(kept(EventDataSource::documentFile), goodDocument);
    }

    void nonJsonBodyIsStoredAndFailsEveryRun()
    {
        m_service->setDocument("<html>maintenance</html>");
        QCOMPARE(load(), (QStringList{connectionOk, parseError}));
        QCOMPARE(kept(EventDataSource::documentFile), "<html>maintenance</html>"_ba);
        QCOMPARE(load(), QStringList{parseError});
        QCOMPARE(m_service->totalRequests(), 1);

        // A top-level value that is not an array is no event document either.
        QFile::remove(m_cachePath + u'/' + EventDataSource::documentFile.toString());
        m_service->setDocument(R"({"sections": []})");
        QCOMPARE(load(), (QStringList{connectionOk, parseError}));
    }

    void bundledSampleLoadsWithAllItsIcons()
    {
        const QString sample = QStringLiteral(EVENTTIMER_SAMPLE_DIR);
        m_service->setDocumentFile(sample + u"/events.json"_s);
        m_service->setFilesFolder(sample);

        QCOMPARE(load(), (QStringList{connectionOk, jsonOk}));
        QCOMPARE(m_sections.size(), 18);
        int icons = 0;
        for (const auto &section : std::as_const(m_sections))
            for (const auto &event : section->events)
                icons += event->icon ? 1 : 0;
        // Every icon the document names was served and decoded, each once.
        QCOMPARE(m_service->totalRequests() - 1, 63);
        QVERIFY(icons >= 63);
    }

    void fetchesExactlyTheIconsOfKeptEvents()
    {
        QTemporaryDir folder;
        for (const QString &path : {u"/b/X/1.png"_s, u"/d/Y/2.png"_s, u"/s/S/1.png"_s}) {
            QVERIFY(QDir().mkpath(QFileInfo(folder.path() + path).path()));
            QFile file(folder.path() + path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(pngBytes(path.startsWith(u"/d"_s) ? Qt::blue : Qt::red));
        }
        m_service->setFilesFolder(folder.path());
        // Harbour's A asks first for key X at a URL that fails, so X is tried again with B's URL.
        // The empty-named segment, the key "9" that is never probed and the whole Broken record
        // (left out) ask for nothing.
        m_service->setDocument(R"([
        {"category": "C", "name": "Harbour", "segments": {
            "0": {"name": "A", "icon": "{service}/a/X/1.png"},
            "1": {"name": "", "icon": "{service}/e/E/1.png"},
            "2": {"name": "B", "icon": "{service}/b/X/1.png"},
            "3": {"name": "C", "icon": "{service}/c/X/1.png"},
            "9": {"name": "U", "icon": "{service}/u/U/1.png"}},
         "sequences": {"partial": [], "pattern": [{"d": 1440, "r": 2}]}},
        {"category": "C", "name": "Broken", "segments": {"0": {"name": "S",
            "icon": "{service}/s/S/1.png"}}, "sequences": {"partial": [], "pattern": []}},
        {"category": "C", "name": "Vale", "segments": {"0": {"name": "D",
            "icon": "{service}/d/Y/2.png"}},
         "sequences": {"partial": [], "pattern": [{"d": 1440, "r": 0}]}}])");
        const auto iconsShown = [this] {
            QStringList shown;
            for (const auto &section : std::as_const(m_sections))
                for (const auto &event : section->events)
                    shown.append(event->name + (event->icon ? u"+"_s : u"-"_s));
            return shown;
        };

        load();
        const QStringList iconRequests{u"/a/X/1.png"_s, u"/b/X/1.png"_s, u"/d/Y/2.png"_s};
        for (const QString &path : iconRequests)
            QCOMPARE(m_service->requestCount(path), 1);
        QCOMPARE(m_service->totalRequests(), 1 + iconRequests.size());
        // As if fetched one by one: A's own fetch failed, so A shows none until the next start.
        QCOMPARE(iconsShown(), (QStringList{u"A-"_s, u"B+"_s, u"C+"_s, u"D+"_s}));

        load();
        QCOMPARE(m_service->totalRequests(), 1 + iconRequests.size());
        QCOMPARE(iconsShown(), (QStringList{u"A+"_s, u"B+"_s, u"C+"_s, u"D+"_s}));
    }
};

QTEST_GUILESS_MAIN(TestEventDataSource)
#include "tst_eventdatasource.moc"
