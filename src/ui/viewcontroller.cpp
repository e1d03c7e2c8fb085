#include "ui/viewcontroller.h"

#include "model/clock.h"
#include "timetable/hourruler.h"
#include "timetable/layoutconstants.h"
#include "timetable/timebase.h"
#include "ui/boxreveal.h"
#include "ui/eventhook.h"

#include <QHBoxLayout>
#include <QLocale>
#include <QScrollBar>
#include <QVBoxLayout>

#include <cmath>

using namespace Qt::StringLiterals;

namespace eventtimer {

ViewController::ViewController(Clock &clock, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_boxMenu(new BoxMenu(this))
    , m_marks(new ReminderMarks(this))
    , m_timeLabel(new ClockLabel)
{
    connect(m_boxMenu, &BoxMenu::preferencesRequested, this, &ViewController::preferencesRequested);
    connect(m_boxMenu, &BoxMenu::hideRequested, this, &ViewController::hideRequested);
}

ViewController::~ViewController()
{
    // The clock label belongs to the controller until the timeline takes it.
    if (m_timeLabel && !m_timeLabel->parent())
        delete m_timeLabel;
    delete m_view;
}

QWidget *ViewController::view()
{
    if (!m_view)
        loadView();
    return m_view;
}

void ViewController::loadView()
{
    m_view = new QWidget;
    auto *layout = new QVBoxLayout(m_view);
    layout->setContentsMargins(0, 0, 0, 0);

    // Above the rows: the find field, when open, and the hour ruler, beside the room of the
    // section column.
    m_rulerRow = new QWidget(m_view);
    auto *rulerLayout = new QHBoxLayout(m_rulerRow);
    rulerLayout->setContentsMargins(0, 0, 0, 0);
    rulerLayout->setSpacing(0);
    m_rulerIndent = new QWidget(m_rulerRow);
    m_hourRuler = new HourRulerWidget(m_rulerRow);
    rulerLayout->addWidget(m_rulerIndent);
    rulerLayout->addWidget(m_hourRuler, 1);
    m_rulerRow->hide();

    m_verticalScroll = new QScrollArea(m_view);
    m_verticalScroll->setWidgetResizable(true);
    m_verticalScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_verticalScroll->setFrameShape(QFrame::NoFrame);
    // Tab goes from Next up to the timeline's ring: the area shows no focus of its own.
    m_verticalScroll->setFocusPolicy(Qt::NoFocus);

    // The axis with its ruler, and beside it Next up while it is asked for.
    m_body = new QSplitter(m_view);
    auto *axis = new QWidget(m_body);
    auto *axisLayout = new QVBoxLayout(axis);
    axisLayout->setContentsMargins(0, 0, 0, 0);
    axisLayout->addWidget(m_rulerRow);
    axisLayout->addWidget(m_verticalScroll);
    m_body->addWidget(axis);
    m_body->setStretchFactor(0, 1);
    m_body->setChildrenCollapsible(false);
    // The day runs left to right in a mirrored layout too, the ruler's hours over its boxes.
    m_body->setLayoutDirection(Qt::LeftToRight);
    layout->addWidget(m_body, 1);

    // The section column and the time axis sit side by side with level tops, so every row
    // lines up with its label.
    m_verticalScrollContent = new QWidget;
    auto *row = new QHBoxLayout(m_verticalScrollContent);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    m_sectionsView = new SectionColumn(m_verticalScrollContent);
    m_horizontalScroll = new HorizontalScroll(m_verticalScrollContent);
    // The timeline inside takes the keys and scrolls the area itself; the area would only be
    // one more stop on the way there.
    m_horizontalScroll->setFocusPolicy(Qt::NoFocus);
    m_horizontalScrollContent = new TimelineWidget;
    m_horizontalScroll->setWidget(m_horizontalScrollContent);
    connect(m_horizontalScroll->horizontalScrollBar(), &QScrollBar::valueChanged, m_hourRuler,
            &HourRulerWidget::setScroll);
    row->addWidget(m_sectionsView, 0, Qt::AlignTop);
    row->addWidget(m_horizontalScroll, 1);
    m_verticalScroll->setWidget(m_verticalScrollContent);

    // While loading, and when nothing could be loaded: a message in the middle of the window.
    m_messages = new ViewMessages(m_view, layout);
}

void ViewController::viewDidLoad()
{
    view();
    m_body->hide();
    m_messages->showLoading();
}

void ViewController::loadDidFinish(const SectionList &sections, const SectionList &followingDay,
                                   const QString &problem)
{
    if (m_loaded)
        return;
    m_loaded = true;
    m_sections = sections;
    m_followingDay = followingDay;
    m_messages->setProblem(problem);
    if (m_appeared && !m_built)
        buildTimetable();
}

void ViewController::setNextUp(bool shown, bool markedOnly)
{
    view();
    if (m_nextUp)
        m_nextUp->setMarkedOnly(markedOnly);
    if (shown == (m_nextUp && m_nextUp->isVisibleTo(m_view)))
        return;
    if (!m_nextUp) {
        // Made when first asked for: most starts never show it.
        m_nextUp = new NextUpList(m_clock, m_body);
        m_nextUp->setChoices(m_choices);
        m_nextUp->setMarkedOnly(markedOnly);
        connect(m_nextUp, &NextUpList::copyRequested, this, &ViewController::copyChatLink);
        m_body->addWidget(m_nextUp);
        if (m_built)
            m_nextUp->setDay(m_geometry.eventBoxes, m_sections);
    }
    m_nextUp->setVisible(shown);
    if (!m_built)
        return;
    // Asked for now: the keys go to the list, and back to the axis when it goes.
    (shown ? static_cast<QWidget *>(m_nextUp) : m_horizontalScrollContent)
        ->setFocus(Qt::OtherFocusReason);
    // The axis is narrower or wider now: the present goes back to its place once it is laid out.
    if (m_followsPresent)
        QMetaObject::invokeMethod(this, &ViewController::scrollToPresent, Qt::QueuedConnection);
}

void ViewController::viewDidAppear()
{
    m_appeared = true;
    if (m_loaded && !m_built)
        buildTimetable();
}

void ViewController::buildTimetable()
{
    view();
    m_built = true;
    setUpClock();
    layOutSections();
    buildSectionColumn();
    buildTimeline();
    sizeContents();
    Q_EMIT timetableBuilt();
    updateCurrentTime();
    if (!m_followsPresent)
        scrollToPresent(); // the first sight of the day is the present
    // The keys act at once, on the box at the marker.
    m_horizontalScrollContent->setFocus(Qt::OtherFocusReason);
}

void ViewController::setUpClock()
{
    m_timeLabel->setParent(m_horizontalScrollContent);
    m_timeLabel->show();
    // The minute's tick, counted from the build.
    m_clock.callEvery(timeUpdateInterval, this, [this] { timeUpdate(); });
}

void ViewController::layOutSections()
{
    m_builtAt = m_clock.now();
    m_geometry = TimetableLayout::build(
        m_sections, m_clock.zone(), m_builtAt,
        [this](const QString &name) { return m_sectionsView->labelHeight(name); }, m_followingDay);
}

void ViewController::buildSectionColumn()
{
    m_sectionsView->build(m_geometry);
    connect(m_sectionsView, &SectionColumn::hideRequested, this, &ViewController::hideRequested);
    // The ruler's hours start where the time axis does.
    m_rulerIndent->setFixedWidth(m_sectionsView->width());
}

void ViewController::buildTimeline()
{
    m_horizontalScrollContent->setBoxes(m_geometry.eventBoxes);
    if (m_nextUp)
        m_nextUp->setDay(m_geometry.eventBoxes, m_sections);
    // The ruler's marks, made once with the boxes: each reads the axis as the boxes' texts do.
    const QList<RulerMark> marks = rulerMarks(m_clock.zone(), m_builtAt, m_geometry.axisWidth());
    m_horizontalScrollContent->setHourMarks(marks);
    m_hourRuler->setMarks(marks);
    if (m_geometry.followingDate.isValid())
        m_horizontalScrollContent->setDayEnd(
            static_cast<double>(TimetableLayout::dayEndMinute * LayoutConstants::minutesMultiplier),
            QLocale::c().toString(m_geometry.followingDate, u"ddd d MMM"));
    connect(m_horizontalScrollContent, &TimelineWidget::copyRequested, this,
            &ViewController::copyToClipboardWithSender);
    new BoxReveal(m_horizontalScrollContent, m_horizontalScroll, m_verticalScroll, this);
    m_boxMenu->setSections(m_sections);
    m_boxMenu->attach(m_horizontalScrollContent, m_view);
    m_marks->setTimeline(m_horizontalScrollContent);
    if (!m_sections.isEmpty()) {
        m_find = new FindController(m_view, m_horizontalScrollContent, m_horizontalScroll,
                                    m_verticalScroll, this);
        m_find->setHidden(m_hidden);
    }
}

void ViewController::sizeContents()
{
    // Each content at least as large as its scroll area, and as large as the day.
    const int contentHeight = static_cast<int>(std::ceil(m_geometry.contentHeight));
    const int scrollBar = m_horizontalScroll->horizontalScrollBar()->sizeHint().height();
    m_sectionsView->setFixedHeight(contentHeight);
    m_verticalScrollContent->setMinimumHeight(contentHeight + scrollBar);
    // The axis fills its viewport and reaches every box (its minimum); it is measured once.
    const int axisWidth = static_cast<int>(std::ceil(m_geometry.axisWidth()));
    m_horizontalScrollContent->setMinimumSize(axisWidth, contentHeight);
    const auto fitTimeline = [this] {
        m_horizontalScrollContent->resize(m_horizontalScroll->viewport()->size());
    };
    fitTimeline();
    new EventHook(m_horizontalScroll->viewport(), QEvent::Resize, fitTimeline);
    m_verticalScroll->verticalScrollBar()->setValue(0);

    const bool empty = m_sections.isEmpty();
    m_body->setVisible(!empty);
    m_rulerRow->setVisible(!empty);
    m_messages->showEmpty(empty);
}

void ViewController::updateCurrentTime()
{
    const QDateTime now = m_clock.now();
    const double x = timebase::markerX(now);
    m_timeConstraint = x;
    if (m_horizontalScrollContent) {
        m_horizontalScrollContent->setMarkerX(x);
        m_timeLabel->placeBeside(x);
    }
    m_timeLabel->setTime(timebase::clockText(now, m_clock.zone()));
    if (m_nextUp)
        m_nextUp->refresh();
    if (m_followsPresent)
        scrollToPresent();
}

void ViewController::scrollToPresent()
{
    if (!m_horizontalScroll || !m_timeConstraint)
        return;
    const double target = timebase::scrollTarget(*m_timeConstraint, m_horizontalScroll->width());
    m_horizontalScroll->horizontalScrollBar()->setValue(static_cast<int>(std::floor(target)));
}

void ViewController::copyChatLink(const QString &link)
{
    // Made at the first copy, over the view: a start has no use for it.
    if (!m_clipboardMessage)
        m_clipboardMessage = new ClipboardMessage(m_clock, view());
    m_clipboardMessage->copy(link);
}

void ViewController::copyToClipboardWithSender(qsizetype pressedBox)
{
    if (!m_horizontalScrollContent || pressedBox < 0 ||
        pressedBox >= m_horizontalScrollContent->boxes().size())
        return;
    if (const std::optional<QString> &link =
            m_horizontalScrollContent->boxes().at(pressedBox).event().chatLink)
        copyChatLink(*link);
}

} // namespace eventtimer
