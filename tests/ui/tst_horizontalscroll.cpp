#include "smalltimetable.h"
#include "ui/scroll/horizontalscroll.h"

#include <QApplication>
#include <QPointer>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

// One wheel event as a device reports it.
struct Wheel
{
    Qt::ScrollPhase phase;
    QPoint pixel;
    QPoint angle;
};

// Delivers wheel events the way QApplication does those of a device: an event the widget
// under the pointer ignores goes on to its parents, and the widget that takes a gesture's
// first event gets the rest of it. (Qt does so only for events from the window system, which
// a test cannot make through public API, so the walk is written out here.)
class Pointer
{
public:
    explicit Pointer(QWidget *under, QPoint at)
        : m_under(under)
        , m_at(at)
    {}

    void send(const Wheel &wheel)
    {
        if (wheel.phase != Qt::NoScrollPhase && wheel.phase != Qt::ScrollBegin && m_locked) {
            deliver(m_locked, wheel);
            return;
        }
        m_locked = nullptr;
        for (QWidget *widget = m_under; widget; widget = widget->parentWidget()) {
            if (deliver(widget, wheel)) {
                if (wheel.phase == Qt::ScrollBegin)
                    m_locked = widget;
                return;
            }
            if (widget->isWindow())
                return;
        }
    }

private:
    bool deliver(QWidget *widget, const Wheel &wheel)
    {
        const QPointF local = m_under->mapTo(widget, m_at);
        QWheelEvent event(local, widget->mapToGlobal(local), wheel.pixel, wheel.angle, Qt::NoButton,
                          Qt::NoModifier, wheel.phase, false);
        // As Qt's walk does: taken when handled and left accepted.
        const bool handled = QApplication::sendEvent(widget, &event);
        return handled && event.isAccepted();
    }

    QWidget *m_under;
    QPoint m_at;
    QPointer<QWidget> m_locked;
};

// A sideways-scrolling area far wider than its view, scrolled to its middle.
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

    // Whether the area took the event or handed it on.
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

} // namespace

class TestHorizontalScroll : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gestureDecidesAtItsStart_data();
    void gestureDecidesAtItsStart();
    void eventsWithoutPhaseFollowTheLatestGesture_data();
    void eventsWithoutPhaseFollowTheLatestGesture();
    void gesturesOverTheTimelineReachTheirArea_data();
    void gesturesOverTheTimelineReachTheirArea();
};

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
    QVERIFY(area.scroll().currentScrollIsHorizontal());
    // The opposite decision stands from an earlier gesture.
    area.scroll().setCurrentScrollIsHorizontal(!horizontal);

    QCOMPARE(area.send({Qt::ScrollBegin, pixel, angle}), horizontal);
    QCOMPARE(area.scroll().currentScrollIsHorizontal(), horizontal);

    // Later events follow the start, whatever their direction: an upright (0,10) still
    // scrolls a sideways gesture here, and anything of an upright one goes on.
    for (const QPoint delta : {QPoint(0, 10), QPoint(30, 0)}) {
        const int before = area.position();
        QCOMPARE(area.send({Qt::ScrollUpdate, delta, delta * 8}), horizontal);
        QCOMPARE(area.position() != before, horizontal);
    }
    area.send({Qt::ScrollEnd, QPoint(), QPoint()});
    QCOMPARE(area.scroll().currentScrollIsHorizontal(), horizontal);
}

void TestHorizontalScroll::eventsWithoutPhaseFollowTheLatestGesture_data()
{
    QTest::addColumn<QList<Wheel>>("gesture");
    QTest::addColumn<bool>("horizontal");

    const Wheel upright{Qt::ScrollBegin, QPoint(0, 4), QPoint(0, 32)};
    const Wheel end{Qt::ScrollEnd, QPoint(), QPoint()};
    QTest::newRow("before any gesture") << QList<Wheel>{} << true;
    QTest::newRow("after an upright gesture") << QList<Wheel>{upright, end} << false;
    QTest::newRow("after a sideways gesture")
        << QList<Wheel>{upright, end, {Qt::ScrollBegin, QPoint(4, 0), QPoint(32, 0)}, end} << true;
    QTest::newRow("momentum of an upright gesture")
        << QList<Wheel>{upright, end, {Qt::ScrollMomentum, QPoint(9, 0), QPoint(72, 0)}} << false;
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
    QCOMPARE(area.position() > before, horizontal);
}

void TestHorizontalScroll::gesturesOverTheTimelineReachTheirArea_data()
{
    QTest::addColumn<QList<Wheel>>("wheels");
    QTest::addColumn<bool>("dayMoves");

    QTest::newRow("upright swipe")
        << QList<Wheel>{{Qt::ScrollBegin, QPoint(0, -6), QPoint(0, -48)},
                        {Qt::ScrollUpdate, QPoint(4, -30), QPoint(32, -240)},
                        {Qt::ScrollEnd, QPoint(), QPoint()}}
        << false;
    QTest::newRow("sideways swipe turning upright")
        << QList<Wheel>{{Qt::ScrollBegin, QPoint(-6, 1), QPoint(-48, 8)},
                        {Qt::ScrollUpdate, QPoint(0, -30), QPoint(0, -240)},
                        {Qt::ScrollEnd, QPoint(), QPoint()}}
        << true;
    QTest::newRow("plain wheel before any gesture")
        << QList<Wheel>{{Qt::NoScrollPhase, QPoint(), QPoint(0, -120)}} << true;
}

void TestHorizontalScroll::gesturesOverTheTimelineReachTheirArea()
{
    QFETCH(QList<Wheel>, wheels);
    QFETCH(bool, dayMoves);

    // Short enough that the timetable scrolls up and down as well as the day sideways.
    SmallTimetable window(QSize(900, 180));
    QVERIFY(window.exposed());
    QScrollBar *timetable = window.controller().verticalScroll()->verticalScrollBar();
    QScrollBar *day = window.controller().horizontalScroll()->horizontalScrollBar();
    QCOMPARE_GT(timetable->maximum(), 0);
    const int timetableBefore = timetable->value();
    const int dayBefore = day->value();

    // Over the face of a box in view, in the first row.
    const QRectF market = window.timeline().boxes().at(window.box(u"Market 10:00"_s)).rect;
    Pointer pointer(&window.timeline(), market.topLeft().toPoint() + QPoint(10, 10));
    for (const Wheel &wheel : std::as_const(wheels))
        pointer.send(wheel);

    QCOMPARE(timetable->value() != timetableBefore, !dayMoves);
    QCOMPARE(day->value() != dayBefore, dayMoves);
}

QTEST_MAIN(TestHorizontalScroll)
#include "tst_horizontalscroll.moc"
