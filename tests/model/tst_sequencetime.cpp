#include "model/event.h"
#include "model/sequenceitem.h"
#include "model/sequencetime.h"

#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

class TestSequenceTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void minutesAndStartText_data()
    {
        QTest::addColumn<QTimeZone>("zone");
        QTest::addColumn<QDateTime>("start");
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<qint64>("minutes");
        QTest::addColumn<QString>("text");

        const QTimeZone utc = QTimeZone::utc();
        const QTimeZone plusTwo(7200);
        const QTimeZone berlin("Europe/Berlin");
        const QDate day(2026, 11, 22);
        const QDateTime noon(day, QTime(12, 0), utc);
        QTest::newRow("06:30") << utc << QDateTime(day, QTime(6, 30), utc) << noon << qint64{390}
                               << u"06:30"_s;
        QTest::newRow("06:30:59.999 is still minute 390")
            << utc << QDateTime(day, QTime(6, 30, 59, 999), utc) << noon << qint64{390}
            << u"06:30"_s;
        // The text adds the zone's offset once more to a local time, as the boxes show it.
        QTest::newRow("local midnight at UTC+2 reads 02:00")
            << plusTwo << QDateTime(day, QTime(0, 0), plusTwo) << noon << qint64{0} << u"02:00"_s;
        QTest::newRow("local midnight at UTC-5 reads 19:00")
            << QTimeZone(-18000) << QDateTime(day, QTime(0, 0), QTimeZone(-18000)) << noon
            << qint64{0} << u"19:00"_s;
        // On Berlin's spring change day the offset is taken now, not at the occurrence: the same
        // midnight (CET, +1) reads 01:00 before the change and 03:00 after it (+2).
        const QDateTime berlinMidnight(QDate(2026, 3, 29), QTime(0, 0), berlin);
        QTest::newRow("change day, before the change")
            << berlin << berlinMidnight << QDateTime(QDate(2026, 3, 29), QTime(0, 30), utc)
            << qint64{0} << u"01:00"_s;
        QTest::newRow("change day, after the change")
            << berlin << berlinMidnight << QDateTime(QDate(2026, 3, 29), QTime(12, 0), utc)
            << qint64{0} << u"03:00"_s;
        QTest::newRow("change day: minutes count real time from midnight")
            << berlin << QDateTime(QDate(2026, 3, 29), QTime(12, 0), berlin)
            << QDateTime(QDate(2026, 3, 29), QTime(12, 0), utc) << qint64{660} << u"14:00"_s;
    }

    void minutesAndStartText()
    {
        QFETCH(QTimeZone, zone);
        QFETCH(QDateTime, start);
        QFETCH(QDateTime, now);
        QFETCH(qint64, minutes);
        QFETCH(QString, text);

        const SequenceItem item(std::make_shared<Event>(), 30,
                                static_cast<double>(start.toMSecsSinceEpoch()) / 1000.0);
        QCOMPARE(minutesFromDayStart(item, zone), minutes);
        QCOMPARE(DayMinutes(zone).of(item), minutes);
        QCOMPARE(startTimeText(item, zone, now), text);
    }
};

QTEST_GUILESS_MAIN(TestSequenceTime)
#include "tst_sequencetime.moc"
