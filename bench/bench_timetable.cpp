// The window's costs on a stress day of ~6 000 occurrences: building the timetable, and
// repainting the visible part of the time axis after a scroll.
#include "benchsupport.h"
#include "manualclock.h"
#include "model/documentparser.h"
#include "ui/timelinewidget.h"
#include "ui/viewcontroller.h"

#include <QElapsedTimer>
#include <QScrollBar>
#include <QTest>

#include <algorithm>

using namespace eventtimer;
using namespace Qt::StringLiterals;
using namespace eventtimer::bench;
using eventtimer::testing::ManualClock;

class BenchTimetable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void buildTimetable();
    void repaintAfterScroll();

private:
    ManualClock m_clock{QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc()),
                        QTimeZone::utc()};
    SectionList m_sections;
    // The same document from the next midnight: the axis goes on into it.
    SectionList m_followingDay;
};

void BenchTimetable::initTestCase()
{
    m_sections = parseDocument(bench::stressDocument(),
                               {ScheduleDay::containing(m_clock.now(), m_clock.zone()), nullptr})
                     .sections;
    m_followingDay =
        parseDocument(bench::stressDocument(),
                      {ScheduleDay::of(m_clock.now().date().addDays(1), m_clock.zone()), nullptr})
            .sections;
    qsizetype occurrences = 0;
    for (const auto &section : std::as_const(m_sections))
        occurrences += section->sequence.size();
    qInfo("stress day: %lld sections, %lld occurrences", static_cast<long long>(m_sections.size()),
          static_cast<long long>(occurrences));
    QVERIFY(occurrences > 6000);
}

void BenchTimetable::buildTimetable()
{
    QList<double> builds;
    for (int run = 0; run < 7; ++run) {
        ViewController controller(m_clock);
        controller.view()->resize(1400, 900);
        controller.viewDidLoad();
        controller.view()->show();
        controller.viewDidAppear();
        QElapsedTimer timer;
        timer.start();
        controller.loadDidFinish(m_sections, m_followingDay);
        builds.append(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        QCOMPARE_GT(controller.horizontalScrollContent()->boxes().size(), 6886);
    }
    qInfo("buildTimetable, with the next day's first hours: median %.1f ms (target 30 ms); "
          "peak RSS of this process %lld kB",
          median(builds), static_cast<long long>(peakResidentKb()));

    // Of which the arithmetic alone, without widgets:
    QList<double> layouts;
    for (int run = 0; run < 7; ++run) {
        QElapsedTimer timer;
        timer.start();
        const TimetableGeometry geometry = TimetableLayout::build(
            m_sections, m_clock.zone(), m_clock.now(), [](const QString &) { return 17.0; },
            m_followingDay);
        layouts.append(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        QCOMPARE_GT(geometry.eventBoxes.size(), 6886);
    }
    qInfo("of which the layout arithmetic: median %.1f ms", median(layouts));
}

void BenchTimetable::repaintAfterScroll()
{
    ViewController controller(m_clock);
    controller.view()->resize(1400, 900);
    controller.viewDidLoad();
    controller.loadDidFinish(m_sections, m_followingDay);
    controller.view()->show();
    controller.viewDidAppear();
    QVERIFY(QTest::qWaitForWindowExposed(controller.view()));
    TimelineWidget *timeline = controller.horizontalScrollContent();
    QScrollBar *bar = controller.horizontalScroll()->horizontalScrollBar();
    QWidget *viewport = controller.horizontalScroll()->viewport();

    // Every name is cut to its box on its first paint; measure repaints of a day already seen
    // once, as scrolling back and forth does.
    bar->setValue(3000);
    timeline->repaint();
    QList<double> repaints;
    for (int run = 0; run < 60; ++run) {
        bar->setValue(3000 + (run % 2) * 300);
        // What the window shows: the time axis's viewport cut by the vertical scroll area's.
        QWidget *window = controller.verticalScroll()->viewport();
        const QRect visible =
            QRect(timeline->mapFrom(viewport, QPoint(0, 0)), viewport->size())
                .intersected(QRect(timeline->mapFrom(window, QPoint(0, 0)), window->size()));
        QElapsedTimer timer;
        timer.start();
        timeline->repaint(visible);
        repaints.append(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    QWidget *window = controller.verticalScroll()->viewport();
    qInfo("repaint of the %dx%d visible axis after a 300-point scroll: median %.2f ms "
          "(target 3 ms)",
          viewport->width(), window->height(), median(repaints));
}

QTEST_MAIN(BenchTimetable)
#include "bench_timetable.moc"
