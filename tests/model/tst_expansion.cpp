#include "expansion.h"
#include "scheduleday.h"
#include "section.h"
#include "sequencetime.h"

#include <QJsonDocument>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

QJsonArray array(const char *json)
{
    return QJsonDocument::fromJson(json).array();
}

std::shared_ptr<Section> sectionWithEvents(int count)
{
    auto section = std::make_shared<Section>();
    section->name = u"Harbour"_s;
    for (int i = 0; i < count; ++i) {
        auto event = std::make_shared<Event>();
        event->name = u"E"_s + QString::number(i);
        section->events.append(event);
    }
    return section;
}

// "E1@00:00/30 E2@00:30/60": event name, local start in the given zone, duration.
QString render(const Section &section, const QTimeZone &zone)
{
    QStringList parts;
    for (const auto &item : section.sequence)
        parts.append(item->event->name + u'@' +
                     dateTimeFromSeconds(item->time, zone).toString(u"HH:mm") + u'/' +
                     QString::number(item->duration));
    return parts.join(u' ');
}

const QTimeZone utc = QTimeZone::utc();
const QDateTime noon = QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc());

} // namespace

class TestExpansion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void workedExample();
    void schedules_data();
    void schedules();
    void dayStartsAtLocalMidnight_data();
    void dayStartsAtLocalMidnight();
    void daylightSavingDayIsFixedLength();
    void entriesAfterFullDayAreNotRead();
    void occurrencesShareTheirEvent();
    void invalidEntries_data();
    void invalidEntries();
    void minutesAndStartText_data();
    void minutesAndStartText();
};

void TestExpansion::workedExample()
{
    auto section = sectionWithEvents(3);
    const ScheduleDay day = ScheduleDay::containing(noon, utc);
    QVERIFY(expandSchedule(*section, 0, array(R"([{"d": 30, "r": 1}])"),
                           array(R"([{"d": 60, "r": 2}, {"d": 60, "r": 1}])"), day));

    QCOMPARE(section->sequence.size(), 25);
    const auto &first = section->sequence.first();
    QCOMPARE(first->event, section->events.at(1));
    QCOMPARE(first->duration, 30);
    QCOMPARE(first->time, day.start());
    QCOMPARE(section->sequence.at(1)->event->name, u"E2"_s);
    QCOMPARE(section->sequence.at(1)->time, day.start() + 30 * 60);
    const auto &last = section->sequence.last();
    QCOMPARE(last->event->name, u"E1"_s);
    QCOMPARE(last->time, day.start() + (23 * 60 + 30) * 60);
    QCOMPARE(section->sequence.at(23)->event->name, u"E2"_s);
    QCOMPARE(section->sequence.at(23)->time, day.start() + (22 * 60 + 30) * 60);
}

void TestExpansion::schedules_data()
{
    QTest::addColumn<qint64>("skipped");
    QTest::addColumn<QString>("partial");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");

    QTest::newRow("empty partial starts the pattern at midnight")
        << qint64{0} << u"[]"_s << u"[{\"d\": 720, \"r\": 0}, {\"d\": 720, \"r\": 1}]"_s
        << u"E0@00:00/720 E1@12:00/720"_s;
    QTest::newRow("numbered from 1: r minus one is the position")
        << qint64{1} << u"[]"_s << u"[{\"d\": 720, \"r\": 1}, {\"d\": 720, \"r\": 2}]"_s
        << u"E0@00:00/720 E1@12:00/720"_s;
    QTest::newRow("numbered from 1: r = 0 is a pause")
        << qint64{1} << u"[{\"d\": 60, \"r\": 0}]"_s
        << u"[{\"d\": 660, \"r\": 1}, {\"d\": 720, \"r\": 0}]"_s << u"E0@01:00/660"_s;
    QTest::newRow("pause moves later entries on")
        << qint64{0} << u"[{\"d\": 90, \"r\": -1}, {\"d\": 30, \"r\": 0}]"_s
        << u"[{\"d\": 1320, \"r\": 1}]"_s << u"E0@01:30/30 E1@02:00/1320"_s;
    QTest::newRow("partial longer than the day: no pattern pass")
        << qint64{0}
        << u"[{\"d\": 1000, \"r\": 0}, {\"d\": 1000, \"r\": 1}, {\"d\": 5, \"r\": 0}]"_s
        << u"[{\"d\": 5, \"r\": 1}]"_s << u"E0@00:00/1000 E1@16:40/1000"_s;
    QTest::newRow("entry starting at 23:59 is added")
        << qint64{0} << u"[{\"d\": 1439, \"r\": -1}, {\"d\": 60, \"r\": 0}]"_s
        << u"[{\"d\": 60, \"r\": 1}]"_s << u"E0@23:59/60"_s;
    QTest::newRow("entry starting exactly at the day's end is not")
        << qint64{0} << u"[{\"d\": 1440, \"r\": 0}, {\"d\": 60, \"r\": 1}]"_s
        << u"[{\"d\": 60, \"r\": 1}]"_s << u"E0@00:00/1440"_s;
    QTest::newRow("test before each pass, not within it")
        << qint64{0} << u"[{\"d\": 1380, \"r\": -1}]"_s
        << u"[{\"d\": 30, \"r\": 0}, {\"d\": 30, \"r\": 1}, {\"d\": 30, \"r\": 0}]"_s
        << u"E0@23:00/30 E1@23:30/30"_s;
    QTest::newRow("zero-minute entries inside a moving pattern")
        << qint64{0} << u"[]"_s << u"[{\"d\": 0, \"r\": 1}, {\"d\": 720, \"r\": 0}]"_s
        << u"E1@00:00/0 E0@00:00/720 E1@12:00/0 E0@12:00/720"_s;
}

void TestExpansion::schedules()
{
    QFETCH(qint64, skipped);
    QFETCH(QString, partial);
    QFETCH(QString, pattern);
    QFETCH(QString, expected);

    auto section = sectionWithEvents(2);
    const Status status =
        expandSchedule(*section, skipped, array(partial.toUtf8()), array(pattern.toUtf8()),
                       ScheduleDay::containing(noon, utc));
    QVERIFY2(status, qPrintable(status.error()));
    QCOMPARE(render(*section, utc), expected);
}

void TestExpansion::dayStartsAtLocalMidnight_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QTimeZone>("zone");
    QTest::addColumn<QDateTime>("midnight");

    const QTimeZone plusTwo(2 * 3600);
    const QTimeZone minusFive(-5 * 3600);
    // 23:30 UTC is already the next day at UTC+2; 03:00 UTC is still the day before at UTC−5.
    QTest::newRow("UTC") << QDateTime(QDate(2026, 11, 22), QTime(23, 30), utc) << utc
                         << QDateTime(QDate(2026, 11, 22), QTime(0, 0), utc);
    QTest::newRow("UTC+2") << QDateTime(QDate(2026, 11, 22), QTime(23, 30), utc) << plusTwo
                           << QDateTime(QDate(2026, 11, 22), QTime(22, 0), utc);
    QTest::newRow("UTC-5") << QDateTime(QDate(2026, 11, 22), QTime(3, 0), utc) << minusFive
                           << QDateTime(QDate(2026, 11, 21), QTime(5, 0), utc);
}

void TestExpansion::dayStartsAtLocalMidnight()
{
    QFETCH(QDateTime, now);
    QFETCH(QTimeZone, zone);
    QFETCH(QDateTime, midnight);

    auto section = sectionWithEvents(1);
    const ScheduleDay day = ScheduleDay::containing(now, zone);
    QVERIFY(expandSchedule(*section, 0, {}, array(R"([{"d": 60, "r": 0}])"), day));
    QCOMPARE(section->sequence.size(), 24);
    QCOMPARE(section->sequence.first()->time, secondsSinceEpoch(midnight));
    QCOMPARE(section->sequence.last()->time, secondsSinceEpoch(midnight) + 23 * 3600);
    for (const auto &item : section->sequence) {
        QVERIFY(item->time >= day.start());
        QVERIFY(item->time < day.end());
    }
}

void TestExpansion::daylightSavingDayIsFixedLength()
{
    // Berlin moves its clocks forward on 2026-03-29: that day has 23 hours, but the schedule
    // still fills 86400 seconds, running into the next local day.
    const QTimeZone berlin("Europe/Berlin");
    QVERIFY(berlin.isValid());
    const QDateTime now(QDate(2026, 3, 29), QTime(12, 0), berlin);
    auto section = sectionWithEvents(1);
    const ScheduleDay day = ScheduleDay::containing(now, berlin);
    QVERIFY(expandSchedule(*section, 0, {}, array(R"([{"d": 60, "r": 0}])"), day));

    QCOMPARE(section->sequence.size(), 24);
    QCOMPARE(dateTimeFromSeconds(section->sequence.first()->time, berlin),
             QDateTime(QDate(2026, 3, 29), QTime(0, 0), berlin));
    QCOMPARE(dateTimeFromSeconds(section->sequence.last()->time, berlin),
             QDateTime(QDate(2026, 3, 30), QTime(0, 0), berlin));
}

void TestExpansion::entriesAfterFullDayAreNotRead()
{
    // The broken entries come after the day is full, in "partial" and in "pattern".
    auto section = sectionWithEvents(1);
    QVERIFY(expandSchedule(*section, 0, array(R"([{"d": 1440, "r": 0}, "broken", {"d": 1.5}])"),
                           array(R"([{"r": 99}])"), ScheduleDay::containing(noon, utc)));
    auto other = sectionWithEvents(1);
    QVERIFY(expandSchedule(*other, 0, array(R"([{"d": 600, "r": -1}])"),
                           array(R"([{"d": 1000, "r": 0}, {"d": "x", "r": 5}])"),
                           ScheduleDay::containing(noon, utc)));
    QCOMPARE(other->sequence.size(), 1);
}

void TestExpansion::occurrencesShareTheirEvent()
{
    auto section = sectionWithEvents(1);
    QVERIFY(expandSchedule(*section, 0, {}, array(R"([{"d": 720, "r": 0}])"),
                           ScheduleDay::containing(noon, utc)));
    QCOMPARE(section->sequence.size(), 2);
    section->events.first()->name = u"Renamed"_s;
    QCOMPARE(section->sequence.at(0)->event->name, u"Renamed"_s);
    QCOMPARE(section->sequence.at(1)->event.get(), section->events.first().get());
}

void TestExpansion::invalidEntries_data()
{
    QTest::addColumn<QString>("partial");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("reason");

    const QString fill = u"[{\"d\": 60, \"r\": 0}]"_s;
    QTest::newRow("entry not an object")
        << u"[[60, 0]]"_s << fill << u"\"partial\" entry 1: not an object (found an array)"_s;
    QTest::newRow("d missing") << u"[{\"r\": 0}]"_s << fill
                               << u"\"partial\" entry 1: \"d\" is missing"_s;
    QTest::newRow("r missing") << u"[{\"d\": 5}]"_s << fill
                               << u"\"partial\" entry 1: \"r\" is missing"_s;
    QTest::newRow("d fractional") << u"[]"_s
                                  << u"[{\"d\": 60, \"r\": 0}, {\"d\": 30.5, \"r\": 0}]"_s
                                  << u"\"pattern\" entry 2: \"d\" is not an integer (found 30.5)"_s;
    QTest::newRow("d a string") << u"[{\"d\": \"30\", \"r\": 0}]"_s << fill
                                << u"\"partial\" entry 1: \"d\" is not an integer (found \"30\")"_s;
    QTest::newRow("r null") << u"[{\"d\": 30, \"r\": null}]"_s << fill
                            << u"\"partial\" entry 1: \"r\" is not an integer (found null)"_s;
    QTest::newRow("d beyond 64 bits")
        << u"[{\"d\": 9223372036854775808, \"r\": 0}]"_s << fill
        << u"\"partial\" entry 1: \"d\" is out of the 64-bit integer range (found 9.2233720368547758e+18)"_s;
    QTest::newRow("d times 60 overflows")
        << u"[{\"d\": 9223372036854775807, \"r\": -1}]"_s << fill
        << u"\"partial\" entry 1: \"d\" = 9223372036854775807 minutes is beyond the 64-bit integer range in seconds"_s;
    QTest::newRow("r beyond the events")
        << u"[]"_s << u"[{\"d\": 60, \"r\": 2}]"_s
        << u"\"pattern\" entry 1: \"r\" = 2 points past the section's events (2 events, 0 skipped segment keys)"_s;
    QTest::newRow("empty pattern") << u"[{\"d\": 60, \"r\": 0}]"_s << u"[]"_s
                                   << u"\"pattern\" is empty, so the day never fills"_s;
    QTest::newRow("all-zero pattern")
        << u"[]"_s << u"[{\"d\": 0, \"r\": 0}, {\"d\": 0, \"r\": 1}]"_s
        << u"one pass over \"pattern\" moves time by 0 minutes, so the day never fills"_s;
    QTest::newRow("pattern moving backwards")
        << u"[]"_s << u"[{\"d\": 30, \"r\": -1}, {\"d\": -45, \"r\": -1}]"_s
        << u"one pass over \"pattern\" moves time by -15 minutes, so the day never fills"_s;
    QTest::newRow("occurrence before the day")
        << u"[{\"d\": -10, \"r\": -1}, {\"d\": 20, \"r\": 0}]"_s << fill
        << u"\"partial\" entry 2: the occurrence would start before the day begins (negative \"d\" before it)"_s;
    QTest::newRow("endless zero-minute occurrences")
        << u"[]"_s
        << u"["_s + (u"{\"d\": 0, \"r\": 0},"_s).repeated(1000) + u"{\"d\": 1, \"r\": 0}]"_s
        << u"the schedule needs more than 100000 entries to fill the day"_s;
}

void TestExpansion::invalidEntries()
{
    QFETCH(QString, partial);
    QFETCH(QString, pattern);
    QFETCH(QString, reason);

    auto section = sectionWithEvents(2);
    const Status status =
        expandSchedule(*section, 0, array(partial.toUtf8()), array(pattern.toUtf8()),
                       ScheduleDay::containing(noon, utc));
    QVERIFY(!status);
    QCOMPARE(status.error(), reason);
}

void TestExpansion::minutesAndStartText_data()
{
    QTest::addColumn<QTimeZone>("zone");
    QTest::addColumn<QTime>("localStart");
    QTest::addColumn<qint64>("minutes");
    QTest::addColumn<QString>("text");

    const QTimeZone plusTwo(2 * 3600);
    const QTimeZone minusFive(-5 * 3600);
    QTest::newRow("06:30 UTC") << utc << QTime(6, 30) << qint64{390} << u"06:30"_s;
    QTest::newRow("06:30:59 truncates")
        << utc << QTime(6, 30, 59, 999) << qint64{390} << u"06:30"_s;
    QTest::newRow("local midnight at UTC+2 reads 02:00")
        << plusTwo << QTime(0, 0) << qint64{0} << u"02:00"_s;
    QTest::newRow("local midnight at UTC-5 reads 19:00")
        << minusFive << QTime(0, 0) << qint64{0} << u"19:00"_s;
    QTest::newRow("23:59 at UTC+2") << plusTwo << QTime(23, 59) << qint64{1439} << u"01:59"_s;
}

void TestExpansion::minutesAndStartText()
{
    QFETCH(QTimeZone, zone);
    QFETCH(QTime, localStart);
    QFETCH(qint64, minutes);
    QFETCH(QString, text);

    const QDateTime start(QDate(2026, 11, 22), localStart, zone);
    const SequenceItem item(std::make_shared<Event>(), 30,
                            static_cast<double>(start.toMSecsSinceEpoch()) / 1000.0);
    QCOMPARE(minutesFromDayStart(item, zone), minutes);
    QCOMPARE(startTimeText(item, zone, noon), text);
}

QTEST_GUILESS_MAIN(TestExpansion)
#include "tst_expansion.moc"
