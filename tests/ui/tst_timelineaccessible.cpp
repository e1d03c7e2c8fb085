#include "smalltimetable.h"
#include "timelinewidget.h"
#include "viewcontroller.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

QAccessibleInterface *itemOf(QAccessibleInterface *list, SmallTimetable &window, const QString &box)
{
    return list->child(static_cast<int>(window.box(box)));
}

} // namespace

class TestTimelineAccessible : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsEveryBox();
    void itemsDescribeTheirBox_data();
    void itemsDescribeTheirBox();
    void pressingAnItemCopiesItsLink();
    void itemUnderAPoint();
    void focusedItemFollowsTheRing();
};

void TestTimelineAccessible::listsEveryBox()
{
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    TimelineWidget &timeline = window.timeline();
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&timeline);
    QVERIFY(list);
    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->text(QAccessible::Name), u"Events of the day"_s);

    // One item per box, in box order, then the clock label.
    const qsizetype boxes = timeline.boxes().size();
    QCOMPARE(boxes, 9);
    QCOMPARE(list->childCount(), boxes + 1);
    QStringList names;
    for (int i = 0; i < boxes; ++i) {
        QAccessibleInterface *item = list->child(i);
        QVERIFY(item && item->isValid());
        QCOMPARE(item->role(), QAccessible::ListItem);
        QCOMPARE(item->parent(), list);
        QCOMPARE(list->indexOfChild(item), i);
        // The same item each time: assistive technology keeps track of it by identity.
        QCOMPARE(list->child(i), item);
        names.append(item->text(QAccessible::Name));
    }
    QCOMPARE(names, (QStringList{u"Tide"_s, u"Market"_s, u"Storm"_s, u"Hunt"_s, u"Night"_s,
                                 u"Siege"_s, u"Watch"_s, u"Siege"_s, u"Watch"_s}));
    QAccessibleInterface *clock = list->child(static_cast<int>(boxes));
    QCOMPARE(clock->text(QAccessible::Name), window.controller().timeLabel()->text());
    QCOMPARE(list->indexOfChild(clock), boxes);
    QVERIFY(!list->child(static_cast<int>(boxes) + 1));
}

void TestTimelineAccessible::itemsDescribeTheirBox_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("copyAction");

    QTest::newRow("with a link") << u"Tide 09:00"_s << u"09:00, Harbour"_s
                                 << u"Copy chat link of Tide"_s;
    QTest::newRow("without a link") << u"Market 10:00"_s << u"10:00, Harbour"_s << QString();
    QTest::newRow("with an empty link")
        << u"Storm 10:30"_s << u"10:30, Harbour"_s << u"Copy chat link of Storm"_s;
    QTest::newRow("later in another row")
        << u"Siege 12:00"_s << u"12:00, Keep"_s << u"Copy chat link of Siege"_s;
}

void TestTimelineAccessible::itemsDescribeTheirBox()
{
    QFETCH(QString, box);
    QFETCH(QString, description);
    QFETCH(QString, copyAction);
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    TimelineWidget &timeline = window.timeline();
    QAccessibleInterface *item =
        itemOf(QAccessible::queryAccessibleInterface(&timeline), window, box);

    QCOMPARE(item->text(QAccessible::Description), description);
    const QRectF rect = timeline.boxes().at(window.box(box)).rect;
    QCOMPARE(item->rect(),
             QRect(timeline.mapToGlobal(rect.topLeft().toPoint()), rect.toAlignedRect().size()));
    QVERIFY(item->state().focusable);

    QAccessibleActionInterface *actions = item->actionInterface();
    QVERIFY(actions);
    QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::setFocusAction()));
    const QString press = QAccessibleActionInterface::pressAction();
    QCOMPARE(actions->actionNames().contains(press), !copyAction.isEmpty());
    if (!copyAction.isEmpty()) {
        QCOMPARE(actions->localizedActionName(press), copyAction);
        QCOMPARE(actions->localizedActionDescription(press), copyAction);
        QVERIFY(!actions->keyBindingsForAction(press).isEmpty());
    }
}

void TestTimelineAccessible::pressingAnItemCopiesItsLink()
{
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&window.timeline());
    QGuiApplication::clipboard()->setText(u"earlier"_s);

    // An item without a link offers no press; asked anyway, it copies nothing.
    itemOf(list, window, u"Watch 12:30"_s)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(QGuiApplication::clipboard()->text(), u"earlier"_s);
    QVERIFY(window.controller().clipboardMessage()->isHidden());

    itemOf(list, window, u"Night 10:00"_s)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(QGuiApplication::clipboard()->text(), QString::fromUtf16(SmallTimetable::nightLink));
    QVERIFY(window.controller().clipboardMessage()->isVisible());
}

void TestTimelineAccessible::itemUnderAPoint()
{
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    TimelineWidget &timeline = window.timeline();
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&timeline);
    const QRectF tide = timeline.boxes().at(window.box(u"Tide 09:00"_s)).rect;
    const QPoint onTide = timeline.mapToGlobal(tide.center().toPoint());
    QCOMPARE(list->childAt(onTide.x(), onTide.y()), itemOf(list, window, u"Tide 09:00"_s));

    // The clock label lies over the boxes of the first row.
    const QLabel *label = window.controller().timeLabel();
    const QPoint onLabel = label->mapToGlobal(label->rect().center());
    QCOMPARE(list->childAt(onLabel.x(), onLabel.y()),
             QAccessible::queryAccessibleInterface(const_cast<QLabel *>(label)));
}

void TestTimelineAccessible::focusedItemFollowsTheRing()
{
    // What a screen reader asks when the focus moves. (Qt passes on the focus notifications
    // themselves only while one is listening, which no test platform does.)
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    TimelineWidget &timeline = window.timeline();
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&timeline);
    const auto focusedItems = [&] {
        QList<int> focused;
        for (int i = 0; i < timeline.boxes().size(); ++i)
            if (list->child(i)->state().focused)
                focused.append(i);
        return focused;
    };
    QVERIFY(focusedItems().isEmpty());

    timeline.setFocus(Qt::TabFocusReason);
    const int market = static_cast<int>(window.box(u"Market 10:00"_s));
    QCOMPARE(focusedItems(), QList<int>{market});
    QCOMPARE(list->focusChild(), list->child(market));

    QTest::keyClick(&timeline, Qt::Key_Down);
    const int night = static_cast<int>(window.box(u"Night 10:00"_s));
    QCOMPARE(focusedItems(), QList<int>{night});
    QCOMPARE(list->focusChild(), list->child(night));

    // A screen reader can move the ring itself.
    const int siege = static_cast<int>(window.box(u"Siege 12:00"_s));
    list->child(siege)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    QCOMPARE(*timeline.currentBox(), siege);
    QCOMPARE(focusedItems(), QList<int>{siege});

    // Elsewhere, no item has the focus, though the ring's box stays current.
    window.controller().verticalScroll()->setFocus(Qt::TabFocusReason);
    QVERIFY(focusedItems().isEmpty());
    QVERIFY(list->focusChild() != list->child(siege));
}

QTEST_MAIN(TestTimelineAccessible)
#include "tst_timelineaccessible.moc"
