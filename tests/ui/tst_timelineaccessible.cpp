#include "smalltimetable.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

class TestTimelineAccessible : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsEveryBox();
    void itemsDescribeAndCopy_data();
    void itemsDescribeAndCopy();
    void focusedItemFollowsTheRing();
};

void TestTimelineAccessible::listsEveryBox()
{
    SmallTimetable window;
    QVERIFY(window.exposed());
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&window.timeline());
    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->text(QAccessible::Name), u"Events of the day"_s);

    // One item per box, in box order, then the clock label.
    QStringList names;
    for (int i = 0; i < 9; ++i) {
        QAccessibleInterface *item = list->child(i);
        QCOMPARE(item->role(), QAccessible::ListItem);
        QCOMPARE(item->parent(), list);
        QCOMPARE(list->indexOfChild(item), i);
        // The same item each time: assistive technology keeps track of it by identity.
        QCOMPARE(list->child(i), item);
        names.append(item->text(QAccessible::Name));
    }
    QCOMPARE(names, (QStringList{u"Tide"_s, u"Market"_s, u"Storm"_s, u"Hunt"_s, u"Night"_s,
                                 u"Siege"_s, u"Watch"_s, u"Siege"_s, u"Watch"_s}));
    QCOMPARE(list->childCount(), 10);
    QCOMPARE(list->child(9)->text(QAccessible::Name), window.controller().timeLabel()->text());

    // The item under a point; the clock label lies over the boxes.
    const QPoint onTide = window.timeline().mapToGlobal(
        window.timeline().boxes().at(window.box(u"Tide 09:00"_s)).rect.center().toPoint());
    QCOMPARE(list->childAt(onTide.x(), onTide.y()), list->child(0));
    const QLabel *label = window.controller().timeLabel();
    const QPoint onLabel = label->mapToGlobal(label->rect().center());
    QCOMPARE(list->childAt(onLabel.x(), onLabel.y()), list->child(9));
}

void TestTimelineAccessible::itemsDescribeAndCopy_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("copyAction");

    QTest::newRow("with a link") << u"Tide 09:00"_s << u"09:00, Harbour"_s
                                 << u"Copy chat link of Tide"_s;
    QTest::newRow("without a link") << u"Market 10:00"_s << u"10:00, Harbour"_s << QString();
    QTest::newRow("later in another row")
        << u"Siege 12:00"_s << u"12:00, Keep"_s << u"Copy chat link of Siege"_s;
}

void TestTimelineAccessible::itemsDescribeAndCopy()
{
    QFETCH(QString, box);
    QFETCH(QString, description);
    QFETCH(QString, copyAction);
    SmallTimetable window;
    QVERIFY(window.exposed());
    TimelineWidget &timeline = window.timeline();
    QAccessibleInterface *item =
        QAccessible::queryAccessibleInterface(&timeline)->child(static_cast<int>(window.box(box)));

    QCOMPARE(item->text(QAccessible::Description), description);
    const QRect rect = timeline.boxes().at(window.box(box)).rect.toAlignedRect();
    QCOMPARE(item->rect(), QRect(timeline.mapToGlobal(rect.topLeft()), rect.size()));
    QVERIFY(item->state().focusable);

    QAccessibleActionInterface *actions = item->actionInterface();
    const QString press = QAccessibleActionInterface::pressAction();
    QCOMPARE(actions->actionNames().contains(press), !copyAction.isEmpty());
    QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::setFocusAction()));
    // Asked to press anyway, an item without a link copies nothing.
    QGuiApplication::clipboard()->setText(u"earlier"_s);
    actions->doAction(press);
    QCOMPARE(QGuiApplication::clipboard()->text() != u"earlier"_s, !copyAction.isEmpty());
    if (!copyAction.isEmpty()) {
        QCOMPARE(actions->localizedActionName(press), copyAction);
        QVERIFY(!actions->keyBindingsForAction(press).isEmpty());
    }
}

void TestTimelineAccessible::focusedItemFollowsTheRing()
{
    // What a screen reader asks when the focus moves. (Qt passes on the focus notifications
    // themselves only while one is listening, which no test platform does.)
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
    const int siege = static_cast<int>(window.box(u"Siege 12:00"_s));
    list->child(siege)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    QCOMPARE(*timeline.currentBox(), siege);
    QCOMPARE(focused(), QList<int>{siege});

    window.controller().verticalScroll()->setFocus(Qt::TabFocusReason);
    QVERIFY(focused().isEmpty());
}

QTEST_MAIN(TestTimelineAccessible)
#include "tst_timelineaccessible.moc"
