#include "scroll/horizontalscroll.h"
#include "smalltimetable.h"
#include "timelinewidget.h"
#include "viewcontroller.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QtTest/qtestspontaneevent.h>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

// One wheel event as a device reports it, at the centre of a widget.
struct Wheel
{
    Qt::ScrollPhase phase;
    QPoint pixel;
    QPoint angle;
};

// A sideways-scrolling area far wider than its view, and taller: the timeline of a window
// that is less than a row high.
class Area
{
public:
    Area()
    {
        m_scroll.resize(400, 100);
        auto *content = new QWidget;
        content->resize(4000, 300);
        m_scroll.setWidget(content);
        m_scroll.show();
        m_scroll.horizontalScrollBar()->setValue(2000);
    }

    HorizontalScroll &scroll() { return m_scroll; }
    int position() const { return m_scroll.horizontalScrollBar()->value(); }

    // Delivered to the view straight, as Qt does, and not passed on to any parent: the
    // answer says whether the area took the event or handed it on.
    bool send(const Wheel &wheel)
    {
        QWidget *viewport = m_scroll.viewport();
        const QPointF centre = QRectF(viewport->rect()).center();
        QWheelEvent event(centre, viewport->mapToGlobal(centre), wheel.pixel, wheel.angle,
                          Qt::NoButton, Qt::NoModifier, wheel.phase, false);
        QApplication::sendEvent(viewport, &event);
        return event.isAccepted();
    }

private:
    HorizontalScroll m_scroll;
};

// A wheel event as the window system delivers it: to the widget under the pointer, and on to
// its parents while each ignores it.
void deliver(QWidget *target, QPoint at, const Wheel &wheel)
{
    QWheelEvent event(at, target->mapToGlobal(at), wheel.pixel, wheel.angle, Qt::NoButton,
                      Qt::NoModifier, wheel.phase, false);
    // Marked as coming from the window system and handed to notify() directly, as QTest does
    // for keys: sendEvent() would mark it as synthetic, and Qt does not pass those on.
    QSpontaneKeyEvent::setSpontaneous(&event);
    QCoreApplication::instance()->notify(target, &event);
}

} // namespace

Q_DECLARE_METATYPE(Wheel)

class TestHorizontalScroll : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsHorizontal();
    void gestureDecidesAtItsStart_data();
    void gestureDecidesAtItsStart();
    void eventsWithoutPhaseFollowTheLatestGesture_data();
    void eventsWithoutPhaseFollowTheLatestGesture();
    void gesturesOverTheTimelineReachTheirArea_data();
    void gesturesOverTheTimelineReachTheirArea();
};

void TestHorizontalScroll::startsHorizontal()
{
    HorizontalScroll scroll;
    QVERIFY(scroll.currentScrollIsHorizontal());
}

void TestHorizontalScroll::gestureDecidesAtItsStart_data()
{
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<QPoint>("angle");
    QTest::addColumn<bool>("horizontal");

    // Touchpads give pixels and angles; pixels decide.
    QTest::newRow("mostly sideways (5,1)") << QPoint(5, 1) << QPoint(40, 8) << true;
    QTest::newRow("a tie (3,3) goes on") << QPoint(3, 3) << QPoint(24, 24) << false;
    QTest::newRow("leftwards (-8,2): magnitudes count") << QPoint(-8, 2) << QPoint(-64, 16) << true;
    QTest::newRow("no movement (0,0) goes on") << QPoint(0, 0) << QPoint(0, 0) << false;
    QTest::newRow("mostly upright (1,-6) goes on") << QPoint(1, -6) << QPoint(8, -48) << false;
    QTest::newRow("pixels win over angles") << QPoint(6, 1) << QPoint(0, 120) << true;
    // Wheels without pixels: the angles decide.
    QTest::newRow("tilted wheel (120,0)") << QPoint() << QPoint(120, 0) << true;
    QTest::newRow("wheel turned (0,-120) goes on") << QPoint() << QPoint(0, -120) << false;
}

void TestHorizontalScroll::gestureDecidesAtItsStart()
{
    QFETCH(QPoint, pixel);
    QFETCH(QPoint, angle);
    QFETCH(bool, horizontal);
    Area area;
    // The opposite decision stands from an earlier gesture.
    area.scroll().setCurrentScrollIsHorizontal(!horizontal);

    QCOMPARE(area.send({Qt::ScrollBegin, pixel, angle}), horizontal);
    QCOMPARE(area.scroll().currentScrollIsHorizontal(), horizontal);

    // Later events of the gesture follow the start, whatever their direction: an upright
    // (0,10) still scrolls a sideways gesture here, and anything of an upright one goes on.
    int before = area.position();
    QCOMPARE(area.send({Qt::ScrollUpdate, QPoint(0, 10), QPoint(0, 10)}), horizontal);
    QCOMPARE(area.position() != before, horizontal);
    before = area.position();
    QCOMPARE(area.send({Qt::ScrollUpdate, QPoint(30, 0), QPoint(240, 0)}), horizontal);
    QCOMPARE(area.position() != before, horizontal);
    QCOMPARE(area.scroll().currentScrollIsHorizontal(), horizontal);
    area.send({Qt::ScrollEnd, QPoint(), QPoint()});
    QCOMPARE(area.scroll().currentScrollIsHorizontal(), horizontal);
}

void TestHorizontalScroll::eventsWithoutPhaseFollowTheLatestGesture_data()
{
    QTest::addColumn<QList<Wheel>>("gesture");
    QTest::addColumn<bool>("horizontal");

    QTest::newRow("before any gesture") << QList<Wheel>{} << true;
    QTest::newRow("after an upright gesture")
        << QList<Wheel>{{Qt::ScrollBegin, QPoint(0, 4), QPoint(0, 32)},
                        {Qt::ScrollEnd, QPoint(), QPoint()}}
        << false;
    QTest::newRow("after a sideways gesture")
        << QList<Wheel>{{Qt::ScrollBegin, QPoint(0, 4), QPoint(0, 32)},
                        {Qt::ScrollEnd, QPoint(), QPoint()},
                        {Qt::ScrollBegin, QPoint(4, 0), QPoint(32, 0)},
                        {Qt::ScrollEnd, QPoint(), QPoint()}}
        << true;
    QTest::newRow("momentum of an upright gesture")
        << QList<Wheel>{{Qt::ScrollBegin, QPoint(0, 4), QPoint(0, 32)},
                        {Qt::ScrollEnd, QPoint(), QPoint()},
                        {Qt::ScrollMomentum, QPoint(9, 0), QPoint(72, 0)}}
        << false;
}

void TestHorizontalScroll::eventsWithoutPhaseFollowTheLatestGesture()
{
    QFETCH(QList<Wheel>, gesture);
    QFETCH(bool, horizontal);
    Area area;
    for (const Wheel &wheel : std::as_const(gesture))
        area.send(wheel);

    // A plain mouse wheel turned one notch down: later in the day when it scrolls here.
    const int before = area.position();
    QCOMPARE(area.send({Qt::NoScrollPhase, QPoint(), QPoint(0, -120)}), horizontal);
    QCOMPARE(area.scroll().currentScrollIsHorizontal(), horizontal);
    if (horizontal)
        QCOMPARE_GT(area.position(), before);
    else
        QCOMPARE(area.position(), before);
}

void TestHorizontalScroll::gesturesOverTheTimelineReachTheirArea_data()
{
    QTest::addColumn<QList<Wheel>>("wheels");
    QTest::addColumn<bool>("timetableMoves");
    QTest::addColumn<bool>("dayMoves");

    QTest::newRow("upright swipe")
        << QList<Wheel>{{Qt::ScrollBegin, QPoint(0, -6), QPoint(0, -48)},
                        {Qt::ScrollUpdate, QPoint(0, -30), QPoint(0, -240)},
                        {Qt::ScrollUpdate, QPoint(4, -30), QPoint(32, -240)},
                        {Qt::ScrollEnd, QPoint(), QPoint()}}
        << true << false;
    QTest::newRow("sideways swipe turning upright")
        << QList<Wheel>{{Qt::ScrollBegin, QPoint(-6, 1), QPoint(-48, 8)},
                        {Qt::ScrollUpdate, QPoint(-30, 0), QPoint(-240, 0)},
                        {Qt::ScrollUpdate, QPoint(0, -30), QPoint(0, -240)},
                        {Qt::ScrollEnd, QPoint(), QPoint()}}
        << false << true;
    QTest::newRow("plain wheel before any gesture")
        << QList<Wheel>{{Qt::NoScrollPhase, QPoint(), QPoint(0, -120)}} << false << true;
    QTest::newRow("plain wheel after an upright swipe")
        << QList<Wheel>{{Qt::ScrollBegin, QPoint(0, -6), QPoint(0, -48)},
                        {Qt::ScrollEnd, QPoint(), QPoint()},
                        {Qt::NoScrollPhase, QPoint(), QPoint(0, -120)}}
        << true << false;
}

void TestHorizontalScroll::gesturesOverTheTimelineReachTheirArea()
{
    QFETCH(QList<Wheel>, wheels);
    QFETCH(bool, timetableMoves);
    QFETCH(bool, dayMoves);

    // Short enough that the timetable scrolls up and down as well as the day sideways.
    SmallTimetable window(QSize(900, 180));
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    QScrollBar *timetable = window.controller().verticalScroll()->verticalScrollBar();
    QScrollBar *day = window.controller().horizontalScroll()->horizontalScrollBar();
    QCOMPARE_GT(timetable->maximum(), 0);
    const int timetableBefore = timetable->value();
    const int dayBefore = day->value();

    // Over the face of a box in view, in the first row.
    TimelineWidget &timeline = window.timeline();
    const QRectF market = timeline.boxes().at(window.box(u"Market 10:00"_s)).rect;
    const QPoint over(qRound(market.left() + 10), qRound(market.top() + 10));
    QVERIFY(timeline.visibleRegion().contains(over));
    for (const Wheel &wheel : std::as_const(wheels))
        deliver(&timeline, over, wheel);

    QCOMPARE(timetable->value() != timetableBefore, timetableMoves);
    QCOMPARE(day->value() != dayBefore, dayMoves);
}

QTEST_MAIN(TestHorizontalScroll)
#include "tst_horizontalscroll.moc"
