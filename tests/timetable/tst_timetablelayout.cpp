#include "model/scheduleday.h"
#include "testday.h"
#include "timetable/timetablelayout.h"

#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

namespace {

const QTimeZone utc = QTimeZone::utc();
const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0), utc);
const double dayStart = ScheduleDay::containing(noon, utc).start();
constexpr double h = 17.0;

std::shared_ptr<Section> section(const QString &category, const QString &name,
                                 const QList<Occurrence> &occurrences = {})
{
    return makeSection(category, name, dayStart, occurrences);
}

TimetableGeometry build(const SectionList &sections, const QTimeZone &zone = utc,
                        const QDateTime &now = noon)
{
    return TimetableLayout::build(sections, zone, now, [](const QString &) { return h; });
}

} // namespace

class TestTimetableLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void stacksCategoriesAndLabels()
    {
        // Coast/Harbour, Peaks/Summit, Coast/Reef: Reef is shown with its category's first run.
        const TimetableGeometry geometry =
            build({section(u"Coast"_s, u"Harbour"_s), section(u"Peaks"_s, u"Summit"_s),
                   section(u"Coast"_s, u"Reef"_s, {{u"A"_s, 0, 60}})});
        QCOMPARE(geometry.categoryBoxes.size(), 2);
        const CategoryBoxGeometry &coast = geometry.categoryBoxes.at(0);
        QCOMPARE(coast.title, u"Coast"_s);
        QCOMPARE(coast.rect(300), QRectF(5, 7, 300 - 14, 146 + 2 * h - 7 - 7));
        QCOMPARE(geometry.sectionLabels.at(0).top, 59.0);
        QCOMPARE(geometry.sectionLabels.at(1).text, u"Reef"_s);
        QCOMPARE(geometry.sectionLabels.at(1).top, 59 + h + 40);
        // The box closes 40 below its last label; the next opens 7 below, its label 52 lower.
        QCOMPARE(coast.bottom, geometry.sectionLabels.at(1).bottom() + 40);
        QCOMPARE(geometry.categoryBoxes.at(1).top, 146 + 2 * h);
        QCOMPARE(geometry.sectionLabels.at(2).top, 198 + 2 * h);
        QCOMPARE(geometry.categoryBoxes.at(1).bottom, 198 + 3 * h + 40);
        // 7 + 59 × categories + Σ (h + 40), which is the last box's bottom + 7.
        QCOMPARE(geometry.contentHeight, 7 + 59 * 2 + 3 * (h + 40));
        QCOMPARE(geometry.contentHeight, geometry.categoryBoxes.at(1).bottom + 7);
    }

    void eventBoxes()
    {
        // A second section's row: rowTop = 59 + h, so its boxes start 25 below that. At UTC+2.
        const QTimeZone plusTwo(7200);
        const double midnight = ScheduleDay::containing(noon, plusTwo).start();
        const TimetableGeometry geometry =
            build({section(u"Coast"_s, u"Harbour"_s),
                   makeSection(u"Coast"_s, u"Reef"_s, midnight,
                               {{u"Tide"_s, 6 * 60 + 30, 45}, {u"Ebb"_s, 1439, 60}})},
                  plusTwo);
        const EventBoxGeometry &tide = geometry.eventBoxes.at(0);
        QCOMPARE(tide.minutes, 390);
        QCOMPARE(tide.rect, QRectF(3900, 59 + h + 25, 447, h + 35));
        QCOMPARE(tide.row, 1);
        QCOMPARE(geometry.eventBoxes.at(1).rect.left(), 14390.0);
        // The zone's offset is added once more to the local start, as the boxes show it.
        QCOMPARE(tide.startText, u"08:30"_s);
    }

    void minutesOnATwentyThreeHourDay()
    {
        // Berlin's spring change: an occurrence counts the real minutes since its own local
        // midnight, so the one 23 hours after midnight stands at the next day's minute 0.
        const QTimeZone berlin("Europe/Berlin");
        const QDateTime now(QDate(2026, 3, 29), QTime(12, 0), berlin);
        const double midnight = ScheduleDay::containing(now, berlin).start();
        const TimetableGeometry geometry = TimetableLayout::build(
            {makeSection(u"C"_s, u"S"_s, midnight,
                         {{u"A"_s, 0, 120}, {u"B"_s, 120, 1260}, {u"C"_s, 1380, 60}})},
            berlin, now, [](const QString &) { return h; });
        QList<qint64> minutes;
        for (const EventBoxGeometry &box : geometry.eventBoxes)
            minutes.append(box.minutes);
        QCOMPARE(minutes, (QList<qint64>{0, 120, 0}));
        QCOMPARE(geometry.eventBoxes.at(1).startText, u"05:00"_s);
    }

    void widths_data()
    {
        QTest::addColumn<SectionList>("sections");
        QTest::addColumn<double>("contentWidth");
        QTest::addColumn<double>("axisWidth");

        QTest::newRow("the widest row")
            << SectionList{section(u"C"_s, u"A"_s, {{u"A"_s, 0, 1440}}),
                           section(u"C"_s, u"B"_s, {{u"B"_s, 0, 720}}), section(u"C"_s, u"E"_s)}
            << 14400.0 << 14400.0;
        // The content counts durations only; the axis must reach the late box's end.
        QTest::newRow("a row that starts late")
            << SectionList{section(u"C"_s, u"A"_s, {{u"A"_s, 0, 60}}),
                           section(u"C"_s, u"B"_s, {{u"B"_s, 1200, 60}})}
            << 600.0 << 12600.0;
        QTest::newRow("no sections") << SectionList() << 0.0 << 0.0;
    }

    void widths()
    {
        QFETCH(SectionList, sections);
        QFETCH(double, contentWidth);
        QFETCH(double, axisWidth);
        const TimetableGeometry geometry = build(sections);
        QCOMPARE(geometry.contentWidth, contentWidth);
        QCOMPARE(geometry.axisWidth(), axisWidth);
    }

    // After the day's end, the next day's first six hours in the same rows; the day's own
    // boxes as they were.
    void continuesIntoTheNextDay_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDate>("day");
        QTest::addColumn<QList<int>>("today"); // start and length in minutes, pair by pair
        QTest::addColumn<QList<int>>("following");
        QTest::addColumn<QList<double>>("lefts");
        QTest::addColumn<QString>("firstText");

        QList<int> halfHours;
        for (int start = 0; start < 1440; start += 30)
            halfHours << start << 30;
        QTest::newRow("30-minute entries: six hours of them")
            << "UTC"_ba << QDate(2026, 11, 22) << halfHours << halfHours
            << QList<double>{14400, 14700, 15000, 15300, 15600, 15900,
                             16200, 16500, 16800, 17100, 17400, 17700}
            << u"00:00"_s;
        QTest::newRow("none under the day's last box, which runs on")
            << "UTC"_ba << QDate(2026, 11, 22) << QList<int>{0, 60, 1380, 120}
            << QList<int>{0, 60, 60, 30, 90, 30} << QList<double>{15000, 15300} << u"01:00"_s;
        QTest::newRow("UTC+2: from the next local midnight, shown shifted")
            << "UTC+02:00"_ba << QDate(2026, 11, 22) << QList<int>{0, 60}
            << QList<int>{0, 30, 30, 30} << QList<double>{14400, 14700} << u"02:00"_s;
        QTest::newRow("after a 25-hour day, from the next local midnight")
            << "Europe/Berlin"_ba << QDate(2026, 10, 25) << QList<int>{0, 60}
            << QList<int>{0, 30, 400, 30} << QList<double>{14400} << u"01:00"_s;
    }

    void continuesIntoTheNextDay()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDate, day);
        QFETCH(QList<int>, today);
        QFETCH(QList<int>, following);
        QFETCH(QList<double>, lefts);
        QFETCH(QString, firstText);
        const QTimeZone timeZone(zone);
        const QDateTime now(day, QTime(12, 0), timeZone);
        const auto occurrences = [](const QList<int> &pairs) {
            QList<Occurrence> list;
            for (qsizetype i = 0; i + 1 < pairs.size(); i += 2)
                list.append({u"A"_s, pairs.at(i), pairs.at(i + 1)});
            return list;
        };
        const SectionList sections{makeSection(u"C"_s, u"S"_s,
                                               secondsSinceEpoch(day.startOfDay(timeZone)),
                                               occurrences(today)),
                                   section(u"C"_s, u"Empty"_s)};
        const SectionList next{makeSection(u"C"_s, u"S"_s,
                                           secondsSinceEpoch(day.addDays(1).startOfDay(timeZone)),
                                           occurrences(following))};
        const auto height = [](const QString &) {
            return h;
        };
        const TimetableGeometry alone = TimetableLayout::build(sections, timeZone, now, height);
        const TimetableGeometry geometry =
            TimetableLayout::build(sections, timeZone, now, height, next);

        QCOMPARE(geometry.followingDate, day.addDays(1));
        QCOMPARE(geometry.axisWidth(), std::max(18000.0, alone.axisWidth()));
        const qsizetype own = alone.eventBoxes.size();
        QList<double> got;
        for (qsizetype i = 0; i < geometry.eventBoxes.size(); ++i) {
            const EventBoxGeometry &box = geometry.eventBoxes.at(i);
            QCOMPARE(box.tomorrow, i >= own);
            if (i < own) {
                QCOMPARE(box.rect, alone.eventBoxes.at(i).rect);
                continue;
            }
            got.append(box.rect.left());
            QCOMPARE(box.rect.top(), alone.eventBoxes.first().rect.top());
        }
        QCOMPARE(got, lefts);
        QCOMPARE(geometry.eventBoxes.at(own).startText, firstText);
    }

    void partsOfABox()
    {
        const QRectF box(100, 44, 447, 52);
        QCOMPARE(EventBoxGeometry::nameRect(box, 15), QRectF(105, 47, 437, 15));
        QCOMPARE(EventBoxGeometry::timeRect(box, 30, 15), QRectF(105, 44 + 52 - 3 - 15, 30, 15));
        QCOMPARE(EventBoxGeometry::copyButtonRect(box, QSizeF(20, 18)),
                 QRectF(100 + 447 - 6 - 20, 44 + 52 - 6 - 18, 20, 18));
        // Scaled down to the box's height less its margins, never up; centred.
        QCOMPARE(EventBoxGeometry::iconRect(box, QSizeF(64, 64)),
                 QRectF(box.center().x() - 21, box.center().y() - 21, 42, 42));
        QCOMPARE(EventBoxGeometry::iconRect(box, QSizeF(32, 16)),
                 QRectF(box.center().x() - 16, box.center().y() - 8, 32, 16));
    }
};

QTEST_GUILESS_MAIN(TestTimetableLayout)
#include "tst_timetablelayout.moc"
