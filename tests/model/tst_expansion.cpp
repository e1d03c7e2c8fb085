#include "model/expansion.h"
#include "model/scheduleday.h"
#include "model/section.h"

#include <QJsonDocument>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

const QTimeZone utc = QTimeZone::utc();

struct Schedule
{
    QString partial;
    QString pattern;
    QString expected; // "E1@00:00/30 E2@00:30/60": event, local start, minutes; or the error
    qint64 skipped = 0;
    QDateTime now = QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc());
    QTimeZone zone = QTimeZone::utc();
};

QString expand(const Schedule &schedule, std::shared_ptr<Section> section = nullptr)
{
    if (!section) {
        section = std::make_shared<Section>();
        for (int i = 0; i < 3; ++i) {
            section->events.append(std::make_shared<Event>());
            section->events.last()->name = u"E"_s + QString::number(i);
        }
    }
    const Status status = expandSchedule(*section, schedule.skipped,
                                         QJsonDocument::fromJson(schedule.partial.toUtf8()).array(),
                                         QJsonDocument::fromJson(schedule.pattern.toUtf8()).array(),
                                         ScheduleDay::containing(schedule.now, schedule.zone));
    if (!status)
        return status.error();
    QStringList parts;
    for (const auto &item : section->sequence)
        parts.append(item->event->name + u'@' +
                     dateTimeFromSeconds(item->time, schedule.zone).toString(u"HH:mm") + u'/' +
                     QString::number(item->duration));
    return parts.join(u' ');
}

} // namespace

class TestExpansion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void workedExample();
    void schedules_data();
    void schedules();
};

void TestExpansion::workedExample()
{
    auto section = std::make_shared<Section>();
    for (int i = 0; i < 3; ++i)
        section->events.append(std::make_shared<Event>(Event{.name = u"E"_s + QString::number(i)}));
    const QString day = expand({.partial = u"[{\"d\": 30, \"r\": 1}]"_s,
                                .pattern = u"[{\"d\": 60, \"r\": 2}, {\"d\": 60, \"r\": 1}]"_s},
                               section);
    QCOMPARE(section->sequence.size(), 25);
    QVERIFY(day.startsWith(u"E1@00:00/30 E2@00:30/60 E1@01:30/60 E2@02:30/60"_s));
    QVERIFY(day.endsWith(u"E2@22:30/60 E1@23:30/60"_s));
    // Occurrences of one segment share its event.
    QCOMPARE(section->sequence.at(2)->event.get(), section->events.at(1).get());
}

void TestExpansion::schedules_data()
{
    QTest::addColumn<Schedule>("schedule");
    const QString halves = u"[{\"d\": 720, \"r\": 0}, {\"d\": 720, \"r\": 1}]"_s;
    const QString fill = u"[{\"d\": 60, \"r\": 0}]"_s;
    const auto row = [](const char *name, const Schedule &schedule) {
        QTest::newRow(name) << schedule;
    };

    row("empty partial: the pattern starts at midnight",
        {u"[]"_s, halves, u"E0@00:00/720 E1@12:00/720"_s});
    row("numbered from 1: r minus one is the position",
        {u"[]"_s, u"[{\"d\": 720, \"r\": 1}, {\"d\": 720, \"r\": 2}]"_s,
         u"E0@00:00/720 E1@12:00/720"_s, 1});
    row("numbered from 1: r = 0 is a pause",
        {u"[{\"d\": 60, \"r\": 0}]"_s, u"[{\"d\": 660, \"r\": 1}, {\"d\": 720, \"r\": 0}]"_s,
         u"E0@01:00/660"_s, 1});
    row("a pause moves later entries on",
        {u"[{\"d\": 90, \"r\": -1}, {\"d\": 30, \"r\": 0}]"_s, u"[{\"d\": 1320, \"r\": 1}]"_s,
         u"E0@01:30/30 E1@02:00/1320"_s});
    row("partial longer than the day: no pass, later entries not read",
        {u"[{\"d\": 1000, \"r\": 0}, {\"d\": 1000, \"r\": 1}, \"broken\", {\"d\": 1.5}]"_s,
         u"[{\"r\": 99}]"_s, u"E0@00:00/1000 E1@16:40/1000"_s});
    row("an entry at 23:59 is added",
        {u"[{\"d\": 1439, \"r\": -1}, {\"d\": 60, \"r\": 0}]"_s, fill, u"E0@23:59/60"_s});
    row("one exactly at the day's end is not",
        {u"[{\"d\": 1440, \"r\": 0}, {\"d\": 60, \"r\": 1}]"_s, fill, u"E0@00:00/1440"_s});
    row("the day is tested before each pass, not within it",
        {u"[{\"d\": 1380, \"r\": -1}]"_s,
         u"[{\"d\": 30, \"r\": 0}, {\"d\": 30, \"r\": 1}, {\"d\": 30, \"r\": 0}]"_s,
         u"E0@23:00/30 E1@23:30/30"_s});
    row("zero-minute entries inside a moving pattern",
        {u"[]"_s, u"[{\"d\": 0, \"r\": 1}, {\"d\": 720, \"r\": 0}]"_s,
         u"E1@00:00/0 E0@00:00/720 E1@12:00/0 E0@12:00/720"_s});
    // 23:30 UTC is the next day at UTC+2; 03:00 UTC still the day before at UTC-5. Berlin's
    // clocks go forward on 2026-03-29: that day fills 86400 s all the same.
    row("UTC+2, from its own midnight",
        {u"[]"_s, halves, u"E0@00:00/720 E1@12:00/720"_s, 0,
         QDateTime(QDate(2026, 11, 22), QTime(23, 30), utc), QTimeZone(7200)});
    row("UTC-5, from its own midnight",
        {u"[]"_s, halves, u"E0@00:00/720 E1@12:00/720"_s, 0,
         QDateTime(QDate(2026, 11, 22), QTime(3, 0), utc), QTimeZone(-18000)});
    row("a 23-hour day runs into the next",
        {u"[]"_s, halves, u"E0@00:00/720 E1@13:00/720"_s, 0,
         QDateTime(QDate(2026, 3, 29), QTime(12, 0), utc), QTimeZone("Europe/Berlin")});

    row("entry not an object",
        {u"[[60, 0]]"_s, fill, u"\"partial\" entry 1: not an object (found an array)"_s});
    row("r missing", {u"[{\"d\": 5}]"_s, fill, u"\"partial\" entry 1: \"r\" is missing"_s});
    row("d fractional", {u"[]"_s, u"[{\"d\": 60, \"r\": 0}, {\"d\": 30.5, \"r\": 0}]"_s,
                         u"\"pattern\" entry 2: \"d\" is not an integer (found 30.5)"_s});
    row("d a string", {u"[{\"d\": \"30\", \"r\": 0}]"_s, fill,
                       u"\"partial\" entry 1: \"d\" is not an integer (found \"30\")"_s});
    row("d beyond 64 bits",
        {u"[{\"d\": 9223372036854775808, \"r\": 0}]"_s, fill,
         u"\"partial\" entry 1: \"d\" is out of the 64-bit integer range (found "
         u"9.2233720368547758e+18)"_s});
    row("d times 60 overflows",
        {u"[{\"d\": 9223372036854775807, \"r\": -1}]"_s, fill,
         u"\"partial\" entry 1: \"d\" = 9223372036854775807 minutes is beyond the 64-bit integer "
         u"range in seconds"_s});
    row("r beyond the events",
        {u"[]"_s, u"[{\"d\": 60, \"r\": 3}]"_s,
         u"\"pattern\" entry 1: \"r\" = 3 points past the section's events (3 events, 0 skipped "
         u"segment keys)"_s});
    row("empty pattern", {fill, u"[]"_s, u"\"pattern\" is empty, so the day never fills"_s});
    row("a pattern moving backwards",
        {u"[]"_s, u"[{\"d\": 30, \"r\": -1}, {\"d\": -45, \"r\": -1}]"_s,
         u"one pass over \"pattern\" moves time by -15 minutes, so the day never fills"_s});
    row("an occurrence before the day",
        {u"[{\"d\": -10, \"r\": -1}, {\"d\": 20, \"r\": 0}]"_s, fill,
         u"\"partial\" entry 2: the occurrence would start before the day begins (negative \"d\" "
         u"before it)"_s});
    row("endless zero-minute occurrences",
        {u"[]"_s, u"["_s + (u"{\"d\": 0, \"r\": 0},"_s).repeated(1000) + u"{\"d\": 1, \"r\": 0}]"_s,
         u"the schedule needs more than 100000 entries to fill the day"_s});
}

void TestExpansion::schedules()
{
    QFETCH(Schedule, schedule);
    QCOMPARE(expand(schedule), schedule.expected);
}

QTEST_GUILESS_MAIN(TestExpansion)
#include "tst_expansion.moc"
