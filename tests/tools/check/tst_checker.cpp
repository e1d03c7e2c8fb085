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

// One run of the checker in-process, at noon UTC seen from UTC+2 unless told otherwise.
struct Run
{
    QStringList arguments;
    int status = 0;
    QStringList lines; // whole lines expected on standard output, in this order
    QString err;       // what standard error starts with
};

std::pair<int, std::pair<QString, QString>> check(const QStringList &arguments)
{
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    const int status = eventtimer::checker::run(
        arguments, outStream, errStream,
        QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc()), QTimeZone(7200));
    outStream.flush();
    errStream.flush();
    return {status, {out, err}};
}

// The first of expected that is not a whole line of output after those matched before it.
QString firstMissingLine(const QString &output, const QStringList &expected)
{
    const QStringList lines = output.split(u'\n');
    qsizetype next = 0;
    for (const QString &line : expected) {
        next = lines.indexOf(line, next);
        if (next++ < 0)
            return line;
    }
    return {};
}

} // namespace

class TestChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void runs_data()
    {
        QTest::addColumn<Run>("run");
        const QString valid = fixture(u"valid.json"_s);
        const QString notJson = fixture(u"not-json.json"_s);

        // Lighthouse Bay: Kraken Hunt at minute 0 for 45, then passes of 120 minutes; the start
        // texts carry the zone's offset once more.
        QTest::newRow("valid") << Run{
            {valid},
            0,
            {u"Day 2026-11-22 in zone UTC+02, from local midnight 2026-11-22T00:00:00+02:00"_s,
             u""_s, u"Section 1: Lighthouse Bay"_s, u"  Category  Harbour Fleet"_s,
             u"  Wiki      Lighthouse_Bay"_s, u"  Events"_s,
             u"    Name         Colour     Chat link    Wiki"_s,
             u"    Tide Watch   #ff8000cc  [&BKgBAAA=]  Tide Watch"_s,
             u"    Kraken Hunt  default                 Kraken_Hunt_(event)"_s, u"  Occurrences"_s,
             u"    Start  Minute  Duration  Event"_s, u"    02:00       0    45 min  Kraken Hunt"_s,
             u"    02:45      45    60 min  Tide Watch"_s,
             u"2 sections kept, 0 sections skipped, 26 occurrences"_s}};
        QTest::newRow("skipped records in their place") << Run{
            {fixture(u"skipped.json"_s)},
            1,
            {u"Section 1: Dune Fort"_s, u""_s,
             u"[ERROR] Skipped section 2: not an object (found 42)"_s, u""_s, u"Section 3: Oasis"_s,
             u"2 sections kept, 3 sections skipped, 16 occurrences"_s}};
        QTest::newRow("--at without an offset: the wall clock of the zone") << Run{
            {u"--at"_s, u"2026-11-22T23:30:00"_s, valid},
            0,
            {u"Day 2026-11-22 in zone UTC+02, from local midnight 2026-11-22T00:00:00+02:00"_s}};
        QTest::newRow("--at in UTC: already the next day at UTC+2") << Run{
            {u"--at=2026-11-22T22:00:00Z"_s, valid},
            0,
            {u"Day 2026-11-23 in zone UTC+02, from local midnight 2026-11-23T00:00:00+02:00"_s}};
        QTest::newRow("--json") << Run{{u"--json"_s, valid},
                                       0,
                                       {u"    \"dayStart\": \"2026-11-22T00:00:00+02:00\","_s,
                                        u"                    \"chatLink\": \"[&BKgBAAA=]\","_s,
                                        u"                    \"color\": \"#ff8000cc\","_s}};
        QTest::newRow("--export: records left out on the error stream")
            << Run{{u"--export"_s, fixture(u"skipped.json"_s)},
                   1,
                   {},
                   u"[ERROR] Skipped section 2: not an object (found 42)\n"_s};
        QTest::newRow("help wins")
            << Run{{u"--json"_s, u"--export"_s, u"--help"_s},
                   0,
                   {u"Usage: eventtimer-check [--json | --export] [--at DATETIME] FILE"_s}};

        // Where the words are the system's or Qt's, only our own part is checked.
        QTest::newRow("missing file") << Run{
            {u"missing.json"_s}, 2, {}, u"eventtimer-check: cannot read \"missing.json\": "_s};
        QTest::newRow("not JSON") << Run{
            {notJson}, 2, {}, u"eventtimer-check: \""_s + notJson + u"\" is not JSON: "_s};
        QTest::newRow("an object instead of an array")
            << Run{{u"--export"_s, fixture(u"not-array.json"_s)},
                   2,
                   {},
                   u"eventtimer-check: \""_s + fixture(u"not-array.json"_s) +
                       u"\" is not an event document: its top-level value is an object, not an "
                       u"array of sections\n"_s};
        QTest::newRow("no file") << Run{
            {u"--json"_s}, 2, {}, u"eventtimer-check: no FILE given\n"_s};
        QTest::newRow("--at not a calendar day") << Run{
            {u"--at"_s, u"2026-02-30T12:00:00"_s, valid},
            2,
            {},
            u"eventtimer-check: --at: \"2026-02-30T12:00:00\" is not an ISO 8601 date-time "_s};
        QTest::newRow("--export with --json")
            << Run{{u"--export"_s, u"--json"_s, valid},
                   2,
                   {},
                   u"eventtimer-check: --export and --json cannot be combined\n"_s};
    }

    void runs()
    {
        QFETCH(Run, run);
        const auto [status, output] = check(run.arguments);
        const auto &[out, err] = output;
        QCOMPARE(status, run.status);
        QVERIFY2(err.startsWith(run.err), qPrintable(err));
        QCOMPARE(firstMissingLine(out, run.lines), QString());
        if (status == 2)
            QCOMPARE(out, QString());
    }

    void exportFollowsTheListOrder()
    {
        // Breakwater, Lagoon and Pier in this order, though Pier is shown under Breakwater's
        // category: Pearl Dive takes 3601 before Ferry. Breakwater's Beacon at 00:00 is dropped,
        // as it ends the day too.
        const auto [status, output] = check({u"--export"_s, fixture(u"export.json"_s)});
        QCOMPARE(status, 0);
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
        QJsonObject suite = QJsonDocument::fromJson(output.first.toUtf8()).object();
        // With the day it describes and the moment it stands for.
        QCOMPARE(suite.take(u"axis_day_start"), u"2026-11-22T00:00:00Z"_s);
        QCOMPARE(suite.take(u"written_at"), u"2026-11-22T12:00:00Z"_s);
        QCOMPARE(suite, expected);
        // In the order the suite is written.
        QVERIFY(output.first.indexOf(u"times"_s) < output.first.indexOf(u"sequence"_s) &&
                output.first.indexOf(u"sections"_s) < output.first.indexOf(u"chatlinks"_s));
    }

    void realProgram()
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
        QCOMPARE(firstMissingLine(QString::fromUtf8(process.readAllStandardOutput()),
                                  {u"Day 2026-11-22 in zone Asia/Tokyo, from local midnight "
                                   u"2026-11-22T00:00:00+09:00"_s,
                                   u"    09:00       0   360 min  Sandstorm"_s}),
                 QString());
    }
};

QTEST_GUILESS_MAIN(TestChecker)
#include "tst_checker.moc"
