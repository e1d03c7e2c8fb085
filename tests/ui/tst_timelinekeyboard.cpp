#include "model/reminderchoices.h"
#include "smalltimetable.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

// Stands in for the desktop's browser.
class UrlCatcher : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }

public:
    QList<QUrl> opened;
};

class TestTimelineKeyboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tabEntersNearThePresentWithoutScrolling()
    {
        SmallTimetable window(QSize(1000, 200));
        QVERIFY(window.exposed());
        QScrollArea *timetable = window.controller().verticalScroll();
        timetable->verticalScrollBar()->setValue(timetable->verticalScrollBar()->maximum());
        const int timetableBefore = timetable->verticalScrollBar()->value();
        const int dayBefore =
            window.controller().horizontalScroll()->horizontalScrollBar()->value();

        // From the timetable's area: the horizontal area is no stop of its own.
        timetable->setFocus(Qt::OtherFocusReason);
        QTest::keyClick(timetable, Qt::Key_Tab);
        QVERIFY(window.timeline().hasFocus());
        QCOMPARE(window.label(*window.timeline().currentBox()), u"Watch 00:30"_s);
        QCOMPARE(timetable->verticalScrollBar()->value(), timetableBefore);
        QCOMPARE(window.controller().horizontalScroll()->horizontalScrollBar()->value(), dayBefore);
    }

    void keysMoveTheRingIntoView_data()
    {
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("box");
        QTest::newRow("end of the day")
            << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_End} << u"Watch 12:30"_s;
        QTest::newRow("back to the top")
            << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Home, Qt::Key_Up, Qt::Key_Up}
            << u"Tide 09:00"_s;
    }

    void keysMoveTheRingIntoView()
    {
        QFETCH(QList<int>, keys);
        QFETCH(QString, box);
        // Less than two rows high, and a fraction of the day wide.
        SmallTimetable window(QSize(700, 200));
        QVERIFY(window.exposed());
        TimelineWidget &timeline = window.timeline();
        timeline.setFocus(Qt::TabFocusReason);
        for (const int key : keys)
            QTest::keyClick(&timeline, static_cast<Qt::Key>(key));
        QCOMPARE(window.label(*timeline.currentBox()), box);

        // As much of it as each view holds, with room for the ring.
        const QRect rect = timeline.boxes().at(*timeline.currentBox()).rect.toAlignedRect();
        const auto shown = [&](const QScrollArea *area) {
            return QRect(timeline.mapTo(area->viewport(), rect.topLeft()), rect.size()) &
                   area->viewport()->rect();
        };
        const HorizontalScroll *day = window.controller().horizontalScroll();
        QCOMPARE_GE(shown(day).width(), std::min(rect.width() - 1, day->viewport()->width() - 16));
        QCOMPARE(shown(window.controller().verticalScroll()).height(), rect.height());
    }

    void keysCopyTheLink_data()
    {
        QTest::addColumn<int>("move"); // from Market 10:00, where the ring enters
        QTest::addColumn<QKeyCombination>("copy");
        QTest::addColumn<QString>("clipboard");

        QTest::newRow("Return") << int(Qt::Key_Left) << QKeyCombination(Qt::Key_Return)
                                << QString::fromUtf16(SmallDay::tideLink);
        QTest::newRow("Enter of the keypad")
            << int(Qt::Key_Down) << QKeyCombination(Qt::KeypadModifier, Qt::Key_Enter)
            << QString::fromUtf16(SmallDay::nightLink);
        QTest::newRow("the copy shortcut")
            << int(Qt::Key_Left) << QKeyCombination(Qt::ControlModifier, Qt::Key_C)
            << QString::fromUtf16(SmallDay::tideLink);
        QTest::newRow("a box without a link")
            << 0 << QKeyCombination(Qt::Key_Return) << u"earlier"_s;
        QTest::newRow("a plain C is no copy")
            << int(Qt::Key_Left) << QKeyCombination(Qt::Key_C) << u"earlier"_s;
    }

    void keysCopyTheLink()
    {
        QFETCH(int, move);
        QFETCH(QKeyCombination, copy);
        QFETCH(QString, clipboard);
        SmallTimetable window;
        QVERIFY(window.exposed());
        TimelineWidget &timeline = window.timeline();
        timeline.setFocus(Qt::TabFocusReason);
        QCOMPARE(window.label(*timeline.currentBox()), u"Market 10:00"_s);
        if (move)
            QTest::keyClick(&timeline, static_cast<Qt::Key>(move));
        QGuiApplication::clipboard()->setText(u"earlier"_s);

        QTest::keyClick(&timeline, copy.key(), copy.keyboardModifiers());
        QCOMPARE(QGuiApplication::clipboard()->text(), clipboard);
        QCOMPARE(window.controller().clipboardMessage()->isVisible(), clipboard != u"earlier"_s);
    }

    void ringIsPaintedOnTheCurrentBoxOnly()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        TimelineWidget &timeline = window.timeline();
        const QRect tide = timeline.boxes().at(window.box(u"Tide 09:00"_s)).rect.toAlignedRect();
        const QRect market =
            timeline.boxes().at(window.box(u"Market 10:00"_s)).rect.toAlignedRect();
        // Painted once before, so that the boxes come from their cached pictures afterwards.
        const QImage tidePlain = timeline.grab(tide).toImage();
        const QImage marketPlain = timeline.grab(market).toImage();

        // A click puts the ring on the box it hits, and the keys move it on from there.
        QTest::mouseClick(&timeline, Qt::LeftButton, Qt::NoModifier,
                          tide.topLeft() + QPoint(20, 10));
        QVERIFY(timeline.grab(tide).toImage() != tidePlain);
        QCOMPARE(timeline.grab(market).toImage(), marketPlain);
        QTest::keyClick(&timeline, Qt::Key_Right);
        QCOMPARE(timeline.grab(tide).toImage(), tidePlain);
        QVERIFY(timeline.grab(market).toImage() != marketPlain);

        // Without the focus, no ring, though the box stays current.
        window.controller().verticalScroll()->setFocus(Qt::TabFocusReason);
        QCOMPARE(window.label(*timeline.currentBox()), u"Market 10:00"_s);
        QCOMPARE(timeline.grab(market).toImage(), marketPlain);
    }

    // R and the box's menu set and remove the mark of the event by name; marked boxes carry
    // a bell and say so to screen readers.
    void marksAnEventForReminders()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        ReminderChoices choices;
        window.controller().setReminderChoices(&choices);
        TimelineWidget &timeline = window.timeline();
        const qsizetype market = window.box(u"Market 10:00"_s);
        timeline.setFocus(Qt::TabFocusReason);
        const QImage plain =
            timeline.grab(timeline.boxes().at(market).rect.toAlignedRect()).toImage();

        QTest::keyClick(&timeline, Qt::Key_R);
        QVERIFY(choices.isMarked(u"Market"_s));
        QVERIFY(timeline.grab(timeline.boxes().at(market).rect.toAlignedRect()).toImage() != plain);
        QVERIFY(QAccessible::queryAccessibleInterface(&timeline)
                    ->child(int(market))
                    ->text(QAccessible::Description)
                    .endsWith(u", reminder set"_s));

        QSignalSpy asked(&timeline, &TimelineWidget::menuRequested);
        // What the window system sends for the menu key (Qt's test keys do not make it).
        QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(&timeline, &menuKey);
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked.first().first().value<qsizetype>(), market);
        QTRY_VERIFY(QApplication::activePopupWidget());
        QApplication::activePopupWidget()->close();

        QMenu *menu = window.controller().boxMenu(market);
        QStringList items;
        for (const QAction *action : menu->actions())
            items.append(action->text() + (action->isEnabled() ? u""_s : u" (off)"_s) +
                         (action->isChecked() ? u" (on)"_s : u""_s));
        QCOMPARE(items,
                 (QStringList{u"Copy chat link (off)"_s, u"Copy name"_s, QString(),
                              u"Remind me of Market (on)"_s, u"Reminder preferences\u2026"_s}));
        menu->actions().at(3)->trigger();
        delete menu;
        QVERIFY(!choices.isMarked(u"Market"_s));
        QCOMPARE(timeline.grab(timeline.boxes().at(market).rect.toAlignedRect()).toImage(), plain);
    }

    // The ruler stands over the boxes at any scroll position; find walks the matches from the
    // marker on and puts the view back when closed; the menu opens the event's wiki page.
    void rulerFindAndWikiPage()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        ViewController &controller = window.controller();
        QWidget *view = controller.view();
        QScrollBar *day = controller.horizontalScroll()->horizontalScrollBar();
        for (const int scroll : {0, 2500, day->maximum()}) {
            day->setValue(scroll);
            QCOMPARE(controller.hourRuler()->mapTo(view, QPoint(6000 - day->value(), 0)).x(),
                     window.timeline().mapTo(view, QPoint(6000, 0)).x());
        }

        const int before = day->value();
        view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(view));
        QTest::keyClick(view, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(controller.findBar()->field()->hasFocus());
        QTest::keyClicks(controller.findBar()->field(), u"siege"_s);
        QCOMPARE(controller.findBar()->count()->text(), u"2 of 2"_s); // 12:00, after 10:00
        QTest::keyClick(controller.findBar()->field(), Qt::Key_F3);
        QCOMPARE(controller.findBar()->count()->text(), u"1 of 2"_s);
        QCOMPARE_LT(day->value(), 100);
        QTest::keyClick(controller.findBar()->field(), Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(controller.findBar()->count()->text(), u"2 of 2"_s);
        QTest::keyClick(controller.findBar()->field(), Qt::Key_Escape);
        QVERIFY(!controller.findBar()->isVisible());
        QCOMPARE(day->value(), before);

        UrlCatcher browser;
        QDesktopServices::setUrlHandler(u"https"_s, &browser, "open");
        controller.setWikiPageUrl(u"https://wiki.example.org/{page}"_s);
        const qsizetype tide = window.box(u"Tide 09:00"_s);
        window.timeline().boxes().at(tide).item->event->wiki = u"Tide Pools"_s;
        QCOMPARE(window.timeline().boxDetails(tide),
                 u"Tide\nHarbour\n09:00\u201310:00, 1 h\n[&BAAAAA=]"_s);
        QMenu *menu = controller.boxMenu(tide);
        menu->actions().at(2)->trigger();
        delete menu;
        QDesktopServices::unsetUrlHandler(u"https"_s);
        QCOMPARE(browser.opened, QList<QUrl>{QUrl(u"https://wiki.example.org/Tide%20Pools"_s)});
    }
};

QTEST_MAIN(TestTimelineKeyboard)
#include "tst_timelinekeyboard.moc"
