#include "smalltimetable.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

class TestTimelineAccessible : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneItemPerBox()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        TimelineWidget &timeline = window.timeline();
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&timeline);
        QCOMPARE(list->role(), QAccessible::List);
        QCOMPARE(list->text(QAccessible::Name), u"Events of the day"_s);

        // One item per box, in box order, each kept (assistive technology tracks identity),
        // then the clock label.
        QStringList items;
        for (int i = 0; i < 9; ++i) {
            QAccessibleInterface *item = list->child(i);
            QCOMPARE(list->child(i), item);
            QCOMPARE(list->indexOfChild(item), i);
            QCOMPARE(item->parent(), list);
            items.append(item->text(QAccessible::Name) + u": "_s +
                         item->text(QAccessible::Description));
        }
        QCOMPARE(items.mid(0, 2),
                 (QStringList{u"Tide: 09:00, Harbour"_s, u"Market: 10:00, Harbour"_s}));
        QCOMPARE(items.at(7), u"Siege: 12:00, Keep"_s);
        QCOMPARE(list->childCount(), 10);
        QCOMPARE(list->child(9)->text(QAccessible::Name), window.controller().timeLabel()->text());

        // The item under a point; the clock label lies over the boxes.
        const QRect tide = timeline.boxes().first().rect.toAlignedRect();
        QCOMPARE(list->child(0)->rect(), QRect(timeline.mapToGlobal(tide.topLeft()), tide.size()));
        const QPoint onTide = list->child(0)->rect().center();
        QCOMPARE(list->childAt(onTide.x(), onTide.y()), list->child(0));
        const QPoint onLabel = list->child(9)->rect().center();
        QCOMPARE(list->childAt(onLabel.x(), onLabel.y()), list->child(9));
    }

    void pressingCopiesTheLink()
    {
        SmallTimetable window;
        QVERIFY(window.exposed());
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&window.timeline());
        const QString press = QAccessibleActionInterface::pressAction();
        QAccessibleActionInterface *tide = list->child(0)->actionInterface();
        QAccessibleActionInterface *market = list->child(1)->actionInterface();
        QCOMPARE(tide->localizedActionName(press), u"Copy chat link of Tide"_s);
        QVERIFY(!tide->keyBindingsForAction(press).isEmpty());
        QVERIFY(!market->actionNames().contains(press));

        // Asked anyway, an item without a link copies nothing.
        QGuiApplication::clipboard()->setText(u"earlier"_s);
        market->doAction(press);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"earlier"_s);
        tide->doAction(press);
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QString::fromUtf16(eventtimer::testing::SmallDay::tideLink));
        QVERIFY(window.controller().clipboardMessage()->isVisible());
    }

    void focusedItemFollowsTheRing()
    {
        // What a screen reader asks when the focus moves. (Qt passes on the focus notifications
        // only while one is listening, which no test platform does.)
        SmallTimetable window;
        QVERIFY(window.exposed());
        TimelineWidget &timeline = window.timeline();
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&timeline);
        const auto focused = [&] {
            QList<int> items;
            for (int i = 0; i < timeline.boxes().size(); ++i)
                if (list->child(i)->state().focused)
                    items.append(i);
            return items;
        };
        QVERIFY(focused().isEmpty());
        timeline.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&timeline, Qt::Key_Down);
        const int night = static_cast<int>(window.box(u"Night 10:00"_s));
        QCOMPARE(focused(), QList<int>{night});
        QCOMPARE(list->focusChild(), list->child(night));

        // A screen reader can move the ring itself.
        list->child(7)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
        QCOMPARE(*timeline.currentBox(), 7);
        QCOMPARE(focused(), QList<int>{7});
        window.controller().verticalScroll()->setFocus(Qt::TabFocusReason);
        QVERIFY(focused().isEmpty());
    }
};

QTEST_MAIN(TestTimelineAccessible)
#include "tst_timelineaccessible.moc"
