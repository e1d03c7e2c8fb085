#include "manualclock.h"
#include "model/documentparser.h"
#include "ui/viewcontroller.h"

#include <QFile>
#include <QJsonDocument>
#include <QScrollBar>
#include <QTest>

using namespace eventtimer;
using eventtimer::testing::ManualClock;
using namespace Qt::StringLiterals;

namespace {

// A window over the sample document (or over nothing), seen at 12:34:59.9 UTC from UTC+2.
struct Window
{
    explicit Window(bool withSections)
        : controller(clock)
    {
        QObject::connect(&controller, &ViewController::timetableBuilt, &controller, [this] {
            // Handed over before the marker is first placed.
            builtBeforeMarker.append(!controller.timeConstraint().has_value());
        });
        controller.view()->resize(1200, 700);
        controller.viewDidLoad();
        // The view may show before the sections are in; the timetable waits for them.
        controller.view()->show();
        controller.viewDidAppear();
        QFile file(QStringLiteral(EVENTTIMER_SAMPLE_DIR) + u"/events.json"_s);
        if (withSections && file.open(QIODevice::ReadOnly))
            controller.loadDidFinish(
                parseDocument(QJsonDocument::fromJson(file.readAll()).array(),
                              {ScheduleDay::containing(clock.now(), clock.zone()), nullptr})
                    .sections);
        else
            controller.loadDidFinish({}, {}, u"connection refused"_s);
    }

    ManualClock clock{QDateTime(QDate(2026, 11, 22), QTime(12, 34, 59, 900), QTimeZone::utc()),
                      QTimeZone(7200)};
    QList<bool> builtBeforeMarker;
    ViewController controller;
};

} // namespace

class TestViewController : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void builtFromTheSample()
    {
        Window window(true);
        ViewController &controller = window.controller;
        QVERIFY(QTest::qWaitForWindowExposed(controller.view()));

        // Every occurrence of the day has its box, and rows line up with their labels: a box
        // starts 15 above its label's top.
        const TimelineWidget *timeline = controller.horizontalScrollContent();
        QCOMPARE(timeline->boxes().size(), 626);
        const QWidget *content = controller.verticalScrollContent();
        const QList<QLabel *> labels = controller.sectionsView()->findChildren<QLabel *>();
        QCOMPARE(labels.size(), 18);
        for (const EventBoxGeometry &box : timeline->boxes())
            QCOMPARE(timeline->mapTo(content, QPoint(0, qRound(box.rect.top()))).y(),
                     labels.at(box.row)->mapTo(content, QPoint(0, 0)).y() - 15);
        QCOMPARE(controller.categories().size(), 6);

        // Built once; a second appearance builds nothing more.
        QCOMPARE(window.builtBeforeMarker, QList<bool>{true});
        controller.view()->hide();
        controller.view()->show();
        controller.viewDidAppear();
        QCOMPARE(window.builtBeforeMarker.size(), 1);
    }

    void tickMovesTheMarkerAndScrolls()
    {
        Window window(true);
        ViewController &controller = window.controller;
        QVERIFY(QTest::qWaitForWindowExposed(controller.view()));
        QScrollBar *bar = controller.horizontalScroll()->horizontalScrollBar();
        // The marker a sixth of the width from the left edge.
        const double sixth = controller.horizontalScroll()->width() / 6.0;

        // 12:34:59.9 UTC is minute 754; the clock, 4 right of the marker, shows local time at
        // UTC+2.
        QCOMPARE(controller.timeConstraint(), std::optional<double>(7540));
        QCOMPARE(controller.timeLabel()->text(), u"14:34"_s);
        QCOMPARE(controller.timeLabel()->pos(), QPoint(7544, 3));
        QCOMPARE(bar->value(), qFloor(7540 - sixth));

        // Nothing moves between ticks; the user's scrolling stands until the next one.
        bar->setValue(100);
        window.clock.advance(std::chrono::milliseconds(59999));
        QCOMPARE(bar->value(), 100);
        window.clock.advance(std::chrono::milliseconds(1));
        QCOMPARE(controller.timeConstraint(), std::optional<double>(7550));
        QCOMPARE(controller.timeLabel()->text(), u"14:35"_s);
        QCOMPARE(controller.timeLabel()->x(), 7554);
        QCOMPARE(bar->value(), qFloor(7550 - sixth));

        // Not following the present, the minute moves only the marker and the clock; the axis
        // goes back to the present when asked.
        controller.setFollowsPresent(false);
        bar->setValue(100);
        window.clock.advance(std::chrono::seconds(60));
        QCOMPARE(controller.timeConstraint(), std::optional<double>(7560));
        QCOMPARE(bar->value(), 100);
        controller.scrollToPresent();
        QCOMPARE(bar->value(), qFloor(7560 - sixth));
        controller.setFollowsPresent(true);

        // Past UTC midnight the marker starts again at 0; the scroll stops at the content's edge.
        window.clock.setNow(QDateTime(QDate(2026, 11, 22), QTime(23, 59, 30), QTimeZone::utc()));
        window.clock.advance(std::chrono::seconds(60));
        QCOMPARE(controller.timeConstraint(), std::optional<double>(0));
        QCOMPARE(controller.timeLabel()->text(), u"02:00"_s);
        QCOMPARE(bar->value(), 0);
    }

    void emptyTimetable()
    {
        Window window(false);
        ViewController &controller = window.controller;
        QVERIFY(QTest::qWaitForWindowExposed(controller.view()));
        QVERIFY(controller.emptyMessage()->isVisible());
        QCOMPARE(controller.emptyMessage()->text(), u"No events could be loaded."_s);
        QVERIFY(controller.statusMessage()->isVisible());
        QCOMPARE(controller.statusMessage()->text(), u"connection refused"_s);
        QVERIFY(!controller.verticalScroll()->isVisible());
        QCOMPARE(window.builtBeforeMarker, QList<bool>{true});
    }
};

QTEST_MAIN(TestViewController)
#include "tst_viewcontroller.moc"
