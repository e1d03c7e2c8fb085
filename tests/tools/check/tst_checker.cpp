#include "check/checker.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString fixture(const QString &name)
{
    return QString::fromUtf8(EVENTTIMER_FIXTURES_DIR "/checker/") + name;
}

struct Outcome
{
    int status = -1;
    QString out;
    QString err;
};

const QTimeZone utc = QTimeZone::utc();
const QTimeZone plusTwo(7200);
const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0), utc);

Outcome check(const QStringList &arguments, const QTimeZone &zone = utc,
              const QDateTime &now = noon)
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

} // namespace

class TestChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textOutput_data();
    void textOutput();
    void atReplacesNow_data();
    void atReplacesNow();
    void jsonOutput();
    void exportArrays();
    void problems_data();
    void problems();
    void realProgram();
};

void TestChecker::textOutput_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("status");
    QTest::addColumn<QStringList>("lines");

    // Lighthouse Bay: Kraken Hunt at minute 0 for 45, then passes of 120 minutes. Start texts
    // carry the zone's offset once more.
    QTest::newRow("valid") << u"valid.json"_s << 0
                           << QStringList{
                                  u"Day 2026-11-22 in zone UTC+02, from local midnight "
                                  u"2026-11-22T00:00:00+02:00"_s,
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
                                  u"2 sections kept, 0 sections skipped, 26 occurrences"_s,
                              };
    QTest::newRow("skipped records in their place")
        << u"skipped.json"_s << 1
        << QStringList{u"Section 1: Dune Fort"_s,
                       u""_s,
                       u"[ERROR] Skipped section 2: not an object (found 42)"_s,
                       u""_s,
                       u"Section 3: Oasis"_s,
                       u"[ERROR] Skipped section 5: \"Glacier\", \"sequences\": \"pattern\" is "
                       u"missing"_s,
                       u"2 sections kept, 3 sections skipped, 16 occurrences"_s};
    QTest::newRow("empty") << u"empty.json"_s << 0
                           << QStringList{u""_s,
                                          u"0 sections kept, 0 sections skipped, 0 occurrences"_s};
}

void TestChecker::textOutput()
{
    QFETCH(QString, file);
    QFETCH(int, status);
    QFETCH(QStringList, lines);

    const Outcome outcome = check({fixture(file)}, plusTwo);
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.status, status);
    const QString missing = firstMissingLine(outcome.out, lines);
    QVERIFY2(missing.isNull(), qPrintable(u"missing: \""_s + missing + u"\"\n"_s + outcome.out));
}

void TestChecker::atReplacesNow_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("day");

    const QString file = fixture(u"empty.json"_s);
    QTest::newRow("no offset: wall clock of the zone")
        << QStringList{u"--at"_s, u"2026-11-22T23:30:00"_s, file} << u"2026-11-22"_s;
    QTest::newRow("Z: already the next day at UTC+2")
        << QStringList{u"--at=2026-11-22T22:00:00Z"_s, file} << u"2026-11-23"_s;
    QTest::newRow("other offset") << QStringList{file, u"--at"_s, u"2026-11-22T20:00:00-05:00"_s}
                                  << u"2026-11-23"_s;
}

void TestChecker::atReplacesNow()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, day);
    const Outcome outcome = check(arguments, plusTwo, QDateTime(QDate(2026, 3, 1), QTime(), utc));
    QCOMPARE(outcome.status, 0);
    QVERIFY2(outcome.out.startsWith(u"Day "_s + day + u" in zone UTC+02"_s),
             qPrintable(outcome.out));
}

void TestChecker::jsonOutput()
{
    const Outcome outcome = check({u"--json"_s, fixture(u"skipped.json"_s)});
    QCOMPARE(outcome.status, 1);
    const QJsonObject report = QJsonDocument::fromJson(outcome.out.toUtf8()).object();
    QCOMPARE(report.value(u"day"), u"2026-11-22"_s);
    QCOMPARE(report.value(u"dayStart"), u"2026-11-22T00:00:00+00:00"_s);
    const QJsonObject oasis = report.value(u"sections").toArray().at(1).toObject();
    QCOMPARE(oasis.value(u"number"), 3);
    QCOMPARE(oasis.value(u"wiki"), u"Oasis_(zone)"_s);
    QCOMPARE(oasis.value(u"events").toArray().first(),
             (QJsonObject{{u"name"_s, u"Caravan"_s},
                          {u"wiki"_s, u"Caravan"_s},
                          {u"chatLink"_s, u"[&BOcBAAA=]"_s},
                          {u"color"_s, u"default"_s}}));
    QCOMPARE(oasis.value(u"occurrences").toArray().first(),
             (QJsonObject{{u"start"_s, u"00:30"_s},
                          {u"minute"_s, 30},
                          {u"duration"_s, 90},
                          {u"event"_s, u"Caravan"_s},
                          {u"chatLink"_s, u"[&BOcBAAA=]"_s}}));
    QCOMPARE(report.value(u"skipped").toArray().first(),
             (QJsonObject{{u"number"_s, 2}, {u"reason"_s, u"not an object (found 42)"_s}}));
}

void TestChecker::exportArrays()
{
    // Keys follow the sections' list order (Breakwater, Lagoon, Pier), not the timetable's
    // grouping of Pier under Breakwater's category: Pearl Dive takes 3601 before Ferry.
    const Outcome outcome = check({u"--export"_s, fixture(u"export.json"_s)});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.err, QString());
    const QJsonObject expected{
        {u"varn_global_events_times"_s, QJsonArray{0, 3600, 3601, 3602, 79200, 86340}},
        {u"varn_global_events_sequence"_s,
         QJsonArray{u"Regatta"_s, u"Storm Watch"_s, u"Pearl Dive"_s, u"Ferry"_s, u"Beacon"_s,
                    u"Moonrise"_s}},
        {u"varn_global_events_sections"_s, QJsonArray{u"Pier"_s, u"Breakwater"_s, u"Lagoon"_s,
                                                      u"Pier"_s, u"Breakwater"_s, u"Lagoon"_s}},
        {u"varn_global_events_chatlinks"_s,
         QJsonArray{u"[&BAEAAAA=]"_s, u"[&BAQAAAA=]"_s, u"[&BAUAAAA=]"_s, u"[&BAIAAAA=]"_s,
                    u"[&BAMAAAA=]"_s, u"[&BAYAAAA=]"_s}}};
    QCOMPARE(QJsonDocument::fromJson(outcome.out.toUtf8()).object(), expected);
    // In the order the suite is written.
    QVERIFY(outcome.out.indexOf(u"times"_s) < outcome.out.indexOf(u"sequence"_s) &&
            outcome.out.indexOf(u"sequence"_s) < outcome.out.indexOf(u"sections"_s) &&
            outcome.out.indexOf(u"sections"_s) < outcome.out.indexOf(u"chatlinks"_s));

    // Records left out are said on the error stream, beside the arrays.
    const Outcome skipped = check({u"--export"_s, fixture(u"skipped.json"_s)});
    QCOMPARE(skipped.status, 1);
    QVERIFY(skipped.err.startsWith(u"[ERROR] Skipped section 2: not an object (found 42)\n"_s));
}

void TestChecker::problems_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    // Where the words are Qt's or the system's, only what they must name is checked.
    const QString notJson = fixture(u"not-json.json"_s);
    QTest::newRow("missing file") << QStringList{u"missing.json"_s}
                                  << u"cannot read \"missing.json\": "_s;
    QTest::newRow("not JSON") << QStringList{notJson} << u"\""_s + notJson + u"\" is not JSON: "_s;
    QTest::newRow("an object instead of an array")
        << QStringList{u"--json"_s, fixture(u"not-array.json"_s)}
        << u"\""_s + fixture(u"not-array.json"_s) +
               u"\" is not an event document: its top-level value is an object, not an array "
               u"of sections"_s;
    QTest::newRow("no file") << QStringList{u"--json"_s} << u"no FILE given"_s;
    QTest::newRow("unknown option") << QStringList{u"--yaml"_s, notJson} << u"yaml"_s;
    QTest::newRow("--at not a calendar day")
        << QStringList{u"--at"_s, u"2026-02-30T12:00:00"_s, notJson}
        << u"--at: \"2026-02-30T12:00:00\" is not an ISO 8601 date-time such as "
           u"2026-11-22T12:00:00"_s;
    QTest::newRow("--export with --json") << QStringList{u"--export"_s, u"--json"_s, notJson}
                                          << u"--export and --json cannot be combined"_s;
}

void TestChecker::problems()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Outcome outcome = check(arguments);
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.out, QString());
    QVERIFY2(outcome.err.startsWith(u"eventtimer-check: "_s) && outcome.err.contains(message),
             qPrintable(outcome.err));

    // Help wins over everything else the line asks for.
    const Outcome help = check(QStringList{u"--help"_s, u"--export"_s, u"--json"_s});
    QCOMPARE(help.status, 0);
    QVERIFY(help.out.startsWith(u"Usage: eventtimer-check [--json | --export]"_s));
}

void TestChecker::realProgram()
{
    // The program takes its zone from the system: TZ stands for it here.
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TZ"_s, u"Asia/Tokyo"_s);
    process.setProcessEnvironment(environment);
    process.start(QString::fromUtf8(EVENTTIMER_CHECK_PROGRAM),
                  {u"--at"_s, u"2026-11-22T12:00:00"_s, fixture(u"skipped.json"_s)});
    QVERIFY2(process.waitForFinished(60000), qPrintable(process.errorString()));
    QCOMPARE(process.exitCode(), 1);
    const QString out = QString::fromUtf8(process.readAllStandardOutput());
    QCOMPARE(firstMissingLine(out, {u"Day 2026-11-22 in zone Asia/Tokyo, from local midnight "
                                    u"2026-11-22T00:00:00+09:00"_s,
                                    u"    09:00       0   360 min  Sandstorm"_s,
                                    u"    09:30      30    90 min  Caravan"_s}),
             QString());
}

QTEST_GUILESS_MAIN(TestChecker)
#include "tst_checker.moc"
