#include "model/scheduleday.h"
#include "testday.h"
#include "timetable/timetablelayout.h"

#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

namespace {

const QTimeZone utc = QTimeZone::utc();
const QDate day(2026, 11, 22);

// A section "category/name" of a day in a zone, its occurrences (of event A) given as start
// and length in minutes, pair by pair.
std::shared_ptr<Section> section(const QString &path, const QList<int> &pairs = {},
                                 const QTimeZone &zone = utc, QDate date = day)
{
    QList<Occurrence> occurrences;
    for (qsizetype i = 0; i + 1 < pairs.size(); i += 2)
        occurrences.append({u"A"_s, pairs.at(i), pairs.at(i + 1)});
    return makeSection(path.section(u'/', 0, 0), path.section(u'/', 1),
                       secondsSinceEpoch(date.startOfDay(zone)), occurrences);
}

// At noon of the date, with labels 17 high.
TimetableGeometry build(const SectionList &sections, const QTimeZone &zone = utc, QDate date = day,
                        const SectionList &following = {})
{
    return TimetableLayout::build(
        sections, zone, QDateTime(date, QTime(12, 0), zone), [](const QString &) { return 17.0; },
        following);
}

} // namespace

class TestTimetableLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void stacksCategoriesLabelsAndRows()
    {
        // Coast/Harbour, Peaks/Summit, Coast/Reef: Reef is shown with its category's first run.
        const TimetableGeometry geometry =
            build({section(u"Coast/Harbour"_s), section(u"Peaks/Summit"_s),
                   section(u"Coast/Reef"_s, {30, 60})});
        QCOMPARE(geometry.categoryBoxes.size(), 2);
        const CategoryBoxGeometry &coast = geometry.categoryBoxes.at(0);
        QCOMPARE(coast.title, u"Coast"_s);
        // Labels 59 and 116 from the top, the box closing 40 below the last; the next box opens
        // 7 below, its label 52 lower.
        QCOMPARE(coast.rect(300), QRectF(5, 7, 286, 166));
        QCOMPARE(geometry.sectionLabels.at(1).text, u"Reef"_s);
        QCOMPARE(geometry.categoryBoxes.at(1).rect(300), QRectF(5, 180, 286, 109));
        // The last box's bottom + 7.
        QCOMPARE(geometry.contentHeight, 296.0);
        // The second row's boxes start 25 below its top, 76.
        QCOMPARE(geometry.eventBoxes.at(0).rect, QRectF(300, 101, 597, 52));
        QCOMPARE(geometry.eventBoxes.at(0).row, 1);
    }

    void minutesOnATwentyThreeHourDay()
    {
        // Berlin's spring change: an occurrence counts the real minutes since its own local
        // midnight, so the one 23 hours after midnight stands at the next day's minute 0.
        const QTimeZone berlin("Europe/Berlin");
        const QDate change(2026, 3, 29);
        const TimetableGeometry geometry = build(
            {section(u"C/S"_s, {0, 120, 120, 1260, 1380, 60}, berlin, change)}, berlin, change);
        QList<qint64> minutes;
        for (const EventBoxGeometry &box : geometry.eventBoxes)
            minutes.append(box.minutes);
        QCOMPARE(minutes, (QList<qint64>{0, 120, 0}));
    }

    void widths_data()
    {
        QTest::addColumn<SectionList>("sections");
        QTest::addColumn<double>("contentWidth");
        QTest::addColumn<double>("axisWidth");

        QTest::newRow("the widest row")
            << SectionList{section(u"C/A"_s, {0, 1440}), section(u"C/B"_s, {0, 720}),
                           section(u"C/E"_s)}
            << 14400.0 << 14400.0;
        // The content counts durations only; the axis must reach the late box's end.
        QTest::newRow("a row that starts late")
            << SectionList{section(u"C/A"_s, {0, 60}), section(u"C/B"_s, {1200, 60})} << 600.0
            << 12600.0;
    }

    void widths()
    {
        QFETCH(SectionList, sections);
        const TimetableGeometry geometry = build(sections);
        QTEST(geometry.contentWidth, "contentWidth");
        QTEST(geometry.axisWidth(), "axisWidth");
    }

    // After the day's end, the next day's first six hours in the same rows; the day's own
    // boxes as they were.
    void continuesIntoTheNextDay_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<QList<int>>("today");
        QTest::addColumn<QList<int>>("following");
        QTest::addColumn<QList<double>>("lefts");

        QList<int> halfHours;
        for (int start = 0; start < 1440; start += 30)
            halfHours << start << 30;
        QTest::newRow("30-minute entries: six hours of them")
            << "UTC"_ba << day << halfHours << halfHours
            << QList<double>{14400, 14700, 15000, 15300, 15600, 15900,
                             16200, 16500, 16800, 17100, 17400, 17700};
        QTest::newRow("none under the day's last box, which runs on")
            << "UTC"_ba << day << QList<int>{0, 60, 1380, 120} << QList<int>{0, 60, 60, 30, 90, 30}
            << QList<double>{15000, 15300};
        QTest::newRow("UTC+2: from the next local midnight")
            << "UTC+02:00"_ba << day << QList<int>{0, 60} << QList<int>{0, 30, 30, 30}
            << QList<double>{14400, 14700};
        QTest::newRow("after a 25-hour day, from the next local midnight")
            << "Europe/Berlin"_ba << QDate(2026, 10, 25) << QList<int>{0, 60}
            << QList<int>{0, 30, 400, 30} << QList<double>{14400};
    }

    void continuesIntoTheNextDay()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDate, date);
        QFETCH(QList<int>, today);
        QFETCH(QList<int>, following);
        const QTimeZone timeZone(zone);
        const SectionList sections{section(u"C/S"_s, today, timeZone, date), section(u"C/Empty"_s)};
        const TimetableGeometry alone = build(sections, timeZone, date);
        const TimetableGeometry geometry = build(
            sections, timeZone, date, {section(u"C/S"_s, following, timeZone, date.addDays(1))});

        QCOMPARE(geometry.followingDate, date.addDays(1));
        QCOMPARE(geometry.axisWidth(), 18000.0); // six hours past the day's 14400
        const qsizetype own = alone.eventBoxes.size();
        QList<double> lefts;
        for (qsizetype i = 0; i < geometry.eventBoxes.size(); ++i) {
            const EventBoxGeometry &box = geometry.eventBoxes.at(i);
            QCOMPARE(box.tomorrow, i >= own);
            QCOMPARE(box.rect.top(), alone.eventBoxes.first().rect.top());
            if (i < own)
                QCOMPARE(box.rect, alone.eventBoxes.at(i).rect);
            else
                lefts.append(box.rect.left());
        }
        QTEST(lefts, "lefts");
    }

    void partsOfABox()
    {
        const QRectF box(100, 44, 447, 52);
        QCOMPARE(EventBoxGeometry::nameRect(box, 15), QRectF(105, 47, 437, 15));
        QCOMPARE(EventBoxGeometry::timeRect(box, 30, 15), QRectF(105, 78, 30, 15));
        QCOMPARE(EventBoxGeometry::copyButtonRect(box, QSizeF(20, 18)), QRectF(521, 72, 20, 18));
        // Scaled down to the box's height less its margins, never up; at the right, before the
        // copy button; none where it would reach over the time.
        QCOMPARE(EventBoxGeometry::iconRect(box, QSizeF(64, 64), true, 30),
                 QRectF(476, 49, 42, 42));
        QCOMPARE(EventBoxGeometry::iconRect(box, QSizeF(32, 16), false, 30),
                 QRectF(510, 62, 32, 16));
        QVERIFY(EventBoxGeometry::iconRect(QRectF(100, 44, 60, 52), QSizeF(64, 64), false, 30)
                    .isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestTimetableLayout)
#include "tst_timetablelayout.moc"
