#include "app/preferencesdialog.h"
#include "app/timetablewindow.h"
#include "localeventservice/localeventservice.h"
#include "manualclock.h"
#include "suite/suiteformat.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace eventtimer;
using eventtimer::testing::ManualClock;
using namespace Qt::StringLiterals;

namespace {

// The program, never with a display: without a home, a window could not even start.
void start(QProcess &process, const QStringList &arguments, const QString &home = QString())
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"DISPLAY"_s);
    environment.remove(u"WAYLAND_DISPLAY"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, home.isEmpty() ? u"xcb"_s : u"offscreen"_s);
    for (const char *variable :
         {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QString::fromLatin1(variable), home);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(EVENTTIMER_PROGRAM), arguments);
}

} // namespace

// Event Timer as the player starts it: the program's command line, one program per user, and
// its window.
class TestEventTimer : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;
    LocalEventService m_service;
    const QString m_document = LocalEventService::documentPath.toString();
    ManualClock m_clock{QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc()),
                        QTimeZone::utc()};

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
            qputenv(variable, m_home.filePath(QString::fromLatin1(variable)).toUtf8());
        QVERIFY(m_service.listen());
        m_service.setDocument(R"([{"category": "C", "name": "S", "segments": {"0": {"name": "A"}},
            "sequences": {"partial": [], "pattern": [{"d": 60, "r": 0}]}}])");
        SettingsStore::openStandard()->setValue(settingskeys::serviceUrl.toString(),
                                                m_service.baseUrl().toString());
    }

    void commandLines_data()
    {
        QTest::addColumn<QString>("argument");
        QTest::addColumn<int>("status");
        // What standard output starts with, or standard error when the status is not 0.
        QTest::addColumn<QString>("output");
        QTest::newRow("--help") << u"--help"_s << 0 << u"Usage: eventtimer"_s;
        QTest::newRow("--version") << u"--version"_s << 0 << u"eventtimer 0."_s;
        QTest::newRow("an unknown option") << u"--frobnicate"_s << 2 << u"eventtimer: "_s;
        QTest::newRow("an argument") << u"x"_s << 2 << u"eventtimer: unexpected argument x\n"_s;
    }

    void commandLines()
    {
        QFETCH(QString, argument);
        QFETCH(int, status);
        QFETCH(QString, output);
        QProcess process;
        start(process, {argument});
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitCode(), status);
        const QByteArray written =
            status == 0 ? process.readAllStandardOutput() : process.readAllStandardError();
        QVERIFY2(written.startsWith(output.toUtf8()), written.constData());
    }

    void oneProgramPerUser()
    {
        QTemporaryDir home;
        QProcess first, second, third;
        start(first, {}, home.path());
        QTRY_VERIFY_WITH_TIMEOUT(
            QFile::exists(home.filePath(u"org.tolmerkvarn.eventtimer.socket"_s)), 10000);

        // A second start hands over to the first and ends.
        start(second, {}, home.path());
        QVERIFY(second.waitForFinished(10000));
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(first.state(), QProcess::Running);

        // A first program that crashed leaves its lock and socket: the next start takes over, and
        // runs on past the 3 s a start spends trying to hand over.
        ::kill(static_cast<pid_t>(first.processId()), SIGKILL);
        QVERIFY(first.waitForFinished(10000));
        start(third, {}, home.path());
        QVERIFY(!third.waitForFinished(5000));
        third.terminate();
        QVERIFY(third.waitForFinished(10000));
    }

    void showsItsLoadingReloadsAndDropsALoadWhenGone()
    {
        m_service.setBehaviour(m_document, {.delayMs = 300});
        QElapsedTimer gone;
        {
            TimetableWindow window(m_clock);
            window.show();
            QVERIFY(window.controller().statusMessage()->isVisible());
            QVERIFY(window.controller().statusMessage()->text().startsWith(
                u"Loading the events from 127.0.0.1"_s));
            QTRY_VERIFY(window.controller().isBuilt());
            const ViewController *first = &window.controller();

            // F5: downloaded again, though the copy is fresh; the new timetable takes the place.
            QTest::keyClick(&window.window(), Qt::Key_F5);
            QTRY_COMPARE(m_service.requestCount(m_document), 2);
            QTRY_VERIFY(&window.controller() != first && window.controller().isBuilt());
            QVERIFY(window.controller().view()->isVisible());

            m_service.setBehaviour(m_document, {.delayMs = 5000});
            window.reload();
            QTRY_COMPARE(m_service.requestCount(m_document), 3);
            gone.start();
        }
        // Gone with a load under way: it does not wait for the answer, and nothing calls back.
        QTest::qWait(100);
        QCOMPARE_LT(gone.elapsed(), 2000);
        m_service.clearBehaviours();
    }

    // The offscreen screen is 800 x 800.
    void opensWhereItWasClosedWithinTheScreen_data()
    {
        QTest::addColumn<QRect>("saved");
        QTest::addColumn<QRect>("opened");
        QTest::newRow("first start: as large as fits") << QRect() << QRect(0, 0, 800, 800);
        QTest::newRow("where it was") << QRect(100, 50, 650, 400) << QRect(100, 50, 650, 400);
        QTest::newRow("screen gone") << QRect(5000, 5000, 700, 400) << QRect(100, 400, 700, 400);
        QTest::newRow("too large") << QRect(-50, 20, 2000, 400) << QRect(0, 20, 800, 400);
        QTest::newRow("too small") << QRect(300, 300, 100, 100) << QRect(160, 300, 640, 360);
    }

    void opensWhereItWasClosedWithinTheScreen()
    {
        QFETCH(QRect, saved);
        QFETCH(QRect, opened);
        SettingsStore::openStandard()->setValue(settingskeys::windowGeometry.toString(), saved);
        TimetableWindow window(m_clock);
        QCOMPARE(window.window().geometry(), opened);

        window.window().setGeometry(120, 80, 660, 410);
        window.window().close();
        TimetableWindow next(m_clock);
        QCOMPARE(next.window().geometry(), QRect(120, 80, 660, 410));
    }

    // Started at 23:57 with A (due every hour) marked one minute ahead: the reminder of the new
    // day's 00:00 comes at 23:59, and at midnight a timetable of the new day takes the place.
    void remindsAcrossMidnightAndRollsOver()
    {
        ManualClock clock(QDateTime(QDate(2026, 11, 22), QTime(23, 57), QTimeZone::utc()),
                          QTimeZone::utc());
        TimetableWindow window(clock);
        window.reminders().setBus(QDBusConnection(u"none"_s));
        window.reminders().choices().assign({u"A"_s}, 1);
        QStringList heard;
        connect(&window.reminders().scheduler(), &ReminderScheduler::remind, this,
                [&](const Reminder &reminder) { heard.append(reminder.startText); });
        window.show();
        QTRY_VERIFY(window.controller().isBuilt());
        const ViewController *before = &window.controller();

        clock.advance(std::chrono::minutes(3));
        QCOMPARE(heard, QStringList{u"00:00"_s});
        QTRY_VERIFY(&window.controller() != before && window.controller().isBuilt());
        QFile suite(suitekeys::suitePath());
        QVERIFY(suite.open(QIODevice::ReadOnly) &&
                suite.readAll().contains("\"axis_day_start\": \"2026-11-23"));
        QCOMPARE(window.reminders().scheduler().next()->at, clock.now().addSecs(59 * 60));
    }

    void preferencesChangeTheChoicesAtOnce()
    {
        ReminderChoices choices;
        choices.assign({u"Tide"_s, u"Storm"_s}, 5);
        PreferencesDialog dialog(choices);
        QCOMPARE(dialog.leadMinutes()->value(), 5);
        dialog.markedEvents()->item(0)->setSelected(true);
        dialog.removeButton()->click();
        QCOMPARE(choices.marked(), QStringList{u"Tide"_s});
        QCOMPARE(dialog.markedEvents()->item(0)->text(), u"Tide"_s);
        dialog.leadMinutes()->setValue(61);
        QCOMPARE(choices.leadMinutes(), 60);
    }
};

QTEST_MAIN(TestEventTimer)
#include "tst_eventtimer.moc"
