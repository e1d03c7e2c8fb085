#include "model/expansion.h"
#include "model/scheduleday.h"
#include "model/section.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

const QTimeZone utc = QTimeZone::utc();

struct Schedule
{
    QString partial; // entries as "d:r d:r", or JSON when it starts with "["
    QString pattern;
    QString expected; // "E1@00:00/30 E2@00:30/60": event, local start, minutes; or the error
    QDateTime now = QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc());
    QTimeZone zone = QTimeZone::utc();
    qint64 skipped = 0;
};

QJsonArray entries(const QString &text)
{
    if (text.startsWith(u'['))
        return QJsonDocument::fromJson(text.toUtf8()).array();
    QJsonArray array;
    for (const QString &entry : text.split(u' ', Qt::SkipEmptyParts))
        array.append(QJsonObject{{u"d"_s, entry.section(u':', 0, 0).toLongLong()},
                                 {u"r"_s, entry.section(u':', 1, 1).toLongLong()}});
    return array;
}

QString expand(const Schedule &schedule, Section &section)
{
    for (int i = 0; i < 3; ++i)
        section.events.append(std::make_shared<Event>(Event{.name = u"E"_s + QString::number(i)}));
    const Status status = expandSchedule(section, schedule.skipped, entries(schedule.partial),
                                         entries(schedule.pattern),
                                         ScheduleDay::containing(schedule.now, schedule.zone));
    if (!status)
        return status.error();
    QStringList parts;
    for (const auto &item : section.sequence)
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
    void schedules_data()
    {
        QTest::addColumn<Schedule>("schedule");
        const auto row = [](const char *name, const Schedule &schedule) {
            QTest::newRow(name) << schedule;
        };
        row("empty partial", {u""_s, u"720:0 720:1"_s, u"E0@00:00/720 E1@12:00/720"_s});
        row("an entry at 23:59 is added, one at the day's end is not",
            {u"1439:-1 1:0 60:1"_s, u"60:0"_s, u"E0@23:59/1"_s});
        row("numbered from 1: r = 0 is a pause",
            {u"60:0"_s, u"660:1 720:0"_s, u"E0@01:00/660"_s, {}, utc, 1});
        row("a pause moves later entries on",
            {u"90:-1 30:0"_s, u"1320:1"_s, u"E0@01:30/30 E1@02:00/1320"_s});
        row("partial longer than the day: the rest is not read",
            {uR"([{"d": 1000, "r": 0}, {"d": 1000, "r": 1}, "broken", {"d": 1.5}])"_s,
             uR"([{"r": 99}])"_s, u"E0@00:00/1000 E1@16:40/1000"_s});
        row("the day is tested before each pass only",
            {u"1380:-1"_s, u"30:0 30:1 30:0"_s, u"E0@23:00/30 E1@23:30/30"_s});
        // 23:30 UTC is already the next day at UTC+2. Berlin's clocks go forward on 2026-03-29,
        // and that day fills 86400 s all the same.
        row("UTC+2, from its own midnight",
            {u""_s, u"720:0 720:1"_s, u"E0@00:00/720 E1@12:00/720"_s,
             QDateTime(QDate(2026, 11, 22), QTime(23, 30), utc), QTimeZone(7200)});
        row("a 23-hour day runs into the next",
            {u""_s, u"720:0 720:1"_s, u"E0@00:00/720 E1@13:00/720"_s,
             QDateTime(QDate(2026, 3, 29), QTime(12, 0), utc), QTimeZone("Europe/Berlin")});

        row("an entry that is no object",
            {u"[[60, 0]]"_s, u"60:0"_s, u"\"partial\" entry 1: not an object (found an array)"_s});
        row("d fractional", {u""_s, uR"([{"d": 60, "r": 0}, {"d": 30.5, "r": 0}])"_s,
                             u"\"pattern\" entry 2: \"d\" is not an integer (found 30.5)"_s});
        row("d times 60 overflows",
            {u"9223372036854775807:-1"_s, u"60:0"_s,
             u"\"partial\" entry 1: \"d\" = 9223372036854775807 minutes is beyond the 64-bit "
             u"integer range in seconds"_s});
        row("r beyond the events", {u""_s, u"60:3"_s,
                                    u"\"pattern\" entry 1: \"r\" = 3 points past the section's "
                                    u"events (3 events, 0 skipped segment keys)"_s});
        row("empty pattern", {u"60:0"_s, u""_s, u"\"pattern\" is empty, so the day never fills"_s});
        row("a pattern moving backwards",
            {u""_s, u"30:-1 -45:-1"_s,
             u"one pass over \"pattern\" moves time by -15 minutes, so the day never fills"_s});
        row("an occurrence before the day",
            {u"-10:-1 20:0"_s, u"60:0"_s,
             u"\"partial\" entry 2: the occurrence would start before the day begins (negative "
             u"\"d\" before it)"_s});
        row("endless zero-minute occurrences",
            {u""_s, u"0:0 "_s.repeated(1000) + u"1:0"_s,
             u"the schedule needs more than 100000 entries to fill the day"_s});
    }

    void schedules()
    {
        QFETCH(Schedule, schedule);
        Section section;
        QCOMPARE(expand(schedule, section), schedule.expected);
    }
};

QTEST_GUILESS_MAIN(TestExpansion)
#include "tst_expansion.moc"
