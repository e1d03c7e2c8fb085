#include "smalltimetable.h"
#include "timelinewidget.h"
#include "viewcontroller.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

void press(QWidget *widget, const QList<int> &keys)
{
    for (const int key : keys)
        QTest::keyClick(widget, static_cast<Qt::Key>(key));
}

// The box's part that shows in a scroll area's view, in the view's coordinates.
QRect shownIn(const QScrollArea *area, const TimelineWidget &timeline, const QRectF &box)
{
    const QRect rect = box.toAlignedRect();
    return QRect(timeline.mapTo(area->viewport(), rect.topLeft()), rect.size()) &
           area->viewport()->rect();
}

} // namespace

class TestTimelineKeyboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void focusEntersNearThePresent_data();
    void focusEntersNearThePresent();
    void keysMoveTheFocus_data();
    void keysMoveTheFocus();
    void focusedBoxIsScrolledIntoView_data();
    void focusedBoxIsScrolledIntoView();
    void keysCopyTheLink_data();
    void keysCopyTheLink();
    void clickChoosesTheBox();
    void focusRingIsPaintedOnTheCurrentBoxOnly();
};

void TestTimelineKeyboard::focusEntersNearThePresent_data()
{
    QTest::addColumn<bool>("scrolledDown");
    QTest::addColumn<QString>("box");

    // 10:00: the marker stands at the start of Market in the first row, and inside the first
    // Watch in the last.
    QTest::newRow("top of the timetable") << false << u"Market 10:00"_s;
    QTest::newRow("scrolled to the last row") << true << u"Watch 00:30"_s;
}

void TestTimelineKeyboard::focusEntersNearThePresent()
{
    QFETCH(bool, scrolledDown);
    QFETCH(QString, box);
    SmallTimetable window(QSize(1000, 200));
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    QScrollArea *timetable = window.controller().verticalScroll();
    if (scrolledDown)
        timetable->verticalScrollBar()->setValue(timetable->verticalScrollBar()->maximum());
    const int timetableBefore = timetable->verticalScrollBar()->value();
    const int dayBefore = window.controller().horizontalScroll()->horizontalScrollBar()->value();
    QVERIFY(!window.timeline().currentBox());

    // Tab from the timetable's area: the horizontal area is no stop of its own.
    timetable->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(timetable, Qt::Key_Tab);
    QVERIFY(window.timeline().hasFocus());
    QVERIFY(window.timeline().currentBox());
    QCOMPARE(window.label(*window.timeline().currentBox()), box);
    // The chosen box is in view already: nothing jumps.
    QCOMPARE(timetable->verticalScrollBar()->value(), timetableBefore);
    QCOMPARE(window.controller().horizontalScroll()->horizontalScrollBar()->value(), dayBefore);
}

void TestTimelineKeyboard::keysMoveTheFocus_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QString>("box");

    // From Market 10:00, where the focus enters.
    QTest::newRow("left") << QList<int>{Qt::Key_Left} << u"Tide 09:00"_s;
    QTest::newRow("left stops at the row's start")
        << QList<int>{Qt::Key_Left, Qt::Key_Left, Qt::Key_Left} << u"Tide 09:00"_s;
    QTest::newRow("right") << QList<int>{Qt::Key_Right} << u"Storm 10:30"_s;
    QTest::newRow("right stops at the row's end")
        << QList<int>{Qt::Key_Right, Qt::Key_Right, Qt::Key_Right} << u"Storm 10:30"_s;
    QTest::newRow("home") << QList<int>{Qt::Key_Right, Qt::Key_Home} << u"Tide 09:00"_s;
    QTest::newRow("end") << QList<int>{Qt::Key_End} << u"Storm 10:30"_s;
    QTest::newRow("up at the first row stays") << QList<int>{Qt::Key_Up} << u"Market 10:00"_s;
    // Up and down go to the box spanning the middle of the current one.
    QTest::newRow("down") << QList<int>{Qt::Key_Down} << u"Night 10:00"_s;
    QTest::newRow("down from an earlier box")
        << QList<int>{Qt::Key_Left, Qt::Key_Down} << u"Hunt 08:00"_s;
    QTest::newRow("down passes a row without boxes")
        << QList<int>{Qt::Key_Down, Qt::Key_Down} << u"Watch 00:30"_s;
    QTest::newRow("down at the last row stays")
        << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Down} << u"Watch 00:30"_s;
    QTest::newRow("home and end of another row")
        << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_End, Qt::Key_Home} << u"Siege 00:00"_s;
    // Nothing spans the middle: the nearest box, before or after.
    QTest::newRow("up past the row's end")
        << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_End, Qt::Key_Up} << u"Night 10:00"_s;
    QTest::newRow("up before the row's start")
        << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Home, Qt::Key_Up} << u"Hunt 08:00"_s;
    QTest::newRow("up and up again")
        << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Right, Qt::Key_Up, Qt::Key_Up}
        << u"Storm 10:30"_s;
}

void TestTimelineKeyboard::keysMoveTheFocus()
{
    QFETCH(QList<int>, keys);
    QFETCH(QString, box);
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    TimelineWidget &timeline = window.timeline();
    timeline.setFocus(Qt::TabFocusReason);
    QCOMPARE(window.label(*timeline.currentBox()), u"Market 10:00"_s);

    press(&timeline, keys);
    QVERIFY(timeline.currentBox());
    QCOMPARE(window.label(*timeline.currentBox()), box);
}

void TestTimelineKeyboard::focusedBoxIsScrolledIntoView_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QString>("box");

    QTest::newRow("down to the last row")
        << QList<int>{Qt::Key_Down, Qt::Key_Down} << u"Watch 00:30"_s;
    QTest::newRow("start of the day")
        << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Home} << u"Siege 00:00"_s;
    QTest::newRow("end of the day")
        << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_End} << u"Watch 12:30"_s;
    QTest::newRow("back to the top")
        << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Home, Qt::Key_Up, Qt::Key_Up}
        << u"Tide 09:00"_s;
}

void TestTimelineKeyboard::focusedBoxIsScrolledIntoView()
{
    QFETCH(QList<int>, keys);
    QFETCH(QString, box);
    // Less than two rows high, and a fraction of the day wide.
    SmallTimetable window(QSize(700, 200));
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    TimelineWidget &timeline = window.timeline();
    timeline.setFocus(Qt::TabFocusReason);

    press(&timeline, keys);
    QCOMPARE(window.label(*timeline.currentBox()), box);
    const QRectF rect = timeline.boxes().at(*timeline.currentBox()).rect;
    const HorizontalScroll *day = window.controller().horizontalScroll();
    const QScrollArea *timetable = window.controller().verticalScroll();

    // As much of it as the view holds, with room for the ring.
    const int sidewaysRoom = day->viewport()->width() - 16;
    QCOMPARE_GE(shownIn(day, timeline, rect).width(), std::min(qCeil(rect.width()), sidewaysRoom));
    // All of its height.
    QCOMPARE(shownIn(timetable, timeline, rect).height(), rect.toAlignedRect().height());
}

void TestTimelineKeyboard::keysCopyTheLink_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QKeyCombination>("copy");
    QTest::addColumn<QString>("clipboard");
    QTest::addColumn<bool>("shown");

    QTest::newRow("Return") << QList<int>{Qt::Key_Left} << QKeyCombination(Qt::Key_Return)
                            << QString::fromUtf16(SmallTimetable::tideLink) << true;
    QTest::newRow("Enter of the keypad")
        << QList<int>{Qt::Key_Down} << QKeyCombination(Qt::KeypadModifier, Qt::Key_Enter)
        << QString::fromUtf16(SmallTimetable::nightLink) << true;
    QTest::newRow("copy shortcut")
        << QList<int>{Qt::Key_Left, Qt::Key_Down} << QKeyCombination(Qt::ControlModifier, Qt::Key_C)
        << QString::fromUtf16(SmallTimetable::huntLink) << true;
    QTest::newRow("empty link") << QList<int>{Qt::Key_Right}
                                << QKeyCombination(Qt::ControlModifier, Qt::Key_C) << QString()
                                << true;
    QTest::newRow("box without a link")
        << QList<int>{} << QKeyCombination(Qt::Key_Return) << u"earlier"_s << false;
    QTest::newRow("a plain C is no copy")
        << QList<int>{Qt::Key_Left} << QKeyCombination(Qt::Key_C) << u"earlier"_s << false;
}

void TestTimelineKeyboard::keysCopyTheLink()
{
    QFETCH(QList<int>, keys);
    QFETCH(QKeyCombination, copy);
    QFETCH(QString, clipboard);
    QFETCH(bool, shown);
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    TimelineWidget &timeline = window.timeline();
    timeline.setFocus(Qt::TabFocusReason);
    press(&timeline, keys);
    QGuiApplication::clipboard()->setText(u"earlier"_s);

    QTest::keyClick(&timeline, copy.key(), copy.keyboardModifiers());
    QCOMPARE(QGuiApplication::clipboard()->text(), clipboard);
    QCOMPARE(window.controller().clipboardMessage()->isVisible(), shown);
}

void TestTimelineKeyboard::clickChoosesTheBox()
{
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    TimelineWidget &timeline = window.timeline();
    const QScrollBar *day = window.controller().horizontalScroll()->horizontalScrollBar();
    const int dayBefore = day->value();
    const QRectF night = timeline.boxes().at(window.box(u"Night 10:00"_s)).rect;

    QTest::mouseClick(&timeline, Qt::LeftButton, Qt::NoModifier,
                      (night.topLeft() + QPointF(20, 10)).toPoint());
    QVERIFY(timeline.hasFocus());
    QCOMPARE(window.label(*timeline.currentBox()), u"Night 10:00"_s);
    QCOMPARE(day->value(), dayBefore);
    QTest::keyClick(&timeline, Qt::Key_Left);
    QCOMPARE(window.label(*timeline.currentBox()), u"Hunt 08:00"_s);
}

void TestTimelineKeyboard::focusRingIsPaintedOnTheCurrentBoxOnly()
{
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    TimelineWidget &timeline = window.timeline();
    const QRect market = timeline.boxes().at(window.box(u"Market 10:00"_s)).rect.toAlignedRect();
    const QRect storm = timeline.boxes().at(window.box(u"Storm 10:30"_s)).rect.toAlignedRect();
    // Painted once before, so that the boxes come from their cached pictures afterwards.
    const QImage marketPlain = timeline.grab(market).toImage();
    const QImage stormPlain = timeline.grab(storm).toImage();

    timeline.setFocus(Qt::TabFocusReason);
    QCOMPARE(window.label(*timeline.currentBox()), u"Market 10:00"_s);
    QVERIFY(timeline.grab(market).toImage() != marketPlain);
    QCOMPARE(timeline.grab(storm).toImage(), stormPlain);

    QTest::keyClick(&timeline, Qt::Key_Right);
    QCOMPARE(timeline.grab(market).toImage(), marketPlain);
    QVERIFY(timeline.grab(storm).toImage() != stormPlain);

    // Without the focus, no ring, though the box stays current.
    window.controller().verticalScroll()->setFocus(Qt::TabFocusReason);
    QCOMPARE(window.label(*timeline.currentBox()), u"Storm 10:30"_s);
    QCOMPARE(timeline.grab(storm).toImage(), stormPlain);
}

QTEST_MAIN(TestTimelineKeyboard)
#include "tst_timelinekeyboard.moc"
