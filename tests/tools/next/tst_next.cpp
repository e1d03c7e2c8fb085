#include "suite/suitefile.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

// Would run a command, harmless, if a shell ever read it.
const QString hostile = u"[&x]'; echo injected; '"_s;

// Dawn Raid at 00:00, Ember Wyrm at 21:00 and Tide <b> at 21:20 after the local midnight, as
// the window writes it at the moment given.
QByteArray suite(const QString &written = u"2026-11-22T06:00:00Z"_s)
{
    const QDateTime at = QDateTime::fromString(written, Qt::ISODate);
    return suiteText({.times = {0, 75600, 76800},
                      .sequence = {u"Dawn Raid"_s, u"Ember Wyrm"_s, u"Tide <b>"_s},
                      .sections = {u"Peaks"_s, u"Peaks"_s, u"Peaks"_s},
                      .chatLinks = {u"[&A]"_s, hostile, u"[&C]"_s},
                      .axisDayStart = at.toUTC().date().startOfDay(QTimeZone::utc()),
                      .writtenAt = at});
}

// The real program, as a panel runs it, on 2026-11-22 at the local time given ("HH:mm[:ss]", or
// a date and time, then the system's zone when it is not UTC), on the suite given (none when
// null). Its output names the suite's folder ~.
std::pair<int, QString> next(const QString &arguments, const QString &at,
                             const QByteArray &suite = ::suite())
{
    QTemporaryDir home;
    QFile file(home.filePath(u"tolmerkvarn.eventtimer/suite.json"_s));
    if (!suite.isNull() && QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly))
        file.write(suite);
    file.close();
    const QStringList time = at.split(u' ');
    qputenv("XDG_DATA_HOME", home.path().toUtf8());
    qputenv("TZ", time.size() > 1 ? time.at(1).toUtf8() : "UTC");
    QProcess process;
    process.start(
        QStringLiteral(EVENTTIMER_NEXT_PROGRAM),
        arguments.split(u' ', Qt::SkipEmptyParts) +
            QStringList{u"--at"_s,
                        (time.at(0).contains(u'T') ? u""_s : u"2026-11-22T"_s) + time.at(0)});
    process.waitForFinished(30000);
    return {process.exitCode(),
            QString::fromUtf8(process.readAllStandardOutput()).replace(home.path(), u"~"_s)};
}

struct Run
{
    QString at;
    QString expected; // the line on standard output
    QString arguments;
    int status = 0;
    QByteArray suite = ::suite();
};

} // namespace

class TestNext : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void feeds_data()
    {
        QTest::addColumn<Run>("run");
        // 11 min 30 s is 12 min: the minute a box's marker reaches it.
        QTest::newRow("plain") << Run{u"21:08:30"_s, u"Tide <b> 21:20 (in 12 min)"_s};
        QTest::newRow("waybar, soon, inert markup, Berlin") << Run{
            u"22:12 Europe/Berlin"_s,
            u"{\"class\":\"soon\",\"text\":\"Tide &lt;b&gt; 22:20 (in 8 min)\",\"tooltip\":\"22:20  Tide &lt;b&gt; — Peaks  [&amp;C]\"}"_s,
            u"--format waybar"_s};
        QTest::newRow("waybar, running for under a minute, two in the tooltip") << Run{
            u"21:00:59"_s,
            u"{\"class\":\"running\",\"text\":\"Ember Wyrm 21:00 (now)\",\"tooltip\":\"21:00  Ember Wyrm — Peaks  [&amp;x]&#39;; echo injected; &#39;\\n21:20  Tide &lt;b&gt; — Peaks  [&amp;C]\"}"_s,
            u"--format waybar --count 2"_s};
        // On Berlin's spring change day, written before the change: the times the boxes show,
        // with the offset of that moment, also after the change.
        QTest::newRow("change day, written before the change") << Run{
            u"2026-03-29T00:30 Europe/Berlin"_s,
            u"{\"class\":\"later\",\"text\":\"Dawn Raid 01:00 (in 30 min)\",\"tooltip\":\"01:00  Dawn Raid — Peaks  [&amp;A]\\n23:00  Ember Wyrm — Peaks  [&amp;x]&#39;; echo injected; &#39;\"}"_s,
            u"--format waybar --count 2"_s, 0, suite(u"2026-03-29T00:10:00+01:00"_s)};
        QTest::newRow("change day, seen after the change")
            << Run{u"2026-03-29T03:00 Europe/Berlin"_s, u"Ember Wyrm 23:00 (in 20 h 0 min)"_s,
                   QString(), 0, suite(u"2026-03-29T00:10:00+01:00"_s)};
        QTest::newRow("nothing left today")
            << Run{u"21:30"_s, u"eventtimer: no more events today"_s};
        QTest::newRow("a suite of another day, waybar: --strict is for plain") << Run{
            u"09:00"_s,
            u"{\"class\":\"none\",\"text\":\"eventtimer: no timetable for today\",\"tooltip\":\"eventtimer: no timetable for today\"}"_s,
            u"--format waybar --strict"_s, 0, suite(u"2026-11-21T06:00:00Z"_s)};
        QTest::newRow("no suite") << Run{u"09:00"_s,
                                         u"eventtimer: no timetable yet (start Event Timer once)"_s,
                                         QString(), 0, QByteArray()};
        QTest::newRow("a damaged suite, --strict")
            << Run{u"09:00"_s, u"eventtimer: ~/tolmerkvarn.eventtimer/suite.json is damaged"_s,
                   u"--strict"_s, 1, "{\"varn_global_events_times\": [1]"};
        QTest::newRow("a wrong option") << Run{u"09:00"_s, QString(), u"--format yaml"_s, 2};
    }

    void feeds()
    {
        QFETCH(Run, run);
        const auto [status, out] = next(run.arguments, run.at, run.suite);
        QCOMPARE(status, run.status);
        // One line, and none when the command line is wrong.
        QCOMPARE(out, status == 2 ? QString() : run.expected + u'\n');
    }

    void argosMenuCopiesTheLinkAsItIs()
    {
        const QStringList lines =
            next(u"--format argos"_s, u"20:00"_s).second.split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 4);
        QVERIFY(lines.at(0).startsWith(u"Ember Wyrm 21:00 (in 1 h 0 min) | "_s));
        QCOMPARE(lines.at(1), u"---"_s);
        const QString item = lines.at(2);
        QVERIFY(item.startsWith(u"21:00  Ember Wyrm \u2014 Peaks  "_s + hostile + u" | bash='"_s));

        // The item's command, run as Argos runs it, with a clipboard tool that prints what it
        // is given: the link exactly, and nothing of it is ever read by the shell.
        const qsizetype start = item.indexOf(u"bash='"_s) + 6;
        QProcess shell;
        shell.start(u"bash"_s, {u"-c"_s, u"wl-copy() { cat; }; "_s +
                                             item.mid(start, item.indexOf(u'\'', start) - start)});
        QVERIFY(shell.waitForFinished(30000));
        QCOMPARE(QString::fromUtf8(shell.readAllStandardOutput()), hostile);
    }
};

QTEST_GUILESS_MAIN(TestNext)
#include "tst_next.moc"
