#include "checker.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString dataFile(const QString &name)
{
    return QString::fromUtf8(EVENTTIMER_TEST_DATA_DIR "/checker/") + name;
}

struct Outcome
{
    int status = -1;
    QString out;
    QString err;
};

Outcome check(const QStringList &arguments, const QDateTime &now, const QTimeZone &zone)
{
    Outcome outcome;
    QTextStream out(&outcome.out);
    QTextStream err(&outcome.err);
    outcome.status = eventtimer::checker::run(arguments, out, err, now, zone);
    out.flush();
    err.flush();
    return outcome;
}

// The first of expected that is not a whole line of output after the lines matched before it,
// or a null string when all of them are there in this order.
QString firstMissingLine(const QString &output, const QStringList &expected)
{
    const QStringList lines = output.split(u'\n');
    qsizetype next = 0;
    for (const QString &line : expected) {
        next = lines.indexOf(line, next);
        if (next < 0)
            return line;
        ++next;
    }
    return {};
}

const QTimeZone utc = QTimeZone::utc();
const QTimeZone plusTwo(2 * 3600);
const QTimeZone minusFive(-5 * 3600);
const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc());
// Still 2026-11-21 at UTC−5.
const QDateTime earlyMorning(QDate(2026, 11, 22), QTime(3, 0), QTimeZone::utc());

} // namespace

class TestChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textOutput_data();
    void textOutput();
    void atReplacesNow_data();
    void atReplacesNow();
    void jsonOutput_data();
    void jsonOutput();
    void jsonEvents();
    void exportArrays_data();
    void exportArrays();
    void unreadableDocument_data();
    void unreadableDocument();
    void usageErrors_data();
    void usageErrors();
    void help();
    void realProgram();
};

void TestChecker::textOutput_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QTimeZone>("zone");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<int>("status");
    QTest::addColumn<QStringList>("lines");

    // Lighthouse Bay: Kraken Hunt at minute 0 for 45, then passes of 120 minutes: Tide Watch
    // at 45 + 120k for 60, a 15-minute pause, Kraken Hunt at 120 + 120k. The last pass adds
    // only Tide Watch at 1365. Sunken Vault counts from "1": "r" = 0 pauses 600 minutes, then
    // Vault Opens at 600 and 1320. Start texts carry the zone's offset once more.
    QTest::newRow("valid at UTC+2")
        << u"valid.json"_s << plusTwo << noon << 0
        << QStringList{
               u"Day 2026-11-22 in zone UTC+02, from local midnight 2026-11-22T00:00:00+02:00"_s,
               u""_s,
               u"Section 1: Lighthouse Bay"_s,
               u"  Category  Harbour Fleet"_s,
               u"  Wiki      Lighthouse_Bay"_s,
               u"  Events"_s,
               u"    Name         Colour     Chat link    Wiki"_s,
               u"    Tide Watch   #ff8000cc  [&BKgBAAA=]  Tide Watch"_s,
               u"    Kraken Hunt  default                 Kraken_Hunt_(event)"_s,
               u"  Occurrences"_s,
               u"    Start  Minute  Duration  Event"_s,
               u"    02:00       0    45 min  Kraken Hunt"_s,
               u"    02:45      45    60 min  Tide Watch"_s,
               u"    04:00     120    45 min  Kraken Hunt"_s,
               u"    22:00    1200    45 min  Kraken Hunt"_s,
               u"    00:00    1320    45 min  Kraken Hunt"_s,
               u"    00:45    1365    60 min  Tide Watch"_s,
               u""_s,
               u"Section 2: Sunken Vault"_s,
               u"  Wiki      Sunken Vault"_s,
               u"    Vault Opens  #0a141ecc  [&BDQCAAA=]  Vault Opens"_s,
               u"    12:00     600   720 min  Vault Opens"_s,
               u"    00:00    1320   720 min  Vault Opens"_s,
               u""_s,
               u"2 sections kept, 0 sections skipped, 26 occurrences"_s,
           };
    QTest::newRow("valid at UTC-5, where it is still the day before")
        << u"valid.json"_s << minusFive << earlyMorning << 0
        << QStringList{
               u"Day 2026-11-21 in zone UTC-05, from local midnight 2026-11-21T00:00:00-05:00"_s,
               u"    19:00       0    45 min  Kraken Hunt"_s,
               u"    19:45      45    60 min  Tide Watch"_s,
               u"    17:45    1365    60 min  Tide Watch"_s,
               u"    05:00     600   720 min  Vault Opens"_s,
               u"2 sections kept, 0 sections skipped, 26 occurrences"_s,
           };
    QTest::newRow("skipped records in their place, the others kept")
        << u"skipped.json"_s << utc << noon << 1
        << QStringList{
               u"Section 1: Dune Fort"_s,
               u"    Sandstorm  default             Sandstorm"_s,
               u"    18:00    1080   360 min  Sandstorm"_s,
               u""_s,
               u"[ERROR] Skipped section 2: not an object (found 42)"_s,
               u""_s,
               u"Section 3: Oasis"_s,
               u"  Wiki      Oasis_(zone)"_s,
               u"    00:30      30    90 min  Caravan"_s,
               u"    22:30    1350    90 min  Caravan"_s,
               u""_s,
               u"[ERROR] Skipped section 4: \"Salt Mine\": \"pattern\" entry 1: \"r\" = 1 points "
               u"past the section's events (1 event, 0 skipped segment keys)"_s,
               u""_s,
               u"[ERROR] Skipped section 5: \"Glacier\", \"sequences\": \"pattern\" is missing"_s,
               u""_s,
               u"2 sections kept, 3 sections skipped, 16 occurrences"_s,
           };
    QTest::newRow("empty document")
        << u"empty.json"_s << utc << noon << 0
        << QStringList{
               u"Day 2026-11-22 in zone UTC, from local midnight 2026-11-22T00:00:00+00:00"_s,
               u""_s, u"0 sections kept, 0 sections skipped, 0 occurrences"_s};
}

void TestChecker::textOutput()
{
    QFETCH(QString, file);
    QFETCH(QTimeZone, zone);
    QFETCH(QDateTime, now);
    QFETCH(int, status);
    QFETCH(QStringList, lines);

    const Outcome outcome = check({dataFile(file)}, now, zone);
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.status, status);
    const QString missing = firstMissingLine(outcome.out, lines);
    QVERIFY2(missing.isNull(),
             qPrintable(u"missing or out of order: \""_s + missing + u"\"\n"_s + outcome.out));
}

void TestChecker::atReplacesNow_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("header");

    const QString file = dataFile(u"empty.json"_s);
    const QString dayOf22 =
        u"Day 2026-11-22 in zone UTC+02, from local midnight 2026-11-22T00:00:00+02:00"_s;
    const QString dayOf23 =
        u"Day 2026-11-23 in zone UTC+02, from local midnight 2026-11-23T00:00:00+02:00"_s;
    QTest::newRow("no offset: wall clock of the zone")
        << QStringList{u"--at"_s, u"2026-11-22T23:30:00"_s, file} << dayOf22;
    QTest::newRow("Z: already the next day at UTC+2")
        << QStringList{u"--at"_s, u"2026-11-22T23:30:00Z"_s, file} << dayOf23;
    QTest::newRow("last second of the local day")
        << QStringList{u"--at=2026-11-22T21:59:59Z"_s, file} << dayOf22;
    QTest::newRow("first second of the next local day")
        << QStringList{u"--at=2026-11-22T22:00:00Z"_s, file} << dayOf23;
    QTest::newRow("other offset") << QStringList{file, u"--at"_s, u"2026-11-22T20:00:00-05:00"_s}
                                  << dayOf23;
}

void TestChecker::atReplacesNow()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, header);

    // The clock's "now" lies months away from every --at moment.
    const QDateTime now(QDate(2026, 3, 1), QTime(12, 0), utc);
    const Outcome outcome = check(arguments, now, plusTwo);
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.out.section(u'\n', 0, 0), header);
}

void TestChecker::jsonOutput_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QTimeZone>("zone");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<int>("status");
    QTest::addColumn<QJsonObject>("day");
    // Per section: its number, its occurrence count and its first occurrence.
    QTest::addColumn<QList<int>>("numbers");
    QTest::addColumn<QList<int>>("occurrenceCounts");
    QTest::addColumn<QJsonArray>("firstOccurrences");
    QTest::addColumn<QJsonArray>("skipped");

    QTest::newRow("valid at UTC+2") << u"valid.json"_s << plusTwo << noon << 0
                                    << QJsonObject{{u"day"_s, u"2026-11-22"_s},
                                                   {u"zone"_s, u"UTC+02"_s},
                                                   {u"dayStart"_s, u"2026-11-22T00:00:00+02:00"_s}}
                                    << QList<int>{1, 2} << QList<int>{24, 2}
                                    << QJsonArray{QJsonObject{{u"start"_s, u"02:00"_s},
                                                              {u"minute"_s, 0},
                                                              {u"duration"_s, 45},
                                                              {u"event"_s, u"Kraken Hunt"_s},
                                                              {u"chatLink"_s, QJsonValue::Null}},
                                                  QJsonObject{{u"start"_s, u"12:00"_s},
                                                              {u"minute"_s, 600},
                                                              {u"duration"_s, 720},
                                                              {u"event"_s, u"Vault Opens"_s},
                                                              {u"chatLink"_s, u"[&BDQCAAA=]"_s}}}
                                    << QJsonArray{};
    QTest::newRow("skipped records at UTC-5")
        << u"skipped.json"_s << minusFive << earlyMorning << 1
        << QJsonObject{{u"day"_s, u"2026-11-21"_s},
                       {u"zone"_s, u"UTC-05"_s},
                       {u"dayStart"_s, u"2026-11-21T00:00:00-05:00"_s}}
        << QList<int>{1, 3} << QList<int>{4, 12}
        << QJsonArray{QJsonObject{{u"start"_s, u"19:00"_s},
                                  {u"minute"_s, 0},
                                  {u"duration"_s, 360},
                                  {u"event"_s, u"Sandstorm"_s},
                                  {u"chatLink"_s, QJsonValue::Null}},
                      QJsonObject{{u"start"_s, u"19:30"_s},
                                  {u"minute"_s, 30},
                                  {u"duration"_s, 90},
                                  {u"event"_s, u"Caravan"_s},
                                  {u"chatLink"_s, u"[&BOcBAAA=]"_s}}}
        << QJsonArray{
               QJsonObject{{u"number"_s, 2}, {u"reason"_s, u"not an object (found 42)"_s}},
               QJsonObject{{u"number"_s, 4},
                           {u"reason"_s, u"\"Salt Mine\": \"pattern\" entry 1: \"r\" = 1 points "
                                         u"past the section's events (1 event, 0 skipped "
                                         u"segment keys)"_s}},
               QJsonObject{{u"number"_s, 5},
                           {u"reason"_s, u"\"Glacier\", \"sequences\": \"pattern\" is missing"_s}}};
}

void TestChecker::jsonOutput()
{
    QFETCH(QString, file);
    QFETCH(QTimeZone, zone);
    QFETCH(QDateTime, now);
    QFETCH(int, status);
    QFETCH(QJsonObject, day);
    QFETCH(QList<int>, numbers);
    QFETCH(QList<int>, occurrenceCounts);
    QFETCH(QJsonArray, firstOccurrences);
    QFETCH(QJsonArray, skipped);

    const Outcome outcome = check({u"--json"_s, dataFile(file)}, now, zone);
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.status, status);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(outcome.out.toUtf8(), &error);
    QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString()));
    // Written for people too: indented.
    QVERIFY(outcome.out.contains(u"\n    \"sections\": [\n"_s));
    const QJsonObject report = document.object();

    for (auto key = day.constBegin(); key != day.constEnd(); ++key)
        QCOMPARE(report.value(key.key()), key.value());
    const QJsonArray sections = report.value(u"sections").toArray();
    QCOMPARE(sections.size(), numbers.size());
    for (qsizetype i = 0; i < sections.size(); ++i) {
        const QJsonObject section = sections.at(i).toObject();
        QCOMPARE(section.value(u"number").toInt(), numbers.at(i));
        const QJsonArray occurrences = section.value(u"occurrences").toArray();
        QCOMPARE(occurrences.size(), occurrenceCounts.at(i));
        QCOMPARE(occurrences.first(), firstOccurrences.at(i));
    }
    QCOMPARE(report.value(u"skipped").toArray(), skipped);
}

void TestChecker::jsonEvents()
{
    const Outcome outcome = check({u"--json"_s, dataFile(u"valid.json"_s)}, noon, utc);
    QCOMPARE(outcome.status, 0);
    const QJsonArray sections =
        QJsonDocument::fromJson(outcome.out.toUtf8()).object().value(u"sections").toArray();
    QCOMPARE(sections.size(), 2);

    const QJsonObject bay = sections.at(0).toObject();
    QCOMPARE(bay.value(u"category").toString(), u"Harbour Fleet"_s);
    QCOMPARE(bay.value(u"name").toString(), u"Lighthouse Bay"_s);
    QCOMPARE(bay.value(u"wiki").toString(), u"Lighthouse_Bay"_s);
    const QJsonArray expectedEvents{QJsonObject{{u"name"_s, u"Tide Watch"_s},
                                                {u"wiki"_s, u"Tide Watch"_s},
                                                {u"chatLink"_s, u"[&BKgBAAA=]"_s},
                                                {u"color"_s, u"#ff8000cc"_s}},
                                    QJsonObject{{u"name"_s, u"Kraken Hunt"_s},
                                                {u"wiki"_s, u"Kraken_Hunt_(event)"_s},
                                                {u"chatLink"_s, QJsonValue::Null},
                                                {u"color"_s, u"default"_s}}};
    QCOMPARE(bay.value(u"events").toArray(), expectedEvents);

    const QJsonObject vault = sections.at(1).toObject();
    QCOMPARE(vault.value(u"wiki").toString(), u"Sunken Vault"_s);
    QCOMPARE(vault.value(u"events").toArray().first().toObject().value(u"color").toString(),
             u"#0a141ecc"_s);
}

void TestChecker::exportArrays_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QTimeZone>("zone");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<int>("status");
    QTest::addColumn<QJsonArray>("times");
    QTest::addColumn<QStringList>("sequence");
    QTest::addColumn<QStringList>("sections");
    QTest::addColumn<QStringList>("chatLinks");
    QTest::addColumn<QString>("err");

    // Sections are laid out by category: Breakwater, Pier (both Harbour Fleet), then Lagoon.
    // Breakwater registers Beacon 00:00 (0), Storm Watch 01:00 (3600), Beacon 22:00 (79200);
    // it starts and ends with Beacon in the first minute, so key 0 is dropped again. Pier then
    // takes 0 for Regatta, skips Net Mending (no chat link) and raises Ferry at 01:00 to 3601.
    // Lagoon's Pearl Dive at 01:00 takes 3602, its Moonrise at 23:59 86340.
    const QJsonArray times{0, 3600, 3601, 3602, 79200, 86340};
    const QStringList sequence{u"Regatta"_s,    u"Storm Watch"_s, u"Ferry"_s,
                               u"Pearl Dive"_s, u"Beacon"_s,      u"Moonrise"_s};
    const QStringList sections{u"Pier"_s,   u"Breakwater"_s, u"Pier"_s,
                               u"Lagoon"_s, u"Breakwater"_s, u"Lagoon"_s};
    const QStringList chatLinks{u"[&BAEAAAA=]"_s, u"[&BAQAAAA=]"_s, u"[&BAIAAAA=]"_s,
                                u"[&BAUAAAA=]"_s, u"[&BAMAAAA=]"_s, u"[&BAYAAAA=]"_s};
    // Keys count from local midnight, so the zone changes nothing.
    QTest::newRow("same minute, midnight and 23:59 at UTC")
        << u"export.json"_s << utc << noon << 0 << times << sequence << sections << chatLinks
        << QString();
    QTest::newRow("the same at UTC+2") << u"export.json"_s << plusTwo << noon << 0 << times
                                       << sequence << sections << chatLinks << QString();
    QTest::newRow("the same at UTC-5, the day before")
        << u"export.json"_s << minusFive << earlyMorning << 0 << times << sequence << sections
        << chatLinks << QString();
    QTest::newRow("empty document: four empty arrays")
        << u"empty.json"_s << utc << noon << 0 << QJsonArray{} << QStringList{} << QStringList{}
        << QStringList{} << QString();
    // Dune Fort has no chat link. Oasis: Caravan at 00:30 and every 120 minutes after, up to
    // 22:30. First and last are both Caravan, but the first is not in the day's first minute.
    QTest::newRow("skipped records on standard error")
        << u"skipped.json"_s << utc << noon << 1
        << QJsonArray{1800,  9000,  16200, 23400, 30600, 37800,
                      45000, 52200, 59400, 66600, 73800, 81000}
        << QStringList(12, u"Caravan"_s) << QStringList(12, u"Oasis"_s)
        << QStringList(12, u"[&BOcBAAA=]"_s)
        << u"[ERROR] Skipped section 2: not an object (found 42)\n"
           u"[ERROR] Skipped section 4: \"Salt Mine\": \"pattern\" entry 1: \"r\" = 1 points "
           u"past the section's events (1 event, 0 skipped segment keys)\n"
           u"[ERROR] Skipped section 5: \"Glacier\", \"sequences\": \"pattern\" is missing\n"_s;
}

void TestChecker::exportArrays()
{
    QFETCH(QString, file);
    QFETCH(QTimeZone, zone);
    QFETCH(QDateTime, now);
    QFETCH(int, status);
    QFETCH(QJsonArray, times);
    QFETCH(QStringList, sequence);
    QFETCH(QStringList, sections);
    QFETCH(QStringList, chatLinks);
    QFETCH(QString, err);

    const Outcome outcome = check({u"--export"_s, dataFile(file)}, now, zone);
    QCOMPARE(outcome.err, err);
    QCOMPARE(outcome.status, status);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(outcome.out.toUtf8(), &error);
    QVERIFY2(error.error == QJsonParseError::NoError,
             qPrintable(error.errorString() + u'\n' + outcome.out));
    const QJsonObject expected{
        {u"varn_global_events_times"_s, times},
        {u"varn_global_events_sequence"_s, QJsonArray::fromStringList(sequence)},
        {u"varn_global_events_sections"_s, QJsonArray::fromStringList(sections)},
        {u"varn_global_events_chatlinks"_s, QJsonArray::fromStringList(chatLinks)}};
    QCOMPARE(document.object(), expected);

    // Indented for people, and in the order the suite is written.
    QVERIFY(outcome.out.startsWith(u"{\n    \"varn_global_events_times\": ["_s));
    const qsizetype sequenceAt = outcome.out.indexOf(u"\n    \"varn_global_events_sequence\""_s);
    const qsizetype sectionsAt = outcome.out.indexOf(u"\n    \"varn_global_events_sections\""_s);
    const qsizetype chatLinksAt = outcome.out.indexOf(u"\n    \"varn_global_events_chatlinks\""_s);
    QVERIFY2(0 < sequenceAt && sequenceAt < sectionsAt && sectionsAt < chatLinksAt,
             qPrintable(outcome.out));
    QVERIFY(outcome.out.endsWith(u"\n}\n"_s));
}

void TestChecker::unreadableDocument_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("message");

    const QString missing = dataFile(u"missing.json"_s);
    QTest::newRow("missing file") << missing
                                  << u"eventtimer-check: cannot read \""_s + missing +
                                         u"\": No such file or directory\n"_s;
    const QString directory = dataFile(QString());
    QTest::newRow("a directory") << directory
                                 << u"eventtimer-check: cannot read \""_s + directory +
                                        u"\": file to open is a directory\n"_s;
    // The stray quote after "Harbour Fleet" lacks its comma.
    const QString notJson = dataFile(u"not-json.json"_s);
    QTest::newRow("not JSON") << notJson
                              << u"eventtimer-check: \""_s + notJson +
                                     u"\" is not JSON: unterminated object at offset 34\n"_s;
    const QString notArray = dataFile(u"not-array.json"_s);
    QTest::newRow("a section record instead of an array")
        << notArray
        << u"eventtimer-check: \""_s + notArray +
               u"\" is not an event document: its top-level value is an object, not an array "
               u"of sections\n"_s;
}

void TestChecker::unreadableDocument()
{
    QFETCH(QString, path);
    QFETCH(QString, message);

    for (const QStringList &arguments :
         {QStringList{path}, QStringList{u"--json"_s, path}, QStringList{u"--export"_s, path}}) {
        const Outcome outcome = check(arguments, noon, utc);
        QCOMPARE(outcome.status, 2);
        QCOMPARE(outcome.out, QString());
        QCOMPARE(outcome.err, message);
    }
}

void TestChecker::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    const QString file = dataFile(u"valid.json"_s);
    QTest::newRow("no file") << QStringList{u"--json"_s} << u"no FILE given"_s;
    QTest::newRow("two files") << QStringList{file, u"b.json"_s}
                               << u"one FILE expected, found 2: "_s + file + u" b.json"_s;
    QTest::newRow("unknown option")
        << QStringList{u"--yaml"_s, file} << u"Unknown option 'yaml'."_s;
    QTest::newRow("--at without its value")
        << QStringList{file, u"--at"_s} << u"Missing value after '--at'."_s;
    QTest::newRow("--at not a date-time")
        << QStringList{u"--at"_s, u"noon"_s, file}
        << u"--at: \"noon\" is not an ISO 8601 date-time such as 2026-11-22T12:00:00"_s;
    QTest::newRow("--at not a calendar day")
        << QStringList{u"--at"_s, u"2026-02-30T12:00:00"_s, file}
        << u"--at: \"2026-02-30T12:00:00\" is not an ISO 8601 date-time such as "
           u"2026-11-22T12:00:00"_s;
    QTest::newRow("--export with --json") << QStringList{u"--export"_s, u"--json"_s, file}
                                          << u"--export and --json cannot be combined"_s;
}

void TestChecker::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    const Outcome outcome = check(arguments, noon, utc);
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.out, QString());
    const QStringList lines = outcome.err.split(u'\n');
    QCOMPARE(lines.first(), u"eventtimer-check: "_s + message);
    QVERIFY(lines.contains(u"Usage: eventtimer-check [--json | --export] [--at DATETIME] FILE"_s));
}

void TestChecker::help()
{
    // Help wins over everything else on the line, even a missing file.
    const Outcome outcome = check({u"--help"_s, u"missing.json"_s}, noon, utc);
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.err, QString());
    QVERIFY(outcome.out.startsWith(
        u"Usage: eventtimer-check [--json | --export] [--at DATETIME] FILE\n"_s));
    QVERIFY(outcome.out.contains(u"--at DATETIME"_s));
    QVERIFY(outcome.out.contains(u"(not with --json)"_s));
}

void TestChecker::realProgram()
{
    // The program takes its zone from the system: TZ stands for it here.
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TZ"_s, u"Asia/Tokyo"_s);
    process.setProcessEnvironment(environment);
    process.start(QString::fromUtf8(EVENTTIMER_CHECK_PROGRAM),
                  {u"--at"_s, u"2026-11-22T12:00:00"_s, dataFile(u"skipped.json"_s)});
    QVERIFY2(process.waitForFinished(60000), qPrintable(process.errorString()));
    const QString out = QString::fromUtf8(process.readAllStandardOutput());
    const QString err = QString::fromUtf8(process.readAllStandardError());

    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(err, QString());
    const QString missing = firstMissingLine(
        out, {u"Day 2026-11-22 in zone Asia/Tokyo, from local midnight 2026-11-22T00:00:00+09:00"_s,
              u"    09:00       0   360 min  Sandstorm"_s,
              u"[ERROR] Skipped section 2: not an object (found 42)"_s,
              u"    09:30      30    90 min  Caravan"_s,
              u"2 sections kept, 3 sections skipped, 16 occurrences"_s});
    QVERIFY2(missing.isNull(),
             qPrintable(u"missing or out of order: \""_s + missing + u"\"\n"_s + out));
}

QTEST_GUILESS_MAIN(TestChecker)
#include "tst_checker.moc"
