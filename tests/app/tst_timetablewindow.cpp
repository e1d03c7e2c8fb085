#include "app/preferencesdialog.h"
#include "app/timetablewindow.h"
#include "data/suiteformat.h"
#include "eventservice/eventservice.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

class TestTimetableWindow : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;
    EventService m_service;
    ManualClock m_clock{QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc()),
                        QTimeZone::utc()};

    int documentRequests() const
    {
        return m_service.requestCount(EventService::documentPath.toString());
    }

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
            qputenv(variable, m_home.filePath(QString::fromLatin1(variable)).toUtf8());
        QVERIFY(m_service.listen());
        m_service.setDocument(R"([{"category": "C", "name": "S", "segments": {"0": {"name": "A"}},
            "sequences": {"partial": [], "pattern": [{"d": 60, "r": 0}]}}])");
        QSettings settings(SettingsStore::openStandard()->fileName(), QSettings::IniFormat);
        settings.setValue(settingskeys::serviceUrl.toString(), m_service.baseUrl().toString());
    }

    void showsItsLoadingThenReloadsIntoANewTimetable()
    {
        m_service.setBehaviour(EventService::documentPath.toString(), {.delayMs = 300});
        TimetableWindow window(m_clock);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window.window()));
        QVERIFY(window.controller().statusMessage()->isVisible());
        QVERIFY(window.controller().statusMessage()->text().startsWith(
            u"Loading the events from 127.0.0.1"_s));
        QTRY_VERIFY(window.controller().isBuilt());
        const ViewController *first = &window.controller();

        // F5: downloaded again, though the copy is fresh; the new timetable takes the place.
        QTest::keyClick(&window.window(), Qt::Key_F5);
        QTRY_COMPARE(documentRequests(), 2);
        QTRY_VERIFY(&window.controller() != first && window.controller().isBuilt());
        QVERIFY(window.controller().view()->isVisible());
    }

    // The offscreen screen is 800 x 800.
    void opensWhereItWasClosedWithinTheScreen_data()
    {
        QTest::addColumn<QVariant>("saved");
        QTest::addColumn<QRect>("opened");
        QTest::newRow("first start: as large as fits") << QVariant() << QRect(0, 0, 800, 800);
        QTest::newRow("where it was")
            << QVariant(QRect(100, 50, 650, 400)) << QRect(100, 50, 650, 400);
        QTest::newRow("on a screen that is gone")
            << QVariant(QRect(5000, 5000, 700, 400)) << QRect(100, 400, 700, 400);
        QTest::newRow("larger than the screen")
            << QVariant(QRect(-50, 20, 2000, 400)) << QRect(0, 20, 800, 400);
        QTest::newRow("smaller than it can be")
            << QVariant(QRect(300, 300, 100, 100)) << QRect(160, 300, 640, 360);
    }

    void opensWhereItWasClosedWithinTheScreen()
    {
        QFETCH(QVariant, saved);
        QFETCH(QRect, opened);
        {
            QSettings settings(SettingsStore::openStandard()->fileName(), QSettings::IniFormat);
            settings.setValue(settingskeys::windowGeometry.toString(), saved);
        }
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
        m_service.clearBehaviours();
        ManualClock clock(QDateTime(QDate(2026, 11, 22), QTime(23, 57), QTimeZone::utc()),
                          QTimeZone::utc());
        TimetableWindow window(clock);
        window.reminders().setBus(QDBusConnection(u"none"_s));
        window.reminders().choices().assign({u"A"_s}, 1);
        QStringList heard;
        connect(&window.reminders().scheduler(), &ReminderScheduler::remind, this,
                [&](const Reminder &reminder) {
                    heard.append(clock.now().toString(u"HH:mm "_s) + reminder.summary() + u", "_s +
                                 reminder.body());
                });
        window.show();
        QTRY_VERIFY(window.controller().isBuilt());
        const ViewController *before = &window.controller();

        clock.advance(std::chrono::minutes(3));
        QCOMPARE(heard, QStringList{u"23:59 A in 1 min, S, 00:00"_s});
        QTRY_VERIFY(&window.controller() != before && window.controller().isBuilt());
        QFile suite(suitekeys::suitePath());
        QVERIFY(suite.open(QIODevice::ReadOnly));
        QVERIFY(suite.readAll().contains("\"axis_day_start\": \"2026-11-23"));
        QCOMPARE(window.reminders().scheduler().next()->at, clock.now().addSecs(59 * 60));
    }

    void preferencesChangeTheChoicesAtOnce()
    {
        ReminderChoices choices;
        choices.assign({u"Tide"_s, u"Storm"_s}, 5);
        PreferencesDialog dialog(choices);
        QCOMPARE(dialog.leadMinutes()->value(), 5);
        QCOMPARE(dialog.markedEvents()->count(), 2);
        QVERIFY(!dialog.removeButton()->isEnabled());
        dialog.markedEvents()->item(0)->setSelected(true);
        dialog.removeButton()->click();
        QCOMPARE(choices.marked(), QStringList{u"Tide"_s});
        QCOMPARE(dialog.markedEvents()->item(0)->text(), u"Tide"_s);
        dialog.leadMinutes()->setValue(61);
        QCOMPARE(choices.leadMinutes(), 60);
    }

    void aWindowGoneWhileLoadingDropsItAtOnce()
    {
        m_service.setBehaviour(EventService::documentPath.toString(), {.delayMs = 5000});
        QElapsedTimer elapsed;
        elapsed.start();
        {
            TimetableWindow window(m_clock);
            window.show();
            window.reload();
            QTRY_VERIFY(documentRequests() >= 3);
        }
        QTest::qWait(100); // nothing of it may call back
        QCOMPARE_LT(elapsed.elapsed(), 2000);
    }
};

QTEST_MAIN(TestTimetableWindow)
#include "tst_timetablewindow.moc"
