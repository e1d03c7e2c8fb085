#include "blockingcalls.h"
#include "data/cachefolder.h"
#include "data/eventdatasource.h"
#include "data/settingsstore.h"
#include "data/urlloader.h"
#include "localeventservice/localeventservice.h"
#include "manualclock.h"
#include "testimages.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using eventtimer::testing::ManualClock;
using namespace Qt::StringLiterals;
using eventtimer::testing::pngBytes;

namespace {

const QByteArray goodDocument = R"([
    {"category": "Coast", "name": "Harbour", "segments": {"0": {"name": "Tide Raid"}},
     "sequences": {"partial": [], "pattern": [{"d": 60, "r": 0}]}},
    {"category": "Peaks", "name": "Summit", "segments": {"1": {"name": "Ember Wyrm"}},
     "sequences": {"partial": [], "pattern": [{"d": 120, "r": 1}]}}])";

// Harbour's A asks first for key X at a URL that fails, so X is tried again with B's URL, and C
// shares what B brought. The empty-named segment, the key "9" that is never probed and the
// whole Broken record (left out) ask for nothing.
const QByteArray iconDocument = R"([
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
     "sequences": {"partial": [], "pattern": [{"d": 1440, "r": 0}]}}])";

const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc());
const QString connectionOk = u"[CONNECTION] OK, data correctly downloaded"_s;
const QString connectionError = u"[ERROR] There is an unspecified error with the connection"_s;
const QString parseError = u"[ERROR] An error has happened with parsing of json data"_s;
const QString jsonOk = u"[JSON] OK!"_s;

QByteArray dateText(const QDateTime &date)
{
    return date.toUTC().toString(Qt::ISODateWithMs).toLatin1();
}

// What the cache holds before a start (the document's and the date's files) and what the
// service answers; then what the start says, shows and asks for.
struct Load
{
    std::optional<QByteArray> bytes;
    std::optional<QByteArray> date;
    QByteArray document = goodDocument;
    LocalEventService::Behaviour behaviour;
    QStringList lines{connectionOk, jsonOk};
    qsizetype sections = 2;
    DayData::Origin origin = DayData::Origin::Downloaded;
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
        m_settings->sync();
        const SettingsStore settings(m_settings->fileName(), m_err);
        UrlLoader loader({std::chrono::milliseconds(timeoutMs), 1024 * 1024});
        EventDataSource source(settings, *m_cache, loader, m_clock, out, m_err);
        m_day = testing::loadDayNow(source);
        return output.split(u'\n', Qt::SkipEmptyParts);
    }

    std::optional<QByteArray> kept(QStringView file) const
    {
        return m_cache->read(file.toString(), 1 << 20);
    }

    // Each event of the day by name, with "+" when it shows an icon.
    QStringList shown() const
    {
        QStringList names;
        for (const auto &section : std::as_const(m_day.sections))
            for (const auto &event : section->events)
                names.append(event->name + (event->icon ? u"+"_s : u"-"_s));
        return names;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_cachePath;
    QString m_errors;
    QTextStream m_err{&m_errors};
    std::unique_ptr<CacheFolder> m_cache;
    std::unique_ptr<QSettings> m_settings;
    std::unique_ptr<LocalEventService> m_service;
    const ManualClock m_clock{noon, QTimeZone::utc()};
    DayData m_day;

private Q_SLOTS:
    void init()
    {
        m_settings.reset(); // before its folder goes
        m_folder = std::make_unique<QTemporaryDir>();
        m_cachePath = m_folder->filePath(u"cache"_s);
        m_errors.clear();
        m_cache = std::make_unique<CacheFolder>(m_cachePath, m_err);
        m_service = std::make_unique<LocalEventService>();
        QVERIFY(m_service->listen());
        m_service->setDocument(goodDocument);
        // The address of the service's root, with a slash at the end as users write it.
        m_settings = std::make_unique<QSettings>(m_folder->filePath(u"eventtimer.conf"_s),
                                                 QSettings::IniFormat);
        m_settings->setValue(settingskeys::serviceUrl.toString(),
                             m_service->baseUrl().toString() + u'/');
    }

    void loads_data()
    {
        QTest::addColumn<Load>("load");
        const QByteArray html = "<html>maintenance</html>";
        QTest::newRow("nothing kept") << Load{};
        QTest::newRow("604799.9 s old: the copy")
            << Load{.bytes = goodDocument,
                    .date = dateText(noon.addMSecs(-604799900)),
                    .lines = {jsonOk},
                    .origin = DayData::Origin::Cache};
        QTest::newRow("604800.0 s old: download")
            << Load{.bytes = "[]", .date = dateText(noon.addSecs(-604800))};
        QTest::newRow("a date in the future is fresh") << Load{.bytes = goodDocument,
                                                               .date = dateText(noon.addDays(30)),
                                                               .lines = {jsonOk},
                                                               .origin = DayData::Origin::Cache};
        QTest::newRow("bytes without a date: used for ever")
            << Load{.bytes = goodDocument, .lines = {jsonOk}, .origin = DayData::Origin::Cache};
        QTest::newRow("a date without bytes downloads") << Load{.date = dateText(noon)};
        QTest::newRow("records left out are said, one line each")
            << Load{.document = R"([{"category": "C", "name": "Harbour", "segments": {},
                         "sequences": {"partial": [], "pattern": []}},
                        {"category": "C", "name": "Kept", "segments": {"0": {"name": "A"}},
                         "sequences": {"partial": [], "pattern": [{"d": 1440, "r": 0}]}}, 5])",
                    .lines = {connectionOk, jsonOk,
                              u"[ERROR] Skipped section 1: \"Harbour\": \"pattern\" is empty, so "
                              u"the day never fills"_s,
                              u"[ERROR] Skipped section 3: not an object (found 5)"_s},
                    .sections = 1};
        // Kept as it came, so every start fails the same way until the week is over.
        const DayData::Origin none = DayData::Origin::None;
        QTest::newRow("no JSON") << Load{
            .document = html, .lines = {connectionOk, parseError}, .sections = 0, .origin = none};
        QTest::newRow("an empty list") << Load{
            .document = "[]", .lines = {connectionOk, jsonOk}, .sections = 0, .origin = none};
        // A failed read says only that, keeps the old copy for the next try, and hands it over
        // as kept: whoever shows the day decides.
        QTest::newRow("8 days old, HTTP 500") << Load{.bytes = goodDocument,
                                                      .date = dateText(noon.addDays(-8)),
                                                      .behaviour = {.status = 500},
                                                      .lines = {connectionError},
                                                      .origin = DayData::Origin::Kept};
        QTest::newRow("nothing kept, HTTP 500") << Load{.behaviour = {.status = 500},
                                                        .lines = {connectionError},
                                                        .sections = 0,
                                                        .origin = none};
    }

    void loads()
    {
        QFETCH(Load, load);
        if (load.bytes)
            QVERIFY(m_cache->write(EventDataSource::documentFile.toString(), *load.bytes));
        if (load.date)
            QVERIFY(m_cache->write(EventDataSource::dateFile.toString(), *load.date));
        m_service->setBehaviour(LocalEventService::documentPath.toString(), load.behaviour);
        m_service->setDocument(load.document);
        QCOMPARE(this->load(), load.lines);
        QCOMPARE(m_day.sections.size(), load.sections);
        QCOMPARE(m_day.origin, load.origin);
        // Said whenever there is nothing new to show, with the address asked.
        const bool troubled = load.sections == 0 || load.origin == DayData::Origin::Kept;
        QCOMPARE(m_day.problem.has_value(), troubled);
        if (troubled)
            QCOMPARE(m_day.problem->address,
                     m_service->baseUrl().resolved(QUrl(u"/api/events/sequence"_s)));
        const QDateTime stamp = QDateTime::fromString(
            QString::fromLatin1(load.date.value_or(QByteArray())), Qt::ISODateWithMs);
        QCOMPARE(m_day.downloadedAt, load.origin == DayData::Origin::Downloaded ? noon
                                     : load.origin == DayData::Origin::None     ? QDateTime()
                                                                                : stamp);
        // Asked for only when said, and only a failed read is explained on the error stream.
        const bool fresh = load.lines.first() == connectionOk;
        const bool failed = load.lines.first() == connectionError;
        QCOMPARE(m_service->totalRequests(), fresh || failed ? 1 : 0);
        QCOMPARE(m_errors.isEmpty(), !failed);
        // A download is kept with its date; anything else leaves the cache as it was.
        QCOMPARE(kept(EventDataSource::documentFile), fresh ? load.document : load.bytes);
        QCOMPARE(kept(EventDataSource::dateFile), fresh ? dateText(noon) : load.date);
        // The same document from the next midnight, for looking past the day's end.
        QCOMPARE(m_day.followingDay.size(), load.sections);
        if (!m_day.followingDay.isEmpty())
            QCOMPARE(m_day.followingDay.first()->sequence.first()->time,
                     secondsSinceEpoch(noon.date().addDays(1).startOfDay(QTimeZone::utc())));
    }

    void addressThatNamesTheDocumentIsTakenAsItsRoot_data()
    {
        QTest::addColumn<QString>("setting"); // after the service's root
        QTest::addColumn<QString>("firstLine");
        QTest::addColumn<QString>("root"); // in the note
        QTest::newRow("the document") << u"/api/events/sequence/"_s << connectionOk << u""_s;
        // The service has nothing under /mirror; the note names the root all the same.
        QTest::newRow("the document below a path")
            << u"/mirror/api/events/sequence"_s << connectionError << u"/mirror"_s;
    }

    void addressThatNamesTheDocumentIsTakenAsItsRoot()
    {
        QFETCH(QString, setting);
        QFETCH(QString, firstLine);
        QFETCH(QString, root);
        const QString base = m_service->baseUrl().toString();
        m_settings->setValue(settingskeys::serviceUrl.toString(), base + setting);
        QCOMPARE(load().first(), firstLine);
        const QString note = u"eventtimer: event_service_url names the document; its root "_s +
                             base + root + u" is used\n"_s;
        QVERIFY2(m_errors.contains(note), qPrintable(m_errors));
    }

    void aCacheThatCannotBeWrittenOrReadCostsOnlyItsCopy()
    {
        // The document's file is a folder: it counts as absent, it cannot be kept, and so
        // neither is a date without it.
        QVERIFY(QDir().mkpath(m_cachePath + u'/' + EventDataSource::documentFile.toString()));
        QCOMPARE(load(), (QStringList{connectionOk, jsonOk}));
        QCOMPARE(m_day.sections.size(), 2);
        QCOMPARE(m_errors.count(u'\n'), 1);
        QVERIFY(!kept(EventDataSource::dateFile));
    }

    void slowIconsShareOneDeadline()
    {
        // Only the icons misbehave, one byte a second; the document comes through redirects.
        m_service->setBehaviour(u"*"_s, {.body = pngBytes(Qt::red), .dripMs = 1000});
        m_service->setBehaviour(LocalEventService::documentPath.toString(), {.redirects = 2});
        m_service->setDocument(iconDocument);
        QElapsedTimer elapsed;
        elapsed.start();
        QCOMPARE(load(1500).first(2), (QStringList{connectionOk, jsonOk}));
        // X's later URLs get only what is left of the one deadline.
        QCOMPARE_LT(elapsed.elapsed(), 4000);
        QVERIFY2(m_errors.contains(u"timed out after 1.5 s"_s), qPrintable(m_errors));
        QCOMPARE(shown(), (QStringList{u"A-"_s, u"B-"_s, u"C-"_s, u"D-"_s}));
        QVERIFY(QDir(m_cachePath + u"/icons"_s).isEmpty());
    }

    void bundledSampleLoadsWithAllItsIcons()
    {
        const QString sample = QStringLiteral(EVENTTIMER_SAMPLE_DIR);
        m_service->setDocumentFile(sample + u"/events.json"_s);
        m_service->setFilesFolder(sample);

        QCOMPARE(load(), (QStringList{connectionOk, jsonOk}));
        QCOMPARE(m_day.sections.size(), 18);
        // Every icon the document names was served and decoded, each once.
        QCOMPARE(m_service->totalRequests() - 1, 63);
        QCOMPARE_GE(shown().filter(QRegularExpression(u"\\+$"_s)).size(), 63);
    }

    void fetchesExactlyTheIconsOfKeptEvents()
    {
        for (const QString &path : {u"/d/Y/2.png"_s, u"/s/S/1.png"_s})
            m_service->setBehaviour(path, {.body = pngBytes(Qt::red)});
        m_service->setBehaviour(u"/b/X/1.png"_s, {.body = pngBytes(Qt::red, QSize(1500, 1200))});
        m_service->setDocument(iconDocument);
        load();
        QCOMPARE(m_service->totalRequests(), 4);
        // As if fetched one by one: A's own fetch failed, so A shows none until the next start.
        QCOMPARE(shown(), (QStringList{u"A-"_s, u"B+"_s, u"C+"_s, u"D+"_s}));
        // Drawn no larger than 512 on either side.
        QCOMPARE(m_day.sections.first()->events.at(1)->icon->image().size(), QSize(512, 409));

        load();
        QCOMPARE(m_service->totalRequests(), 4);
        QCOMPARE(shown(), (QStringList{u"A+"_s, u"B+"_s, u"C+"_s, u"D+"_s}));
    }
};

QTEST_GUILESS_MAIN(TestEventDataSource)
#include "tst_eventdatasource.moc"
