#include "manualclock.h"
#include "model/reminderplan.h"
#include "model/reminderscheduler.h"
#include "model/scheduleday.h"
#include "testday.h"

#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QDate today(2026, 11, 22);

// Today's coast and the first minutes of tomorrow's, in zone.
QList<PlannedDay> coastDays(const QTimeZone &zone)
{
    const auto coast = [&](int day, const QList<Occurrence> &occurrences) {
        const QDate date = today.addDays(day);
        return PlannedDay{date,
                          {makeSection(u"C"_s, u"Coast"_s, secondsSinceEpoch(date.startOfDay(zone)),
                                       occurrences)}};
    };
    return {coast(0, {{u"Tide"_s, 540, 15},
                      {u"Storm"_s, 630, 30},
                      {u"Market"_s, 690, 30},
                      {u"Night"_s, 1380, 120}}),
            coast(1, {{u"Night"_s, 0, 60}, {u"Tide"_s, 62, 15}})};
}

} // namespace

class TestReminders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A reminder falls lead minutes before its box's time, tomorrow's too.
    void plansEachMarkedOccurrence_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<int>("lead");
        QTest::addColumn<QStringList>("marked");
        QTest::addColumn<QStringList>("planned");
        QTest::newRow("lead 60") << "UTC"_ba << 60 << QStringList{u"Tide"_s, u"Storm"_s}
                                 << QStringList{u"22 08:00 Tide 09:00"_s, u"22 09:30 Storm 10:30"_s,
                                                u"23 00:02 Tide 01:02"_s};
        QTest::newRow("running on past midnight: reminded of once")
            << "UTC"_ba << 5 << QStringList{u"Night"_s} << QStringList{u"22 22:55 Night 23:00"_s};
        QTest::newRow("the box's time an hour later, as Berlin shows it")
            << "Europe/Berlin"_ba << 5 << QStringList{u"Tide"_s, u"Night"_s}
            << QStringList{u"21 23:55 Night 00:00"_s, u"22 09:55 Tide 10:00"_s,
                           u"23 01:57 Tide 02:02"_s};
    }

    void plansEachMarkedOccurrence()
    {
        QFETCH(QByteArray, zone);
        QFETCH(int, lead);
        QFETCH(QStringList, marked);
        QFETCH(QStringList, planned);
        const QTimeZone timeZone(zone);
        QStringList got;
        for (const Reminder &reminder :
             planReminders(coastDays(timeZone), QSet<QString>(marked.cbegin(), marked.cend()), lead,
                           timeZone, today.startOfDay(timeZone).addSecs(43200)))
            got.append(reminder.at.toTimeZone(timeZone).toString(u"dd HH:mm ") +
                       reminder.event->name + u' ' + reminder.startText);
        QCOMPARE(got, planned);
    }

    // What is heard, and when, with the minute's check the window makes: nothing late, nothing
    // twice, whatever the wall clock does.
    void announcesAtTheMomentAndNeverLate_data()
    {
        QTest::addColumn<QTime>("start");
        QTest::addColumn<int>("planAfterSeconds");
        QTest::addColumn<int>("jumpAfterMinutes");
        QTest::addColumn<int>("jumpMinutes");
        QTest::addColumn<QStringList>("heard");
        const QStringList all{u"08:55 Tide in 5 min"_s, u"10:25 Storm in 5 min"_s,
                              u"11:25 Market in 5 min"_s};
        QTest::newRow("at their moments") << QTime(8, 0) << 0 << 0 << 0 << all;
        QTest::newRow("started after a moment: let go")
            << QTime(8, 56) << 0 << 0 << 0 << all.mid(1);
        QTest::newRow("a moment passes while the first plan is made: heard when it comes")
            << QTime(8, 54, 30) << 70 << 0 << 0 << all;
        QTest::newRow("clock jumps 3 hours forward: what it skips is let go")
            << QTime(8, 0) << 0 << 10 << 180 << all.mid(2);
        QTest::newRow("clock set back an hour: nothing twice")
            << QTime(8, 50) << 0 << 20 << -60 << all;
    }

    void announcesAtTheMomentAndNeverLate()
    {
        QFETCH(QTime, start);
        QFETCH(int, planAfterSeconds);
        QFETCH(int, jumpAfterMinutes);
        QFETCH(int, jumpMinutes);
        QFETCH(QStringList, heard);
        const QTimeZone utc = QTimeZone::utc();
        ManualClock clock(QDateTime(today, start, utc), utc);
        ReminderScheduler scheduler(clock);
        QStringList got;
        connect(&scheduler, &ReminderScheduler::remind, this, [&](const Reminder &reminder) {
            got.append(clock.now().toString(u"HH:mm ") + reminder.summary());
        });
        clock.callEvery(60s, &scheduler, [&] { scheduler.check(); });
        clock.advance(std::chrono::seconds(planAfterSeconds));
        scheduler.setPlan(planReminders(coastDays(utc).mid(0, 1),
                                        {u"Tide"_s, u"Storm"_s, u"Market"_s}, 5, utc, clock.now()));
        clock.advance(std::chrono::minutes(jumpAfterMinutes));
        clock.setNow(clock.now().addSecs(60LL * jumpMinutes));
        clock.advance(5h);
        QCOMPARE(got, heard);
    }
};

QTEST_GUILESS_MAIN(TestReminders)
#include "tst_reminders.moc"
