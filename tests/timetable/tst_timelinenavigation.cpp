#include "smallday.h"
#include "timetable/timelinenavigation.h"

#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

namespace {

const QList<EventBoxGeometry> boxes =
    TimetableLayout::build(SmallDay::sections(), QTimeZone::utc(), SmallDay::now(),
                           [](const QString &) { return 17.0; })
        .eventBoxes;

} // namespace

class TestTimelineNavigation : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void keys_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("to");

        QTest::newRow("left") << u"Market 10:00"_s << QList<int>{Qt::Key_Left} << u"Tide 09:00"_s;
        QTest::newRow("left stops at the row's start")
            << u"Market 10:00"_s << QList<int>{Qt::Key_Left, Qt::Key_Left} << u"Tide 09:00"_s;
        QTest::newRow("right stops at the row's end")
            << u"Market 10:00"_s << QList<int>{Qt::Key_Right, Qt::Key_Right} << u"Storm 10:30"_s;
        QTest::newRow("home and end")
            << u"Watch 00:30"_s << QList<int>{Qt::Key_End, Qt::Key_Home} << u"Siege 00:00"_s;
        QTest::newRow("up at the first row stays")
            << u"Market 10:00"_s << QList<int>{Qt::Key_Up} << u"Market 10:00"_s;
        // Up and down go to the box spanning the middle of the current one, past empty rows.
        QTest::newRow("down") << u"Market 10:00"_s << QList<int>{Qt::Key_Down} << u"Night 10:00"_s;
        QTest::newRow("down from an earlier box")
            << u"Tide 09:00"_s << QList<int>{Qt::Key_Down} << u"Hunt 08:00"_s;
        QTest::newRow("down passes a row without boxes")
            << u"Night 10:00"_s << QList<int>{Qt::Key_Down} << u"Watch 00:30"_s;
        QTest::newRow("down at the last row stays")
            << u"Watch 00:30"_s << QList<int>{Qt::Key_Down} << u"Watch 00:30"_s;
        // Nothing spans the middle: the nearest box, after or before.
        QTest::newRow("up past the row's end")
            << u"Watch 12:30"_s << QList<int>{Qt::Key_Up} << u"Night 10:00"_s;
        QTest::newRow("up before the row's start")
            << u"Siege 00:00"_s << QList<int>{Qt::Key_Up} << u"Hunt 08:00"_s;
        QTest::newRow("a key that does not move")
            << u"Tide 09:00"_s << QList<int>{Qt::Key_A} << QString();
    }

    void keys()
    {
        QFETCH(QString, from);
        QFETCH(QList<int>, keys);
        QFETCH(QString, to);

        TimelineNavigation navigation;
        navigation.setBoxes(boxes);
        std::optional<qsizetype> current = boxNamed(boxes, from);
        for (const int key : keys)
            current = navigation.target(*current, key);
        QCOMPARE(current ? labelOf(boxes.at(*current)) : QString(), to);
    }

    void entry_data()
    {
        QTest::addColumn<double>("top");
        QTest::addColumn<double>("bottom");
        QTest::addColumn<QString>("box");

        // At 10:00 the marker stands where Market starts, and inside the first Watch.
        QTest::newRow("top of the timetable in view") << 0.0 << 200.0 << u"Market 10:00"_s;
        QTest::newRow("the last row in view") << 300.0 << 500.0 << u"Watch 00:30"_s;
        QTest::newRow("nothing in view: the first row") << 5000.0 << 5100.0 << u"Market 10:00"_s;
    }

    void entry()
    {
        QFETCH(double, top);
        QFETCH(double, bottom);
        QFETCH(QString, box);

        TimelineNavigation navigation;
        navigation.setBoxes(boxes);
        QCOMPARE(labelOf(boxes.at(*navigation.entryBox(top, bottom, 6000.0))), box);
        navigation.setBoxes({});
        QVERIFY(!navigation.entryBox(top, bottom, 6000.0));
    }
};

QTEST_GUILESS_MAIN(TestTimelineNavigation)
#include "tst_timelinenavigation.moc"
