#include "model/globalsequence.h"
#include "model/scheduleday.h"
#include "model/sequencetime.h"
#include "model/shownstart.h"
#include "testday.h"

#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

namespace {

const QTimeZone plusTwo(7200);
// Local midnight at UTC+2: keys count from the start of the local day.
const double dayStart =
    ScheduleDay::containing(QDateTime(QDate(2026, 11, 22), QTime(12, 0), plusTwo), plusTwo).start();

std::shared_ptr<Section> section(const QString &category, const QList<Occurrence> &occurrences)
{
    return makeSection(category, category + u"/S"_s, dayStart, occurrences);
}

} // namespace

class TestSequenceTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void minutesAndShownStart_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("now");
        QTest::addColumn<qint64>("minutes");
        QTest::addColumn<QTime>("shown");

        QTest::newRow("06:30:59.999 is still minute 390")
            << "UTC"_ba << u"2026-11-22T06:30:59.999Z"_s << u"2026-11-22T12:00:00Z"_s << qint64{390}
            << QTime(6, 30);
        // The zone's offset is added once more to a local time, as the boxes show it.
        QTest::newRow("local midnight at UTC+2 reads 02:00")
            << "UTC+02:00"_ba << u"2026-11-22T00:00:00+02:00"_s << u"2026-11-22T12:00:00Z"_s
            << qint64{0} << QTime(2, 0);
        QTest::newRow("local midnight at UTC-5 reads 19:00")
            << "UTC-05:00"_ba << u"2026-11-22T00:00:00-05:00"_s << u"2026-11-22T12:00:00Z"_s
            << qint64{0} << QTime(19, 0);
        // On Berlin's spring change day the offset is taken now, not at the occurrence: the same
        // midnight (CET, +1) reads 01:00 before the change and 03:00 after it (+2).
        QTest::newRow("change day, before the change")
            << "Europe/Berlin"_ba << u"2026-03-29T00:00:00+01:00"_s << u"2026-03-29T00:30:00Z"_s
            << qint64{0} << QTime(1, 0);
        QTest::newRow("change day, after the change")
            << "Europe/Berlin"_ba << u"2026-03-29T00:00:00+01:00"_s << u"2026-03-29T12:00:00Z"_s
            << qint64{0} << QTime(3, 0);
        QTest::newRow("change day: minutes count real time from midnight")
            << "Europe/Berlin"_ba << u"2026-03-29T12:00:00+02:00"_s << u"2026-03-29T12:00:00Z"_s
            << qint64{660} << QTime(14, 0);
        // The autumn change day seen at noon (+1): 02:00 summer time reads 02:00, as 01:00
        // summer time an hour before it does.
        QTest::newRow("autumn change day, 02:00 summer time")
            << "Europe/Berlin"_ba << u"2026-10-25T02:00:00+02:00"_s << u"2026-10-25T12:00:00Z"_s
            << qint64{120} << QTime(2, 0);
    }

    void minutesAndShownStart()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QString, start);
        QFETCH(QString, now);
        QFETCH(qint64, minutes);
        const QTimeZone timeZone(zone);
        const SequenceItem item(std::make_shared<Event>(), 30,
                                secondsSinceEpoch(QDateTime::fromString(start, Qt::ISODate)));
        QCOMPARE(minutesFromDayStart(item, timeZone), minutes);
        QCOMPARE(DayMinutes(timeZone).of(item), minutes);
        QTEST(shownStart(item.time, timeZone, QDateTime::fromString(now, Qt::ISODate)), "shown");
    }

    void chatLinkKeys_data()
    {
        QTest::addColumn<SectionList>("sections");
        QTest::addColumn<QStringList>("expected");

        // The sections' list order decides the keys, not the timetable's grouping by category.
        QTest::newRow("list order with a recurring category")
            << SectionList{section(u"X"_s, {{u"A"_s, 60, 30}}), section(u"Y"_s, {{u"B"_s, 60, 30}}),
                           section(u"X"_s, {{u"C"_s, 60, 30}})}
            << QStringList{u"3600 A"_s, u"3601 B"_s, u"3602 C"_s};
        QTest::newRow("00:00 and 23:59, a different last event keeps the first")
            << SectionList{section(u"X"_s, {{u"A"_s, 1439, 1}}),
                           section(u"Y"_s, {{u"B"_s, 0, 60}, {u"B"_s, 60, 60}, {u"C"_s, 120, 60}})}
            << QStringList{u"0 B"_s, u"3600 B"_s, u"7200 C"_s, u"86340 A"_s};
        // The wrap-around rule: a section that starts and ends with the same event in the day's
        // first minute publishes that run once.
        QTest::newRow("alone at 00:00 it is dropped, from 00:01 kept")
            << SectionList{section(u"X"_s, {{u"A"_s, 0, 1440}}),
                           section(u"Y"_s, {{u"D"_s, 1, 60}, {u"D"_s, 1380, 60}})}
            << QStringList{u"60 D"_s, u"82800 D"_s};
        QTest::newRow("occurrences without a chat link are not entered, nor first or last")
            << SectionList{section(
                   u"X"_s, {{u"N"_s, 0, 30, std::nullopt}, {u"A"_s, 30, 60}, {u"A"_s, 90, 60}})}
            << QStringList{u"1800 A"_s, u"5400 A"_s};
        // The day's first minute goes by key: after 59 events at 00:00, the wrap-around section's
        // first takes 59 and is dropped.
        QList<Occurrence> crowd;
        QStringList expected;
        for (int i = 0; i < 59; ++i) {
            crowd.append({u"F"_s + QString::number(i), 0, 0});
            expected.append(QString::number(i) + u" F"_s + QString::number(i));
        }
        QTest::newRow("59 at 00:00")
            << SectionList{section(u"Crowd"_s, crowd),
                           section(u"Wrap"_s, {{u"A"_s, 0, 1}, {u"B"_s, 1, 1}, {u"A"_s, 2, 1}})}
            << expected + QStringList{u"60 B"_s, u"120 A"_s};
    }

    void chatLinkKeys()
    {
        QFETCH(SectionList, sections);
        QFETCH(QStringList, expected);
        QStringList found; // "3600 A" per entry, in key order
        for (const auto &[key, event] : globalSequence(sections, plusTwo))
            found.append(QString::number(key) + u' ' + event->name);
        QCOMPARE(found, expected);
    }
};

QTEST_GUILESS_MAIN(TestSequenceTime)
#include "tst_sequencetime.moc"
