// The window's costs on a stress day of ~6 000 occurrences: building the timetable, and
// repainting the visible part of the time axis after a scroll, against repainting the same area
// in one colour, in wall time and in instructions, also at QT_SCALE_FACTOR=2.
#include "benchsupport.h"
#include "manualclock.h"
#include "model/documentparser.h"
#include "ui/timelinewidget.h"
#include "ui/viewcontroller.h"

#include <QElapsedTimer>
#include <QPaintEvent>
#include <QPainter>
#include <QProcess>
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
    qInfo("buildTimetable, with the next day's first hours: median %.1f ms (target 10 ms); "
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

namespace {

// One colour over its whole area: the least that repainting that area can cost.
class OneColour : public QWidget
{
protected:
    void paintEvent(QPaintEvent *event) override
    {
        QPainter(this).fillRect(event->rect(), palette().window());
    }
};

// The part of the time axis the window shows: its viewport cut by the vertical scroll area's.
QRect visibleAxis(ViewController &controller)
{
    const QWidget *timeline = controller.horizontalScrollContent();
    const QWidget *viewport = controller.horizontalScroll()->viewport();
    const QWidget *window = controller.verticalScroll()->viewport();
    return QRect(timeline->mapFrom(viewport, QPoint(0, 0)), viewport->size())
        .intersected(QRect(timeline->mapFrom(window, QPoint(0, 0)), window->size()));
}

// One repaint of each, timed, in a function of its own that callgrind counts alone.
Q_NEVER_INLINE double repaintAxis(QWidget &timeline, const QRect &area)
{
    QElapsedTimer timer;
    timer.start();
    timeline.repaint(area);
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

Q_NEVER_INLINE double repaintOneColour(QWidget &widget)
{
    QElapsedTimer timer;
    timer.start();
    widget.repaint();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

} // namespace

void BenchTimetable::repaintAfterScroll()
{
    // The window's size, in device-independent pixels; EVENTTIMER_BENCH_VIEW=WxH sets another
    // (the run at QT_SCALE_FACTOR=2 below).
    const QStringList asked =
        qEnvironmentVariable("EVENTTIMER_BENCH_VIEW", u"1400x900"_s).split(u'x');
    const QSize size(asked.value(0).toInt(), asked.value(1).toInt());
    ViewController controller(m_clock);
    controller.view()->resize(size);
    controller.viewDidLoad();
    controller.loadDidFinish(m_sections, m_followingDay);
    controller.view()->show();
    controller.viewDidAppear();
    QVERIFY(QTest::qWaitForWindowExposed(controller.view()));
    // Every name is cut to its box on its first paint; measure repaints of a day already seen
    // once, as scrolling back and forth does.
    for (const int value : {3300, 3000}) {
        controller.horizontalScroll()->horizontalScrollBar()->setValue(value);
        controller.horizontalScrollContent()->repaint(visibleAxis(controller));
    }
    constexpr int rounds = 60;
    QList<double> repaints;
    for (int run = 0; run < rounds; ++run) {
        controller.horizontalScroll()->horizontalScrollBar()->setValue(3000 + (run % 2) * 300);
        repaints.append(
            repaintAxis(*controller.horizontalScrollContent(), visibleAxis(controller)));
    }
    const double axis = median(repaints);
    const QRect visible = visibleAxis(controller);

    OneColour floor;
    floor.resize(visible.size());
    floor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&floor));
    QList<double> fills;
    for (int run = 0; run < rounds; ++run)
        fills.append(repaintOneColour(floor));
    const double oneColour = median(fills);
    // The target of this window's size and scale; none when another asked.
    const QString target = qEnvironmentVariable("EVENTTIMER_BENCH_TARGET", u"0.7 ms"_s);
    qInfo("repaint of the %dx%d visible axis (%dx%d pixels) after a 300-point scroll: median "
          "%.2f ms; one colour over the same area %.2f ms: %.1f x (target %s)",
          visible.width(), visible.height(), qRound(visible.width() * floor.devicePixelRatioF()),
          qRound(visible.height() * floor.devicePixelRatioF()), axis, oneColour, axis / oneColour,
          qPrintable(target));

    // The same repaints in instructions, where valgrind is installed.
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QStringList function{u"repaintAfterScroll"_s};
    const qint64 counted = instructions(function, environment, u"*repaintAxis*"_s);
    const qint64 counting = instructions(function, environment, u"*repaintOneColour*"_s);
    if (counted > 0 && counting > 0)
        qInfo("in instructions per repaint: axis %.2f M, one colour %.2f M: %.1f x",
              static_cast<double>(counted) / rounds / 1e6,
              static_cast<double>(counting) / rounds / 1e6,
              static_cast<double>(counted) / static_cast<double>(counting));

    // HiDPI screens at twice the pixels each way: a window of 2560x1440 pixels (1280x720 at
    // QT_SCALE_FACTOR=2), and one of 2560x1440 at that factor, 5120x2880 pixels, where copying
    // the screen's pixels at all takes as long as the first one's target.
    if (qEnvironmentVariableIsSet("EVENTTIMER_BENCH_VIEW"))
        return;
    for (const auto &[view, target] :
         {std::pair{u"1280x720"_s, u"3 ms"_s}, {u"2560x1440"_s, u"none"_s}}) {
        QProcess hidpi;
        QProcessEnvironment twice = environment;
        twice.insert(u"QT_SCALE_FACTOR"_s, u"2"_s);
        twice.insert(u"EVENTTIMER_BENCH_VIEW"_s, view);
        twice.insert(u"EVENTTIMER_BENCH_TARGET"_s, target);
        hidpi.setProcessEnvironment(twice);
        hidpi.start(QCoreApplication::applicationFilePath(), function);
        QVERIFY(hidpi.waitForFinished(1200000));
        for (const QByteArray &line : hidpi.readAllStandardOutput().split('\n'))
            if (line.startsWith("QINFO") && line.contains("repaint"))
                qInfo("at QT_SCALE_FACTOR=2, %s: %s", qPrintable(view),
                      line.mid(line.indexOf(')') + 2).constData());
    }
}

QTEST_MAIN(BenchTimetable)
#include "bench_timetable.moc"
