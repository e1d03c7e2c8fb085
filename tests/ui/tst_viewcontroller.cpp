#include "clock.h"
#include "documentparser.h"
#include "sequencetime.h"
#include "timelinewidget.h"
#include "viewcontroller.h"

#include <QFile>
#include <QJsonDocument>
#include <QScrollBar>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

SectionList sampleSections(const Clock &clock)
{
    QFile file(QStringLiteral(EVENTTIMER_SAMPLE_DIR) + u"/events.json"_s);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const ParsedDocument parsed =
        parseDocument(QJsonDocument::fromJson(file.readAll()).array(),
                      {ScheduleDay::containing(clock.now(), clock.zone()), nullptr});
    return parsed.sections;
}

// The top of a widget in the coordinates of the timetable's scrolling content.
int topIn(const QWidget *widget, const QWidget *content)
{
    return widget->mapTo(content, QPoint(0, 0)).y();
}

} // namespace

class TestViewController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtFromTheSample();
    void markerFollowsTheClock();
    void emptyTimetable();
    void buildsOnce();

private:
    struct Window
    {
        FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(12, 34, 59, 900), QTimeZone::utc()),
                         QTimeZone(2 * 3600)};
        int exports = 0;
        GlobalSequence exported;
        std::unique_ptr<ViewController> controller;
    };
    std::unique_ptr<Window> open(bool withSections);
};

std::unique_ptr<TestViewController::Window> TestViewController::open(bool withSections)
{
    auto window = std::make_unique<Window>();
    Window *raw = window.get();
    window->controller = std::make_unique<ViewController>(
        [raw, withSections] { return withSections ? sampleSections(raw->clock) : SectionList(); },
        [raw](const GlobalSequence &sequence) {
            ++raw->exports;
            raw->exported = sequence;
        },
        window->clock);
    QWidget *view = window->controller->view();
    view->resize(1200, 700);
    window->controller->viewDidLoad();
    view->show();
    window->controller->viewDidAppear();
    return window;
}

void TestViewController::builtFromTheSample()
{
    const auto window = open(true);
    ViewController &controller = *window->controller;
    QVERIFY(QTest::qWaitForWindowExposed(controller.view()));
    const SectionList &sections = controller.sections();
    QCOMPARE(sections.size(), 18);

    // Every occurrence has its box at its place on the axis.
    const TimelineWidget *timeline = controller.horizontalScrollContent();
    qsizetype occurrences = 0;
    QSet<const SequenceItem *> boxed;
    for (const EventBoxGeometry &box : timeline->boxes()) {
        const SequenceItem &item = *box.item;
        QCOMPARE(box.rect.left(), minutesFromDayStart(item, window->clock.zone()) * 10.0);
        QCOMPARE(box.rect.width(), item.duration * 10.0 - 3);
        boxed.insert(&item);
    }
    for (const auto &section : sections)
        for (const auto &item : section->sequence) {
            QVERIFY(boxed.contains(item.get()));
            ++occurrences;
        }
    QCOMPARE(timeline->boxes().size(), occurrences);

    // Rows line up with their labels: a box starts 15 above its label's top.
    const QWidget *content = controller.verticalScrollContent();
    const QList<QLabel *> labels = controller.sectionsView()->findChildren<QLabel *>();
    QCOMPARE(labels.size(), 18);
    for (const EventBoxGeometry &box : timeline->boxes()) {
        const QLabel *label = labels.at(box.row);
        QCOMPARE(label->text(), controller.geometry().sectionLabels.at(box.row).text);
        QCOMPARE(topIn(timeline, content) + qRound(box.rect.top()), topIn(label, content) - 15);
    }
    QCOMPARE(controller.categories().size(), 6);
    for (QGroupBox *box : controller.categories())
        QVERIFY(box->isVisible());

    // Copy buttons answer exactly for the boxes of events with a chat link.
    for (qsizetype i = 0; i < timeline->boxes().size(); ++i) {
        const bool hasLink = timeline->boxes().at(i).event().chatLink.has_value();
        const QRectF rect = timeline->boxes().at(i).rect;
        const QPointF button = timeline->copyButtonRect(i).center();
        if (rect.width() < 40)
            continue; // too narrow to hold a button beside its text
        QCOMPARE(timeline->copyButtonAt(button) == i, hasLink);
        QVERIFY(!timeline->copyButtonAt(QPointF(rect.left() + 2, rect.top() + 2)));
    }
    QCOMPARE(window->exports, 1);
    QCOMPARE(window->exported, controller.globalSequence());
    QVERIFY(!controller.globalSequence().empty());
    QVERIFY(controller.clipboardMessage()->isHidden());
}

void TestViewController::markerFollowsTheClock()
{
    const auto window = open(true);
    ViewController &controller = *window->controller;
    QVERIFY(QTest::qWaitForWindowExposed(controller.view()));

    // 12:34:59.9 UTC stands at minute 754; the clock shows local time at UTC+2.
    QCOMPARE(controller.timeConstraint(), std::optional<double>(7540));
    QCOMPARE(controller.timeLabel()->text(), u"14:34"_s);
    QCOMPARE(controller.timeLabel()->x(), 7540 + 1 + 3);
    QCOMPARE(controller.timeLabel()->y(), 3);
    const int visible = controller.horizontalScroll()->width();
    QCOMPARE(controller.horizontalScroll()->horizontalScrollBar()->value(),
             qFloor(7540 - visible / 6.0));

    window->clock.setNow(QDateTime(QDate(2026, 11, 22), QTime(0, 0, 59), QTimeZone::utc()));
    controller.timeUpdate();
    QCOMPARE(controller.timeConstraint(), std::optional<double>(0));
    QCOMPARE(controller.timeLabel()->text(), u"02:00"_s);
    // The target lies left of the content's start; the scroll area stops at its edge.
    QCOMPARE(controller.horizontalScroll()->horizontalScrollBar()->value(), 0);
}

void TestViewController::emptyTimetable()
{
    const auto window = open(false);
    ViewController &controller = *window->controller;
    QVERIFY(QTest::qWaitForWindowExposed(controller.view()));
    QVERIFY(controller.emptyMessage()->isVisible());
    QCOMPARE(controller.emptyMessage()->text(), u"No events could be loaded."_s);
    QVERIFY(controller.categories().isEmpty());
    QCOMPARE(window->exports, 1);
    QVERIFY(window->exported.empty());
    QCOMPARE(controller.geometry().contentHeight, 7.0);
}

void TestViewController::buildsOnce()
{
    const auto window = open(true);
    ViewController &controller = *window->controller;
    const qsizetype boxes = controller.horizontalScrollContent()->boxes().size();
    const qsizetype groupBoxes = controller.sectionsView()->findChildren<QGroupBox *>().size();
    controller.view()->hide();
    controller.view()->show();
    controller.viewDidAppear();
    QCOMPARE(controller.horizontalScrollContent()->boxes().size(), boxes);
    QCOMPARE(controller.sectionsView()->findChildren<QGroupBox *>().size(), groupBoxes);
    QCOMPARE(window->exports, 1);
}

QTEST_MAIN(TestViewController)
#include "tst_viewcontroller.moc"
