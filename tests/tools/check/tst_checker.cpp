#include "check/checker.h"

#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString fixture(const QString &name)
{
    return QString::fromUtf8(EVENTTIMER_FIXTURES_DIR "/checker/") + name;
}

// One run of the checker in-process, at noon UTC seen from UTC+2 unless told otherwise. Files
// are named as in the fixtures' folder, in the arguments and in what the checker writes.
struct Run
{
    QString arguments; // split at spaces
    int status = 0;
    QStringList lines; // whole lines expected on standard output, in this order
    QString err; // what standard error starts with, after "eventtimer-check: " when the status is 2
};

} // namespace

class TestChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void runs_data()
    {
        QTest::addColumn<Run>("run");
        const QString day =
            u"Day 2026-11-22 in zone UTC+02, from local midnight 2026-11-22T00:00:00+02:00"_s;
        // Lighthouse Bay: Kraken Hunt at minute 0 for 45, then passes of 120 minutes; the start
        // texts carry the zone's offset once more.
        QTest::newRow("valid") << Run{
            u"valid.json"_s, 0,
            QStringList{day, u""_s, u"Section 1: Lighthouse Bay"_s, u"  Category  Harbour Fleet"_s,
                        u"  Wiki      Lighthouse_Bay"_s, u"  Events"_s,
                        u"    Name         Colour     Chat link    Wiki"_s,
                        u"    Tide Watch   #ff8000cc  [&BKgBAAA=]  Tide Watch"_s,
                        u"    Kraken Hunt  default                 Kraken_Hunt_(event)"_s,
                        u"  Occurrences"_s, u"    Start  Minute  Duration  Event"_s,
                        u"    02:00       0    45 min  Kraken Hunt"_s,
                        u"    02:45      45    60 min  Tide Watch"_s,
                        u"2 sections kept, 0 sections skipped, 26 occurrences"_s}};
        const QString skipped = u"[ERROR] Skipped section 2: not an object (found 42)"_s;
        QTest::newRow("skipped records in their place") << Run{
            u"skipped.json"_s, 1,
            QStringList{u"Section 1: Dune Fort"_s, u""_s, skipped, u""_s, u"Section 3: Oasis"_s,
                        u"2 sections kept, 3 sections skipped, 16 occurrences"_s}};
        QTest::newRow("--at without an offset: the wall clock of the zone")
            << Run{u"--at 2026-11-22T23:30:00 valid.json"_s, 0, QStringList{day}};
        QTest::newRow("--at in UTC: already the next day at UTC+2")
            << Run{u"--at=2026-11-22T22:00:00Z valid.json"_s, 0,
                   QStringList{QString(day).replace(u"22"_s, u"23"_s)}};
        QTest::newRow("--json") << Run{
            u"--json valid.json"_s, 0,
            QStringList{u"    \"dayStart\": \"2026-11-22T00:00:00+02:00\","_s,
                        u"                    \"chatLink\": \"[&BKgBAAA=]\","_s,
                        u"                    \"color\": \"#ff8000cc\","_s}};
        // Breakwater, Lagoon and Pier in their list order, though Pier is shown under
        // Breakwater's category: Pearl Dive takes 3601 before Ferry. Breakwater's Beacon at 00:00
        // is dropped, as it ends the day too.
        QTest::newRow("--export") << Run{
            u"--export export.json"_s, 0,
            QStringList{u"    \"varn_global_events_times\": [0,3600,3601,3602,79200,86340],"_s,
                        u"    \"varn_global_events_sequence\": [\"Regatta\",\"Storm Watch\","
                        u"\"Pearl Dive\",\"Ferry\",\"Beacon\",\"Moonrise\"],"_s,
                        u"    \"written_at\": \"2026-11-22T12:00:00Z\""_s}};
        QTest::newRow("--export: records left out on the error stream")
            << Run{u"--export skipped.json"_s, 1, QStringList(), skipped + u'\n'};
        QTest::newRow("help wins") << Run{
            u"--json --export --help"_s, 0,
            QStringList{u"Usage: eventtimer-check [--json | --export] [--at DATETIME] FILE"_s}};

        // Where the words are the system's or Qt's, only our own are checked.
        QTest::newRow("missing file")
            << Run{u"missing.json"_s, 2, QStringList(), u"cannot read \"missing.json\": "_s};
        QTest::newRow("not JSON") << Run{u"not-json.json"_s, 2, QStringList(),
                                         u"\"not-json.json\" is not JSON: "_s};
        QTest::newRow("an object instead of an array")
            << Run{u"--export not-array.json"_s, 2, QStringList(),
                   u"\"not-array.json\" is not an event document: its top-level value is an "
                   u"object, not an array of sections\n"_s};
        QTest::newRow("no file") << Run{u"--json"_s, 2, QStringList(), u"no FILE given\n"_s};
        QTest::newRow("--at not a calendar day")
            << Run{u"--at 2026-02-30T12:00:00 valid.json"_s, 2, QStringList(),
                   u"--at: \"2026-02-30T12:00:00\" is not an ISO 8601 date-time "_s};
        QTest::newRow("--export with --json")
            << Run{u"--export --json valid.json"_s, 2, QStringList(),
                   u"--export and --json cannot be combined\n"_s};
    }

    void runs()
    {
        QFETCH(Run, run);
        QStringList arguments = run.arguments.split(u' ');
        for (QString &argument : arguments)
            argument = argument.endsWith(u".json"_s) ? fixture(argument) : argument;
        QString out, err;
        QTextStream outStream(&out), errStream(&err);
        const int status = eventtimer::checker::run(
            arguments, outStream, errStream,
            QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc()), QTimeZone(7200));
        outStream.flush();
        errStream.flush();
        QCOMPARE(status, run.status);
        err.replace(fixture(QString()), QString());
        QVERIFY2(err.startsWith(run.status == 2 ? u"eventtimer-check: "_s + run.err : run.err),
                 qPrintable(err));
        // Each expected line is a whole line of output, after the one before.
        const QStringList lines = out.split(u'\n');
        qsizetype at = 0;
        for (const QString &line : std::as_const(run.lines)) {
            at = lines.indexOf(line, at);
            QVERIFY2(at++ >= 0, qPrintable(line));
        }
        if (status == 2)
            QCOMPARE(out, QString());
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
        const QString out = QString::fromUtf8(process.readAllStandardOutput());
        QVERIFY2(out.startsWith(u"Day 2026-11-22 in zone Asia/Tokyo, from local midnight "
                                u"2026-11-22T00:00:00+09:00\n"_s),
                 qPrintable(out));
    }
};

QTEST_GUILESS_MAIN(TestChecker)
#include "tst_checker.moc"
