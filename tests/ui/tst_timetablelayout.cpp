#include "scheduleday.h"
#include "timebase.h"
#include "timetablelayout.h"

#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

const QTimeZone utc = QTimeZone::utc();
const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0), utc);
const double dayStart = ScheduleDay::containing(noon, utc).start();
constexpr double h = 17.0;

struct Occurrence
{
    QString event;
    int startMinute;
    qint64 duration;
    bool chatLink = true;
};

// A section whose events are made from the occurrences' names, one event per name.
std::shared_ptr<Section> section(const QString &category, const QString &name,
                                 const QList<Occurrence> &occurrences)
{
    auto made = std::make_shared<Section>();
    made->category = category;
    made->name = name;
    QHash<QString, std::shared_ptr<Event>> events;
    for (const Occurrence &occurrence : occurrences) {
        auto &event = events[occurrence.event];
        if (!event) {
            event = std::make_shared<Event>();
            event->name = occurrence.event;
            event->section = name;
            if (occurrence.chatLink)
                event->chatLink = u"[&"_s + occurrence.event + u"]"_s;
            made->events.append(event);
        }
        made->sequence.append(std::make_shared<SequenceItem>(
            event, occurrence.duration, dayStart + occurrence.startMinute * 60.0));
    }
    return made;
}

TimetableGeometry build(const SectionList &sections)
{
    return TimetableLayout::build(sections, utc, noon, [](const QString &) { return h; });
}

QList<qint64> keys(const GlobalSequence &sequence)
{
    QList<qint64> result;
    for (const auto &[key, event] : sequence)
        result.append(key);
    return result;
}

} // namespace

class TestTimetableLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stacksCategoriesAndLabels();
    void sectionWithoutOccurrences();
    void eventBoxGeometry();
    void registrationKeys_data();
    void registrationKeys();
    void wrapAround_data();
    void wrapAround();
    void contentWidthIsTheWidestRow();
    void axisReachesEveryBox();
    void nonConsecutiveCategoriesAreGrouped();
    void partsOfABox();
    void marker_data();
    void marker();
    void clockShowsLocalTime();
};

void TestTimetableLayout::stacksCategoriesAndLabels()
{
    // Two sections of one category, then one of another.
    TimetableLayout layout(utc, noon, [](const QString &) { return h; });
    LayoutCursor cursor;
    QCOMPARE(cursor.contentHeight, 7.0);

    layout.layoutSection(*section(u"Coast"_s, u"Harbour"_s, {}), cursor);
    const auto &first = layout.geometry();
    QCOMPARE(first.categoryBoxes.first().top, 7.0);
    QCOMPARE(first.categoryBoxes.first().rect(300).left(), 5.0);
    QCOMPARE(first.categoryBoxes.first().rect(300).width(), 300.0 - 14);
    QCOMPARE(first.sectionLabels.first().top, 59.0);
    QCOMPARE(cursor.contentHeight, 106 + h);

    layout.layoutSection(*section(u"Coast"_s, u"Reef"_s, {{u"A"_s, 0, 60}}), cursor);
    QCOMPARE(layout.geometry().sectionLabels.at(1).top, 59 + h + 40);
    // rowTop of the second row: 59 + h, so its boxes start 25 below that.
    QCOMPARE(layout.geometry().eventBoxes.first().rect.top(), 59 + h + 25);
    QCOMPARE(cursor.contentHeight, 146 + 2 * h);

    layout.layoutSection(*section(u"Peaks"_s, u"Summit"_s, {}), cursor);
    const auto &geometry = layout.geometry();
    QCOMPARE(geometry.categoryBoxes.at(0).bottom, geometry.sectionLabels.at(1).bottom() + 40);
    QCOMPARE(geometry.categoryBoxes.at(1).top, 146 + 2 * h);
    QCOMPARE(geometry.sectionLabels.at(2).top, 198 + 2 * h);

    layout.closeLastCategory(cursor);
    QCOMPARE(layout.geometry().categoryBoxes.at(1).bottom, 198 + 3 * h + 40);
    // The total: 7 + 59 × categories + Σ (h + 40).
    QCOMPARE(cursor.contentHeight, 7 + 59 * 2 + 3 * (h + 40));
    QCOMPARE(cursor.contentHeight, layout.geometry().categoryBoxes.at(1).bottom + 7);
}

void TestTimetableLayout::sectionWithoutOccurrences()
{
    const TimetableGeometry geometry =
        build({section(u"Coast"_s, u"Harbour"_s, {{u"A"_s, 0, 1440}}),
               section(u"Coast"_s, u"Quiet"_s, {})});
    QCOMPARE(geometry.sectionLabels.size(), 2);
    QCOMPARE(geometry.eventBoxes.size(), 1);
    QCOMPARE(geometry.contentWidth, 14400.0);
    QCOMPARE(geometry.contentHeight, 7 + 59 + 2 * (h + 40));
    QCOMPARE(keys(geometry.globalSequence), QList<qint64>{});
}

void TestTimetableLayout::eventBoxGeometry()
{
    const TimetableGeometry geometry =
        build({section(u"Coast"_s, u"Harbour"_s, {{u"Tide"_s, 6 * 60 + 30, 45}})});
    const EventBoxGeometry &box = geometry.eventBoxes.first();
    QCOMPARE(box.minutes, 390);
    QCOMPARE(box.rect, QRectF(3900, 19 + 25, 447, h + 35));
    QCOMPARE(box.startText, u"06:30"_s);
    QCOMPARE(geometry.contentWidth, 450.0);
    QCOMPARE(keys(geometry.globalSequence), QList<qint64>{23400});
}

void TestTimetableLayout::registrationKeys_data()
{
    QTest::addColumn<SectionList>("sections");
    QTest::addColumn<QList<qint64>>("expected");

    QTest::newRow("same minute in two sections")
        << SectionList{section(u"C"_s, u"S1"_s, {{u"A"_s, 60, 30}}),
                       section(u"C"_s, u"S2"_s, {{u"B"_s, 60, 30}}),
                       section(u"C"_s, u"S3"_s, {{u"D"_s, 60, 30}})}
        << QList<qint64>{3600, 3601, 3602};
    // 61 different events in one section all start at 00:00 (its first and last differ, so
    // the wrap-around rule keeps them); a later section's event at 00:01 then takes 61.
    QList<Occurrence> crowd;
    for (int i = 0; i < 61; ++i)
        crowd.append({u"E"_s + QString::number(i), 0, 0});
    QList<qint64> crowdedKeys;
    for (qint64 key = 0; key <= 61; ++key)
        crowdedKeys.append(key);
    QTest::newRow("raised keys run into the next minute")
        << SectionList{section(u"C"_s, u"Crowd"_s, crowd),
                       section(u"C"_s, u"Late"_s, {{u"L"_s, 1, 30}})}
        << crowdedKeys;
    QTest::newRow("no chat link: no registration")
        << SectionList{section(u"C"_s, u"S"_s, {{u"A"_s, 60, 30, false}, {u"B"_s, 90, 30}})}
        << QList<qint64>{5400};
}

void TestTimetableLayout::registrationKeys()
{
    QFETCH(SectionList, sections);
    QFETCH(QList<qint64>, expected);
    QCOMPARE(keys(build(sections).globalSequence), expected);
}

void TestTimetableLayout::wrapAround_data()
{
    QTest::addColumn<QList<Occurrence>>("occurrences");
    QTest::addColumn<QList<qint64>>("expected");

    QTest::newRow("same event first and last: first dropped")
        << QList<Occurrence>{{u"A"_s, 0, 480}, {u"B"_s, 480, 900}, {u"A"_s, 1380, 60}}
        << QList<qint64>{28800, 82800};
    QTest::newRow("different last event: kept") << QList<Occurrence>{{u"A"_s, 0, 480},
                                                                     {u"B"_s, 480, 900},
                                                                     {u"A"_s, 1380, 30},
                                                                     {u"B"_s, 1410, 30}}
                                                << QList<qint64>{0, 28800, 82800, 84600};
    QTest::newRow("only occurrence at 00:00 is dropped")
        << QList<Occurrence>{{u"A"_s, 0, 1440}} << QList<qint64>{};
    QTest::newRow("first after minute 0 is kept")
        << QList<Occurrence>{{u"A"_s, 1, 60}, {u"A"_s, 1380, 60}} << QList<qint64>{60, 82800};
    QTest::newRow("unregistered occurrences do not count")
        << QList<Occurrence>{{u"X"_s, 0, 30, false}, {u"A"_s, 30, 60}, {u"A"_s, 1380, 60, true}}
        << QList<qint64>{1800, 82800};
}

void TestTimetableLayout::wrapAround()
{
    QFETCH(QList<Occurrence>, occurrences);
    QFETCH(QList<qint64>, expected);
    QCOMPARE(keys(build({section(u"C"_s, u"S"_s, occurrences)}).globalSequence), expected);
}

void TestTimetableLayout::contentWidthIsTheWidestRow()
{
    // 59 events fill minute 0 up to key 58; the wrap-around section's first registration then
    // takes key 59, and is still dropped.
    QList<Occurrence> fillers;
    for (int i = 0; i < 59; ++i)
        fillers.append({u"F"_s + QString::number(i), 0, 0});
    const TimetableGeometry geometry = build(
        {section(u"C"_s, u"Fillers"_s, fillers),
         section(u"C"_s, u"Wrap"_s, {{u"A"_s, 0, 60}, {u"B"_s, 60, 1320}, {u"A"_s, 1380, 60}}),
         section(u"C"_s, u"Half"_s, {{u"H"_s, 0, 720, false}})});
    QCOMPARE(geometry.contentWidth, 14400.0);
    QCOMPARE(geometry.axisWidth(), 14400.0);
    QVERIFY(geometry.globalSequence.contains(58));
    QVERIFY(!geometry.globalSequence.contains(59));
    QCOMPARE(geometry.globalSequence.at(3600)->name, u"B"_s);
}

void TestTimetableLayout::axisReachesEveryBox()
{
    // Rows of 60 minutes each, one of them late in the day: the content width counts
    // durations only (600 points), but the axis must reach the late box's end.
    const TimetableGeometry geometry = build({section(u"C"_s, u"Early"_s, {{u"A"_s, 0, 60}}),
                                              section(u"C"_s, u"Late"_s, {{u"B"_s, 1200, 60}})});
    QCOMPARE(geometry.contentWidth, 600.0);
    QCOMPARE(geometry.axisWidth(), 12600.0);
}

void TestTimetableLayout::nonConsecutiveCategoriesAreGrouped()
{
    const SectionList sections{section(u"Coast"_s, u"A"_s, {}), section(u"Peaks"_s, u"B"_s, {}),
                               section(u"Coast"_s, u"C"_s, {}), section(u"Vale"_s, u"D"_s, {})};
    QStringList order;
    for (const auto &grouped : TimetableLayout::groupedByCategory(sections))
        order.append(grouped->name);
    QCOMPARE(order, (QStringList{u"A"_s, u"C"_s, u"B"_s, u"D"_s}));

    const TimetableGeometry geometry = build(sections);
    QCOMPARE(geometry.categoryBoxes.size(), 3);
    // Each box frames exactly its own labels.
    for (const SectionLabelGeometry &label : geometry.sectionLabels) {
        const CategoryBoxGeometry &box = geometry.categoryBoxes.at(label.categoryBox);
        QVERIFY(label.top > box.top && label.bottom() < box.bottom);
    }
}

void TestTimetableLayout::partsOfABox()
{
    const QRectF box(100, 44, 447, 52);
    QCOMPARE(EventBoxGeometry::nameRect(box, 15), QRectF(105, 47, 437, 15));
    QCOMPARE(EventBoxGeometry::timeRect(box, 30, 15), QRectF(105, 44 + 52 - 3 - 15, 30, 15));
    QCOMPARE(EventBoxGeometry::copyButtonRect(box, QSizeF(20, 18)),
             QRectF(100 + 447 - 6 - 20, 44 + 52 - 6 - 18, 20, 18));
    // A 64 × 64 icon is scaled down to the box's height less its margins; a small one is not
    // scaled up. Both are centred.
    QCOMPARE(EventBoxGeometry::iconRect(box, QSizeF(64, 64)),
             QRectF(box.center().x() - 21, box.center().y() - 21, 42, 42));
    QCOMPARE(EventBoxGeometry::iconRect(box, QSizeF(32, 16)),
             QRectF(box.center().x() - 16, box.center().y() - 8, 32, 16));
}

void TestTimetableLayout::marker_data()
{
    QTest::addColumn<QTime>("utcTime");
    QTest::addColumn<double>("x");

    QTest::newRow("00:00:59") << QTime(0, 0, 59) << 0.0;
    QTest::newRow("23:59:30") << QTime(23, 59, 30) << 14390.0;
    QTest::newRow("12:34:59.9") << QTime(12, 34, 59, 900) << 7540.0;
}

void TestTimetableLayout::marker()
{
    QFETCH(QTime, utcTime);
    QFETCH(double, x);

    // The same instant seen from another zone stands at the same UTC minute.
    const QDateTime now(QDate(2026, 11, 22), utcTime, utc);
    QCOMPARE(timebase::markerX(now), x);
    QCOMPARE(timebase::markerX(now.toTimeZone(QTimeZone(-5 * 3600))), x);
    QCOMPARE(timebase::scrollTarget(x, 1200), x - 200);
}

void TestTimetableLayout::clockShowsLocalTime()
{
    // 10:15 local at UTC+2 is 08:15 UTC: the label and the marker disagree by the offset.
    const QTimeZone plusTwo(2 * 3600);
    const QDateTime now(QDate(2026, 11, 22), QTime(10, 15), plusTwo);
    QCOMPARE(timebase::clockText(now, plusTwo), u"10:15"_s);
    QCOMPARE(timebase::markerX(now), 4950.0);
    QCOMPARE(timebase::scrollTarget(0, 1200), -200.0);
}

QTEST_GUILESS_MAIN(TestTimetableLayout)
#include "tst_timetablelayout.moc"
