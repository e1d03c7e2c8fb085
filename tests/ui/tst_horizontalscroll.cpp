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

// One wheel event as a device reports it: phase, pixel delta, angle delta.
struct Wheel
{
    Qt::ScrollPhase phase;
    QPoint pixel;
    QPoint angle;
};

Wheel begin(QPoint pixel, QPoint angle = {})
{
    return {Qt::ScrollBegin, pixel, angle.isNull() ? pixel * 8 : angle};
}
const Wheel end{Qt::ScrollEnd, {}, {}};
const Wheel notch{Qt::NoScrollPhase, {}, {0, -120}}; // a plain wheel turned one notch down

// Delivers wheel events as QApplication does a device's: one the widget under the pointer
// ignores goes on to its parents, and the widget that takes a gesture's first event gets the
// rest of it, momentum included. (Qt does so for the window system's events only, which a
// test cannot make through public API, so the walk is written out here.) Returns the widget
// that took the event.
class Pointer
{
public:
    Pointer(QWidget *under, QPoint at)
        : m_under(under)
        , m_at(at)
    {}

    QWidget *send(const Wheel &wheel)
    {
        const bool starts = wheel.phase == Qt::NoScrollPhase || wheel.phase == Qt::ScrollBegin;
        if (!starts && m_locked)
            return deliver(m_locked, wheel) ? m_locked.data() : nullptr;
        m_locked = nullptr;
        for (QWidget *widget = m_under; widget && !widget->isWindow();
             widget = widget->parentWidget()) {
            if (deliver(widget, wheel)) {
                if (wheel.phase == Qt::ScrollBegin)
                    m_locked = widget;
                return widget;
            }
        }
        return nullptr;
    }

private:
    bool deliver(QWidget *widget, const Wheel &wheel)
    {
        const QPointF local = m_under->mapTo(widget, m_at);
        QWheelEvent event(local, widget->mapToGlobal(local), wheel.pixel, wheel.angle, Qt::NoButton,
                          Qt::NoModifier, wheel.phase, false);
        return QApplication::sendEvent(widget, &event) && event.isAccepted();
    }

    QWidget *m_under;
    QPoint m_at;
    QPointer<QWidget> m_locked;
};

} // namespace

class TestHorizontalScroll : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wheelsOverTheTimeline_data()
    {
        QTest::addColumn<QList<Wheel>>("wheels");
        QTest::addColumn<bool>("sideways"); // whether the day's area took the last one

        // A gesture's first event decides by the larger magnitude, pixels before angles; a tie
        // goes on to the timetable's area.
        QTest::newRow("(5,1)") << QList<Wheel>{begin({5, 1})} << true;
        QTest::newRow("a tie (3,3)") << QList<Wheel>{begin({3, 3})} << false;
        QTest::newRow("(-8,2)") << QList<Wheel>{begin({-8, 2})} << true;
        QTest::newRow("(0,0)") << QList<Wheel>{begin({0, 0})} << false;
        QTest::newRow("pixels before angles") << QList<Wheel>{begin({6, 1}, {0, 120})} << true;
        QTest::newRow("a tilted wheel: angles") << QList<Wheel>{begin({}, {120, 0})} << true;
        // The rest of the gesture follows its start, whatever its direction.
        QTest::newRow("a sideways gesture turning upright")
            << QList<Wheel>{begin({-6, 1}), {Qt::ScrollUpdate, {0, -30}, {0, -240}}} << true;
        QTest::newRow("an upright gesture turning sideways")
            << QList<Wheel>{begin({0, -6}), {Qt::ScrollUpdate, {30, -4}, {240, -32}}} << false;
        QTest::newRow("momentum of an upright gesture")
            << QList<Wheel>{begin({0, 4}), end, {Qt::ScrollMomentum, {9, 0}, {72, 0}}} << false;
        // Wheels without phases follow the latest gesture, sideways before any.
        QTest::newRow("a plain wheel first") << QList<Wheel>{notch} << true;
        QTest::newRow("a plain wheel after an upright gesture")
            << QList<Wheel>{begin({0, 4}), end, notch} << false;
        QTest::newRow("a plain wheel after a sideways one")
            << QList<Wheel>{begin({0, 4}), end, begin({4, 0}), end, notch} << true;
    }

    void wheelsOverTheTimeline()
    {
        QFETCH(QList<Wheel>, wheels);
        QFETCH(bool, sideways);
        // Short enough that the timetable scrolls up and down as well as the day sideways.
        SmallTimetable window(QSize(900, 180));
        QVERIFY(window.exposed());
        HorizontalScroll *day = window.controller().horizontalScroll();
        QVERIFY(day->currentScrollIsHorizontal());
        const int dayBefore = day->horizontalScrollBar()->value();

        // Over the face of a box in view, in the first row.
        const QRectF market = window.timeline().boxes().at(window.box(u"Market 10:00"_s)).rect;
        Pointer pointer(&window.timeline(), market.topLeft().toPoint() + QPoint(10, 10));
        QWidget *taker = nullptr;
        for (const Wheel &wheel : std::as_const(wheels))
            taker = pointer.send(wheel);
        QCOMPARE(taker == day->viewport(), sideways);
        QCOMPARE(day->currentScrollIsHorizontal(), sideways);
        // A notch down scrolls the day later.
        if (sideways && wheels.last().phase == Qt::NoScrollPhase)
            QCOMPARE_GT(day->horizontalScrollBar()->value(), dayBefore);
    }
};

QTEST_MAIN(TestHorizontalScroll)
#include "tst_horizontalscroll.moc"
