#include "data/suiteexport.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

const QString hostile = u"[&x]'; rm -rf ~; '"_s;

// Dawn Raid at 00:00, Ember Wyrm at 21:00 and Tide <b> at 21:20 on the UTC axis.
QByteArray suite()
{
    GlobalSequence sequence;
    for (const auto &[seconds, name, link] :
         {std::tuple{0, u"Dawn Raid"_s, u"[&A]"_s}, std::tuple{75600, u"Ember Wyrm"_s, hostile},
          std::tuple{76800, u"Tide <b>"_s, u"[&C]"_s}})
        registerEvent(
            sequence, seconds,
            std::make_shared<Event>(Event{.name = name, .chatLink = link, .section = u"Peaks"_s}));
    return suiteJson(sequence, QDateTime(QDate(2026, 11, 22), QTime(6, 0), QTimeZone::utc()));
}

struct Run
{
    QStringList arguments;
    QString at;              // local time of the zone
    QString expected;        // standard output
    QByteArray zone = "UTC"; // the system's zone (TZ)
    QByteArray suite = ::suite();
    int status = 0;
};

} // namespace

class TestNext : public QObject
{
    Q_OBJECT

private:
    std::pair<int, QString> next(const QStringList &arguments, const QByteArray &zone,
                                 const QByteArray &suite)
    {
        QTemporaryDir home;
        if (!suite.isNull()) {
            QFile file(home.filePath(u"tolmerkvarn.eventtimer/suite.json"_s));
            QDir().mkpath(QFileInfo(file).path());
            if (!file.open(QIODevice::WriteOnly) || file.write(suite) != suite.size())
                return {-1, u"cannot write the suite"_s};
        }
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_DATA_HOME"_s, home.path());
        environment.insert(u"TZ"_s, QString::fromLatin1(zone));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(EVENTTIMER_NEXT_PROGRAM), arguments);
        process.waitForFinished(30000);
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput())};
    }

private Q_SLOTS:
    void feeds_data()
    {
        QTest::addColumn<Run>("run");
        const QStringList waybar{u"--format"_s, u"waybar"_s};
        QTest::newRow("plain") << Run{{}, u"2026-11-22T21:08"_s, u"Tide <b> 21:20 (in 12 min)\n"_s};
        QTest::newRow("the times a box shows, in another zone")
            << Run{{}, u"2026-11-22T22:08"_s, u"Tide <b> 22:20 (in 12 min)\n"_s, "Europe/Berlin"};
        QTest::newRow("later") << Run{
            {}, u"2026-11-22T13:55:10"_s, u"Ember Wyrm 21:00 (in 7 h 5 min)\n"_s};
        QTest::newRow("waybar, soon, marked up inert") << Run{
            waybar, u"2026-11-22T21:12"_s,
            uR"j({"class":"soon","text":"Tide &lt;b&gt; 21:20 (in 8 min)","tooltip":"21:20  Tide &lt;b&gt; — Peaks  [&amp;C]"})j"_s
            u"\n"_s};
        QTest::newRow("waybar, running for less than a minute, two in the tooltip") << Run{
            waybar + QStringList{u"--count"_s, u"2"_s}, u"2026-11-22T21:00:59"_s,
            uR"j({"class":"running","text":"Ember Wyrm 21:00 (now)","tooltip":"21:00  Ember Wyrm — Peaks  [&amp;x]&#39;; rm -rf ~; &#39;\n21:20  Tide &lt;b&gt; — Peaks  [&amp;C]"})j"_s
            u"\n"_s};
        QTest::newRow("nothing left today")
            << Run{{}, u"2026-11-22T21:30"_s, u"eventtimer: no more events today\n"_s};
        QTest::newRow("a suite of another day") << Run{{u"--strict"_s},
                                                       u"2026-11-23T09:00"_s,
                                                       u"eventtimer: no timetable for today\n"_s,
                                                       "UTC",
                                                       suite(),
                                                       1};
        QTest::newRow("no suite, waybar") << Run{
            waybar, u"2026-11-22T09:00"_s,
            uR"j({"class":"none","text":"eventtimer: no timetable yet (start Event Timer once)","tooltip":"eventtimer: no timetable yet (start Event Timer once)"})j"_s
            u"\n"_s,
            "UTC", QByteArray()};
        QTest::newRow("a damaged suite") << Run{{u"--strict"_s},
                                                u"2026-11-22T09:00"_s,
                                                QString(),
                                                "UTC",
                                                "{\"varn_global_events_times\": [1]",
                                                1};
        QTest::newRow("a wrong option")
            << Run{{u"--format"_s, u"yaml"_s}, u"2026-11-22T09:00"_s, QString(), "UTC", suite(), 2};
    }

    void feeds()
    {
        QFETCH(Run, run);
        const auto [status, out] =
            next(run.arguments + QStringList{u"--at"_s, run.at}, run.zone, run.suite);
        QCOMPARE(status, run.status);
        if (!run.expected.isNull() || status == 2)
            QCOMPARE(out, run.expected);
        else
            QVERIFY2(out.startsWith(u"eventtimer: "_s) && out.endsWith(u" is damaged\n"_s),
                     qPrintable(out));
    }

    void argosMenuCopiesTheLinkAsItIs()
    {
        const auto [status, out] =
            next({u"--format"_s, u"argos"_s, u"--at"_s, u"2026-11-22T20:00"_s}, "UTC", suite());
        QCOMPARE(status, 0);
        const QStringList lines = out.split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 4);
        QVERIFY(lines.at(0).startsWith(u"Ember Wyrm 21:00 (in 1 h 0 min) | "_s));
        QCOMPARE(lines.at(1), u"---"_s);

        // The item's command, run as Argos runs it, hands the clipboard tool the link exactly;
        // nothing of the link is ever read by the shell.
        QTemporaryDir bin;
        QFile tool(bin.filePath(u"wl-copy"_s));
        QVERIFY(tool.open(QIODevice::WriteOnly));
        tool.write("#!/bin/sh\ncat > \"$(dirname \"$0\")/copied\"\n");
        tool.close();
        tool.setPermissions(tool.permissions() | QFileDevice::ExeOwner);
        const QString item = lines.at(2);
        const qsizetype start = item.indexOf(u"bash='"_s) + 6;
        QProcess shell;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"PATH"_s, bin.path() + u":/usr/bin:/bin"_s);
        shell.setProcessEnvironment(environment);
        shell.start(u"bash"_s, {u"-c"_s, item.mid(start, item.indexOf(u'\'', start) - start)});
        QVERIFY(shell.waitForFinished(30000));
        QFile copied(bin.filePath(u"copied"_s));
        QVERIFY(copied.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(copied.readAll()), hostile);
        QVERIFY(item.startsWith(u"21:00  Ember Wyrm \u2014 Peaks  "_s + hostile + u" | bash='"_s));
    }
};

QTEST_GUILESS_MAIN(TestNext)
#include "tst_next.moc"
