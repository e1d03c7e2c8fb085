#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

struct Run
{
    QString program;
    QStringList arguments;
    int status = 0;
    QString out; // what standard output starts with
    QString err; // what standard error starts with
};

QProcessEnvironment environment(const QTemporaryDir &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable :
         {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QString::fromLatin1(variable), home.path());
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    return environment;
}

} // namespace

class TestPrograms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandLines_data()
    {
        QTest::addColumn<Run>("run");
        const QString app = QStringLiteral(EVENTTIMER_PROGRAM);
        const QString check = QStringLiteral(EVENTTIMER_CHECK_PROGRAM);
        const QString next = QStringLiteral(EVENTTIMER_NEXT_PROGRAM);
        // Answered without a window, and without a display: no platform is given here.
        QTest::newRow("eventtimer --help") << Run{app, {u"--help"_s}, 0, u"Usage: eventtimer"_s};
        QTest::newRow("eventtimer --version") << Run{app, {u"--version"_s}, 0, u"eventtimer 0."_s};
        QTest::newRow("eventtimer, an unknown option")
            << Run{app, {u"--frobnicate"_s}, 2, QString(), u"eventtimer: "_s};
        QTest::newRow("eventtimer, an argument")
            << Run{app, {u"x"_s}, 2, QString(), u"eventtimer: "_s};
        QTest::newRow("eventtimer-check --version")
            << Run{check, {u"--version"_s}, 0, u"eventtimer-check 0."_s};
        QTest::newRow("eventtimer-next --version")
            << Run{next, {u"--version"_s}, 0, u"eventtimer-next 0."_s};
        QTest::newRow("eventtimer-next --help")
            << Run{next, {u"--help"_s}, 0, u"Usage: eventtimer-next"_s};
    }

    void commandLines()
    {
        QFETCH(Run, run);
        QProcess process;
        QProcessEnvironment bare = QProcessEnvironment::systemEnvironment();
        bare.remove(u"QT_QPA_PLATFORM"_s);
        bare.remove(u"DISPLAY"_s);
        bare.remove(u"WAYLAND_DISPLAY"_s);
        process.setProcessEnvironment(bare);
        process.start(run.program, run.arguments);
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitCode(), run.status);
        QVERIFY(QString::fromUtf8(process.readAllStandardOutput()).startsWith(run.out));
        QVERIFY(QString::fromUtf8(process.readAllStandardError()).startsWith(run.err));
    }

    void oneProgramPerUser()
    {
        QTemporaryDir home;
        QProcess first;
        first.setProcessEnvironment(environment(home));
        first.start(QStringLiteral(EVENTTIMER_PROGRAM));
        QVERIFY(first.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(
            QFile::exists(home.filePath(u"org.tolmerkvarn.eventtimer.socket"_s)), 10000);

        // A second start hands over to the first and ends.
        QProcess second;
        second.setProcessEnvironment(environment(home));
        second.start(QStringLiteral(EVENTTIMER_PROGRAM));
        QVERIFY(second.waitForFinished(10000));
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(first.state(), QProcess::Running);

        // A first program that crashed leaves its lock and socket: the next start takes over.
        ::kill(static_cast<pid_t>(first.processId()), SIGKILL);
        QVERIFY(first.waitForFinished(10000));
        QProcess third;
        third.setProcessEnvironment(environment(home));
        third.start(QStringLiteral(EVENTTIMER_PROGRAM));
        QVERIFY(!third.waitForFinished(3000));
        third.terminate();
        QVERIFY(third.waitForFinished(10000));
    }
};

QTEST_GUILESS_MAIN(TestPrograms)
#include "tst_programs.moc"
