#include "manualclock.h"
#include "model/reminderchoices.h"
#include "smallday.h"
#include "ui/eventboxpainter.h"
#include "ui/scroll/horizontalscroll.h"
#include "ui/viewcontroller.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <memory>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// The window over the small day (see smallday.h), at 10:00 UTC on a clock that the test moves.
class SmallTimetable
{
public:
    explicit SmallTimetable(QSize size = QSize(1000, 600))
        : m_controller(std::make_unique<ViewController>(m_clock))
    {
        QWidget *view = m_controller->view();
        view->resize(size);
        m_controller->viewDidLoad();
        m_controller->loadDidFinish(SmallDay::sections());
        view->show();
        m_controller->viewDidAppear();
    }

    bool exposed() { return QTest::qWaitForWindowExposed(m_controller->view()); }
    ManualClock &clock() { return m_clock; }
    ViewController &controller() { return *m_controller; }
    TimelineWidget &timeline() { return *m_controller->horizontalScrollContent(); }
    QScrollBar *sideways() { return m_controller->horizontalScroll()->horizontalScrollBar(); }
    QScrollBar *upright() { return m_controller->verticalScroll()->verticalScrollBar(); }

    // The index of the box that shows an event starting at a time, e.g. "Siege 12:00".
    qsizetype box(const QString &label) { return boxNamed(timeline().boxes(), label); }
    // The box with the focus ring, by its label; empty without one.
    QString current()
    {
        const std::optional<qsizetype> box = timeline().currentBox();
        return box ? labelOf(timeline().boxes().at(*box)) : QString();
    }
    // A box as it is painted now.
    QImage picture(const QString &label)
    {
        return timeline().grab(timeline().boxes().at(box(label)).rect.toAlignedRect()).toImage();
    }

private:
    ManualClock m_clock{SmallDay::now(), QTimeZone::utc()};
    std::unique_ptr<ViewController> m_controller;
};

namespace {

// One wheel event as a device reports it: phase, pixel delta, angle delta, keys held.
struct Wheel
{
    Qt::ScrollPhase phase;
    QPoint pixel;
    QPoint angle;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

Wheel begin(QPoint pixel, QPoint angle = {})
{
    return {Qt::ScrollBegin, pixel, angle.isNull() ? pixel * 8 : angle};
}
const Wheel end{Qt::ScrollEnd, {}, {}};
const Wheel notch{Qt::NoScrollPhase, {}, {0, -120}}; // a plain wheel turned one notch down

// Delivers a wheel event as QApplication does a device's: one the widget under the pointer
// ignores goes on to its parents. (Qt does so for the window system's events only, which a test
// cannot make through public API, so the walk is written out here.) Returns the widget that
// took the event.
QWidget *send(QWidget *under, QPoint at, const Wheel &wheel)
{
    for (QWidget *widget = under; widget && !widget->isWindow(); widget = widget->parentWidget()) {
        const QPointF local = under->mapTo(widget, at);
        QWheelEvent event(local, widget->mapToGlobal(local), wheel.pixel, wheel.angle, Qt::NoButton,
                          wheel.modifiers, wheel.phase, false);
        if (QApplication::sendEvent(widget, &event) && event.isAccepted())
            return widget;
    }
    return nullptr;
}

} // namespace

// Stands in for the desktop's browser.
class UrlCatcher : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }

public:
    QList<QUrl> opened;
};

// The time axis as its users meet it: with the mouse and its wheel, the keyboard and a screen
// reader.
class TestTimelineWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textReadsOnEveryFill()
    {
        // Light text goes on what a translucent fill makes dark over the window's colour.
        const QColor light(0xf0, 0xf0, 0xf0);
        const QColor night(0x24, 0x24, 0x24);
        QVERIFY(EventBoxPainter::isDark(QColor::fromRgbF(0.7, 0.85, 1.0, 0.25), night));
        QVERIFY(!EventBoxPainter::isDark(QColor::fromRgbF(0, 0, 0.5, 0.25), light));
    }

    void wheelsOverTheTimeline_data()
    {
        QTest::addColumn<QList<Wheel>>("wheels");
        QTest::addColumn<bool>("sideways"); // whether the day's area took the last one

        // A gesture's first event decides by the larger magnitude, pixels before angles; a tie
        // goes on to the timetable's area.
        QTest::newRow("a tie (3,3)") << QList<Wheel>{begin({3, 3})} << false;
        QTest::newRow("pixels (-6,1) before angles")
            << QList<Wheel>{begin({-6, 1}, {0, 120})} << true;
        QTest::newRow("a tilted wheel: angles") << QList<Wheel>{begin({}, {120, 0})} << true;
        // The rest of the gesture follows its start, whatever its direction.
        QTest::newRow("a sideways gesture turning upright")
            << QList<Wheel>{begin({-6, 1}), {Qt::ScrollUpdate, {0, -30}, {0, -240}}} << true;
        QTest::newRow("an upright gesture turning sideways")
            << QList<Wheel>{begin({0, -6}), {Qt::ScrollUpdate, {30, -4}, {240, -32}}} << false;
        // Wheels without phases follow the latest gesture, sideways before any.
        QTest::newRow("a plain wheel first") << QList<Wheel>{notch} << true;
        QTest::newRow("a plain wheel after an upright gesture")
            << QList<Wheel>{begin({0, 4}), end, notch} << false;
        QTest::newRow("a plain wheel after a sideways one")
            << QList<Wheel>{begin({0, 4}), begin({4, 0}), notch} << true;
    }

    void wheelsOverTheTimeline()
    {
        QFETCH(QList<Wheel>, wheels);
        QFETCH(bool, sideways);
        // Short enough that the timetable scrolls up and down as well as the day sideways.
        SmallTimetable window(QSize(900, 180));
        QVERIFY(window.exposed());
        const int dayBefore = window.sideways()->value();

        // Over the face of a box in view, in the first row.
        const QRectF market = window.timeline().boxes().at(window.box(u"Market 10:00"_s)).rect;
        const QPoint at = market.topLeft().toPoint() + QPoint(10, 10);
        QWidget *taker = nullptr;
        for (const Wheel &wheel : std::as_const(wheels))
            taker = send(&window.timeline(), at, wheel);
        QCOMPARE(taker == window.controller().horizontalScroll()->viewport(), sideways);
        // A notch down scrolls the day later.
        if (sideways && wheels.last().phase == Qt::NoScrollPhase)
            QCOMPARE_GT(window.sideways()->value(), dayBefore);
    }

    // A wheel with Shift held and Page Down move the rows, whatever the latest gesture decided;
    // the day stays where it is.
    void shiftWheelAndPageKeysMoveTheRows()
    {
        SmallTimetable window(QSize(900, 180));
        QVERIFY(window.exposed());
        const int day = window.sideways()->value();
        const QPoint at =
            window.timeline().boxes().at(window.box(u"Market 10:00"_s)).rect.center().toPoint();
        send(&window.timeline(), at, {Qt::NoScrollPhase, {}, {0, -120}, Qt::ShiftModifier});
        QCOMPARE_GT(window.upright()->value(), 0);
        window.upright()->setValue(0);
        QTest::keyClick(&window.timeline(), Qt::Key_PageDown);
        QCOMPARE_GT(window.upright()->value(), 0);
        QCOMPARE(window.sideways()->value(), day);
    }

    // However it is copied, the chat link becomes the clipboard's only content, one plain-text
    // item character for character, and the message shows; a box without a link copies nothing.
    void copyPutsOnlyTheLink_data()
    {
        QTest::addColumn<QString>("box");
        // "click" on the copy button, "press" by assistive technology, or keys
        QTest::addColumn<QString>("by");
        QTest::addColumn<std::optional<QString>>("copied");

        const std::optional tide(QString::fromUtf16(SmallDay::tideLink));
        const std::optional night(QString::fromUtf16(SmallDay::nightLink));
        const std::optional<QString> nothing;
        QTest::newRow("button") << u"Tide 09:00"_s << u"click"_s << tide;
        QTest::newRow("button, empty link")
            << u"Storm 10:30"_s << u"click"_s << std::optional(QString());
        QTest::newRow("no link, no button") << u"Market 10:00"_s << u"click"_s << nothing;
        QTest::newRow("Return") << u"Tide 09:00"_s << u"Return"_s << tide;
        QTest::newRow("Enter of the keypad, markup stays text")
            << u"Night 10:00"_s << u"Num+Enter"_s << night;
        QTest::newRow("the copy shortcut") << u"Tide 09:00"_s << u"Ctrl+C"_s << tide;
        QTest::newRow("a plain C is no copy") << u"Tide 09:00"_s << u"C"_s << nothing;
        QTest::newRow("assistive technology") << u"Tide 09:00"_s << u"press"_s << tide;
        QTest::newRow("assistive technology asks anyway, no link")
            << u"Market 10:00"_s << u"press"_s << nothing;
    }

    void copyPutsOnlyTheLink()
    {
        QFETCH(QString, box);
        QFETCH(QString, by);
        QFETCH(std::optional<QString>, copied);
        SmallTimetable window;
        QVERIFY(window.exposed());
        // Something else the user copied before: rich text and a private format.
        auto *earlier = new QMimeData;
        earlier->setText(u"earlier"_s);
        earlier->setHtml(u"<i>earlier</i>"_s);
        earlier->setData(u"application/x-earlier"_s, "bytes");
        const QStringList formats = earlier->formats();
        QGuiApplication::clipboard()->setMimeData(earlier); // which deletes it when replaced

        TimelineWidget &timeline = window.timeline();
        const qsizetype index = window.box(box);
        if (by == u"click") {
            // As a user does: scrolled into view, pressed and released.
            const QPoint button = timeline.copyButtonRect(index).center().toPoint();
            window.controller().horizontalScroll()->ensureVisible(button.x(), button.y());
            QTest::mouseClick(&timeline, Qt::LeftButton, Qt::NoModifier, button);
        } else if (by == u"press") {
            QAccessibleInterface *item =
                QAccessible::queryAccessibleInterface(&timeline)->child(int(index));
            item->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        } else {
            timeline.setFocus(Qt::TabFocusReason);
            timeline.setCurrentBox(index);
            const QKeyCombination key = QKeySequence(by)[0];
            QTest::keyClick(&timeline, key.key(), key.keyboardModifiers());
        }
        const QMimeData *data = QGuiApplication::clipboard()->mimeData();
        QCOMPARE(data->formats(), copied ? QStringList{u"text/plain"_s} : formats);
        QCOMPARE(data->text(), copied.value_or(u"earlier"_s));
        const ClipboardMessage *message = window.controller().clipboardMessage();
        QCOMPARE(message && message->isVisible(), copied.has_value());
    }

    void earliestPendingHideEndsTheMessage()
    {
        // Copies at 0 s, 2 s and 3 s: each hide is the one of the earliest copy still pending.
        SmallTimetable window;
        QVERIFY(window.exposed());
        ViewController &controller = window.controller();
        controller.copyToClipboardWithSender(window.box(u"Tide 09:00"_s));
        const QFrame *message = controller.clipboardMessage();
        QVERIFY(message->isVisible());
        window.clock().advance(2000ms);
        controller.copyToClipboardWithSender(window.box(u"Hunt 08:00"_s));
        window.clock().advance(999ms);
        QVERIFY(message->isVisible());
        window.clock().advance(1ms);
        QVERIFY2(message->isHidden(), "the second copy postponed the first one's hide");

        controller.copyToClipboardWithSender(window.box(u"Siege 12:00"_s));
        window.clock().advance(1999ms);
        QVERIFY(message->isVisible());
        window.clock().advance(1ms);
        QVERIFY2(message->isHidden(), "the third copy postponed the second one's hide");
    }

    // From the start the keyboard is on the box at the marker in the first row in view, so the
    // keys act at once; the ring enters there again by Tab from the timetable's area (the day's
    // area is no stop of its own) without scrolling; the keys bring it into view.
    void keysMoveTheRingIntoView_data()
    {
        QTest::addColumn<bool>("tab");
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("box");
        QTest::newRow("at once") << false << QList<int>() << u"Market 10:00"_s;
        QTest::newRow("by Tab") << true << QList<int>() << u"Market 10:00"_s;
        QTest::newRow("end of the day")
            << false << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_End} << u"Watch 12:30"_s;
    }

    void keysMoveTheRingIntoView()
    {
        QFETCH(bool, tab);
        QFETCH(QList<int>, keys);
        // Less than two rows high, and a fraction of the day wide.
        SmallTimetable window(QSize(700, 200));
        QVERIFY(window.exposed());
        const QPoint before(window.sideways()->value(), window.upright()->value());
        QScrollArea *timetable = window.controller().verticalScroll();
        if (tab) {
            timetable->setFocus(Qt::OtherFocusReason);
            QTest::keyClick(timetable, Qt::Key_Tab);
        }
        TimelineWidget &timeline = window.timeline();
        QVERIFY(timeline.hasFocus());
        for (const int key : keys)
            QTest::keyClick(&timeline, static_cast<Qt::Key>(key));
        QTEST(window.current(), "box");
        if (keys.isEmpty())
            QCOMPARE(QPoint(window.sideways()->value(), window.upright()->value()), before);

        // All its height in view (how far the areas scroll: see RevealScroll; sideways: find).
        const QRect rect = timeline.boxes().at(*timeline.currentBox()).rect.toAlignedRect();
        const QRect shown(timeline.mapTo(timetable->viewport(), rect.topLeft()), rect.size());
        QCOMPARE((shown & timetable->viewport()->rect()).height(), rect.height());
    }

    void ringIsPaintedOnTheCurrentBoxOnly()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        TimelineWidget &timeline = window.timeline();
        window.controller().verticalScroll()->setFocus(Qt::OtherFocusReason);
        // Painted once before, so that the boxes come from their cached pictures afterwards.
        const QImage tide = window.picture(u"Tide 09:00"_s);
        const QImage market = window.picture(u"Market 10:00"_s);

        // A click puts the ring on the box it hits, and the keys move it on from there.
        const QRectF onTide = timeline.boxes().at(window.box(u"Tide 09:00"_s)).rect;
        QTest::mouseClick(&timeline, Qt::LeftButton, {}, onTide.center().toPoint());
        QVERIFY(window.picture(u"Tide 09:00"_s) != tide);
        QCOMPARE(window.picture(u"Market 10:00"_s), market);
        QTest::keyClick(&timeline, Qt::Key_Right);
        QCOMPARE(window.picture(u"Tide 09:00"_s), tide);
        QVERIFY(window.picture(u"Market 10:00"_s) != market);

        // Without the focus, no ring, though the box stays current.
        window.controller().verticalScroll()->setFocus(Qt::TabFocusReason);
        QCOMPARE(window.current(), u"Market 10:00"_s);
        QCOMPARE(window.picture(u"Market 10:00"_s), market);
    }

    // The minute moves the marker and the veil of the past: a box drawn before shows it as a
    // window that first paints at that minute does.
    void theMinuteRedrawsWhatItChanges()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        // Without the keyboard's ring, as the window painted later has it.
        window.controller().verticalScroll()->setFocus(Qt::OtherFocusReason);
        window.clock().advance(15min);
        const QImage running = window.picture(u"Market 10:00"_s);
        window.clock().advance(16min);
        SmallTimetable later;
        later.clock().advance(31min);
        QCOMPARE(window.picture(u"Market 10:00"_s), later.picture(u"Market 10:00"_s));
        QVERIFY(window.picture(u"Market 10:00"_s) != running);
    }

    // R and the box's menu set and remove the mark of the event by name; marked boxes carry
    // a bell and say so to screen readers. The menu also opens the event's wiki page.
    void marksAndTheBoxMenu()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        ReminderChoices choices;
        window.controller().setReminderChoices(&choices);
        window.controller().setWikiPageUrl(u"https://wiki.example.org/{page}"_s);
        TimelineWidget &timeline = window.timeline();
        const qsizetype market = window.box(u"Market 10:00"_s);
        timeline.boxes().at(market).item->event->wiki = u"Grand Market"_s;
        timeline.setFocus(Qt::TabFocusReason);
        const QImage plain = window.picture(u"Market 10:00"_s);

        QTest::keyClick(&timeline, Qt::Key_R);
        QVERIFY(choices.isMarked(u"Market"_s));
        QVERIFY(window.picture(u"Market 10:00"_s) != plain);
        QVERIFY(QAccessible::queryAccessibleInterface(&timeline)
                    ->child(int(market))
                    ->text(QAccessible::Description)
                    .endsWith(u", reminder set"_s));

        // What the window system sends for the menu key (Qt's test keys do not make it).
        QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(&timeline, &menuKey);
        QTRY_VERIFY(QApplication::activePopupWidget());
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QStringList items;
        for (const QAction *action : menu->actions())
            items.append(action->text() + (action->isEnabled() ? u""_s : u" (off)"_s) +
                         (action->isChecked() ? u" (on)"_s : u""_s));
        QCOMPARE(items, (QStringList{u"Copy chat link (off)"_s, u"Copy name"_s, u"Open wiki page"_s,
                                     QString(), u"Remind me of Market (on)"_s,
                                     u"Reminder preferences\u2026"_s, QString(),
                                     u"Hide this section"_s, u"Hide this category"_s}));
        QSignalSpy hide(&window.controller(), &ViewController::hideRequested);
        menu->actions().at(8)->trigger();
        QCOMPARE(hide.value(0), (QVariantList{true, u"World"_s}));
        UrlCatcher browser;
        QDesktopServices::setUrlHandler(u"https"_s, &browser, "open");
        menu->actions().at(2)->trigger();
        QDesktopServices::unsetUrlHandler(u"https"_s);
        QCOMPARE(browser.opened, QList<QUrl>{QUrl(u"https://wiki.example.org/Grand%20Market"_s)});
        menu->actions().at(4)->trigger();
        menu->close();
        QVERIFY(!choices.isMarked(u"Market"_s));
        QCOMPARE(window.picture(u"Market 10:00"_s), plain);
    }

    // The ruler stands over the boxes at any scroll position; find walks the matches from the
    // marker on and puts the view back when closed.
    void rulerAndFind()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        ViewController &controller = window.controller();
        QWidget *view = controller.view();
        QScrollBar *day = window.sideways();
        for (const int scroll : {0, 2500, day->maximum()}) {
            day->setValue(scroll);
            QCOMPARE(controller.hourRuler()->mapTo(view, QPoint(6000 - day->value(), 0)).x(),
                     window.timeline().mapTo(view, QPoint(6000, 0)).x());
        }

        view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(view));
        QTest::keyClick(view, Qt::Key_F, Qt::ControlModifier);
        QWidget *field = controller.findBar()->field();
        QVERIFY(field->hasFocus());
        QTest::keyClicks(field, u"siege"_s);
        QCOMPARE(controller.findBar()->count()->text(), u"2 of 2"_s); // 12:00, after 10:00
        QTest::keyClick(field, Qt::Key_F3);
        QCOMPARE(controller.findBar()->count()->text(), u"1 of 2"_s);
        QCOMPARE_LT(day->value(), 100);
        QTest::keyClick(field, Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(controller.findBar()->count()->text(), u"2 of 2"_s);
        // Escape leaves the keyboard on the box found, in view.
        QTest::keyClick(field, Qt::Key_Escape);
        QVERIFY(!controller.findBar()->isVisible());
        QVERIFY(window.timeline().hasFocus());
        QCOMPARE(window.current(), u"Siege 12:00"_s);
        QCOMPARE_LE(day->value(), 7200);
        QCOMPARE_GT(day->value() + window.controller().horizontalScroll()->viewport()->width(),
                    7200);
    }

    void screenReadersSeeOneItemPerBox()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        TimelineWidget &timeline = window.timeline();
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&timeline);
        QCOMPARE(list->role(), QAccessible::List);
        QCOMPARE(list->text(QAccessible::Name), u"Events of the day"_s);

        // One item per box, in box order, each kept (assistive technology tracks identity),
        // then the clock label.
        QAccessibleInterface *siege = list->child(7);
        QCOMPARE(list->child(7), siege);
        QCOMPARE(list->indexOfChild(siege), 7);
        QCOMPARE(siege->parent(), list);
        QCOMPARE(siege->text(QAccessible::Name), u"Siege"_s);
        QCOMPARE(list->childCount(), 10);
        QCOMPARE(list->child(9)->text(QAccessible::Name), window.controller().timeLabel()->text());

        // The item under a point; the clock label lies over the boxes.
        const QPoint onTide = list->child(0)->rect().center();
        QCOMPARE(list->childAt(onTide.x(), onTide.y()), list->child(0));
        const QPoint onLabel = list->child(9)->rect().center();
        QCOMPARE(list->childAt(onLabel.x(), onLabel.y()), list->child(9));

        // Pressing copies the link (see copyPutsOnlyTheLink).
        const QString press = QAccessibleActionInterface::pressAction();
        QAccessibleActionInterface *tide = list->child(0)->actionInterface();
        QCOMPARE(tide->localizedActionName(press), u"Copy chat link of Tide"_s);
        QVERIFY(!tide->keyBindingsForAction(press).isEmpty());
        QVERIFY(!list->child(1)->actionInterface()->actionNames().contains(press)); // Market

        // What a screen reader asks when the focus moves. (Qt passes on the focus notifications
        // only while one is listening, which no test platform does.)
        const auto focused = [list](int item) {
            return list->child(item)->state().focused;
        };
        const int night = static_cast<int>(window.box(u"Night 10:00"_s));
        timeline.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&timeline, Qt::Key_Down);
        QVERIFY(focused(night));
        QCOMPARE(list->focusChild(), list->child(night));

        // A screen reader can move the ring itself.
        list->child(7)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
        QCOMPARE(*timeline.currentBox(), 7);
        QVERIFY(focused(7) && !focused(night));
        window.controller().verticalScroll()->setFocus(Qt::TabFocusReason);
        QVERIFY(!focused(7));
    }
};

QTEST_MAIN(TestTimelineWidget)
#include "tst_timelinewidget.moc"
