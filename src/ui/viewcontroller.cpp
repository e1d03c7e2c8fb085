#include "ui/viewcontroller.h"

#include "model/clock.h"
#include "model/reminderchoices.h"
#include "model/wikipage.h"
#include "timetable/find.h"
#include "timetable/hourruler.h"
#include "timetable/layoutconstants.h"
#include "timetable/timebase.h"
#include "ui/categorybox.h"
#include "ui/eventhook.h"

#include <QAction>
#include <QClipboard>
#include <QDesktopServices>
#include <QGraphicsDropShadowEffect>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLocale>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QtMath>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

using C = LayoutConstants;
using W = WindowConstants;

QLabel *plainLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    return label;
}

} // namespace

ViewController::ViewController(SuiteExporter exportToSharedSuite, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_exportToSharedSuite(std::move(exportToSharedSuite))
    , m_clock(clock)
    , m_timeLabel(new QLabel)
{
    m_timeLabel->setTextFormat(Qt::PlainText);
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
    layout->addWidget(m_rulerRow);
    const auto addAction = [this](const QList<QKeySequence> &keys, auto slot) {
        auto *action = new QAction(m_view);
        action->setShortcuts(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(action, &QAction::triggered, this, slot);
        m_view->addAction(action);
    };
    addAction(QKeySequence::keyBindings(QKeySequence::Find), [this] { openFind(); });
    addAction(QKeySequence::keyBindings(QKeySequence::FindNext), [this] { stepFind(true); });
    addAction(QKeySequence::keyBindings(QKeySequence::FindPrevious), [this] { stepFind(false); });

    m_verticalScroll = new QScrollArea(m_view);
    m_verticalScroll->setWidgetResizable(true);
    m_verticalScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_verticalScroll->setFrameShape(QFrame::NoFrame);
    layout->addWidget(m_verticalScroll);

    // The section column and the time axis sit side by side with level tops, so every row
    // lines up with its label.
    m_verticalScrollContent = new QWidget;
    auto *row = new QHBoxLayout(m_verticalScrollContent);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    m_sectionsView = new QWidget(m_verticalScrollContent);
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
    m_emptyMessage = plainLabel(u"No events could be loaded."_s, m_view);
    m_emptyMessage->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    m_emptyMessage->hide();
    layout->addWidget(m_emptyMessage, 1);
    m_statusMessage = plainLabel(QString(), m_view);
    m_statusMessage->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_statusMessage->setWordWrap(true);
    m_statusMessage->setForegroundRole(QPalette::PlaceholderText);
    m_statusMessage->hide();
    layout->addWidget(m_statusMessage, 1);

    m_clipboardMessage = new QFrame(m_view);
    m_clipboardMessage->setFrameShape(QFrame::StyledPanel);
    m_clipboardMessage->setAutoFillBackground(true);
    auto *messageLayout = new QHBoxLayout(m_clipboardMessage);
    messageLayout->addWidget(
        plainLabel(u"Chat link copied to the clipboard"_s, m_clipboardMessage));
    m_clipboardMessage->adjustSize();
    m_clipboardMessage->hide();
    const auto placeMessage = [this] {
        const QSize size = m_clipboardMessage->sizeHint();
        m_clipboardMessage->setGeometry((m_view->width() - size.width()) / 2,
                                        m_view->height() - size.height() -
                                            W::clipboardMessageBottom,
                                        size.width(), size.height());
    };
    new EventHook(m_view, QEvent::Resize, placeMessage);
}

void ViewController::viewDidLoad()
{
    view();
    m_verticalScroll->hide();
    m_statusMessage->setAlignment(Qt::AlignCenter);
    m_statusMessage->setText(u"Loading the events\u2026"_s);
    m_statusMessage->show();
}

void ViewController::showProgress(const QString &text)
{
    if (!m_loaded)
        m_statusMessage->setText(text);
}

void ViewController::loadDidFinish(const SectionList &sections, const QString &problem)
{
    if (m_loaded)
        return;
    m_loaded = true;
    m_sections = sections;
    m_statusMessage->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_statusMessage->setText(problem);
    if (m_appeared && !m_built)
        buildTimetable();
}

void ViewController::viewDidAppear()
{
    m_appeared = true;
    if (m_loaded && !m_built)
        buildTimetable();
}

QSize ViewController::labelSize(const QString &name) const
{
    // The natural size of a plain, right-aligned label showing the name. Shaping a text is the
    // costliest part of a build: each name is measured once.
    auto known = m_labelSizes.constFind(name);
    if (known == m_labelSizes.cend())
        known = m_labelSizes.insert(name, QFontMetrics(m_sectionsView->font())
                                              .boundingRect(QRect(), Qt::AlignRight, name)
                                              .size());
    return *known;
}

double ViewController::labelHeight(const QString &name) const
{
    return labelSize(name).height();
}

int ViewController::sectionColumnWidth() const
{
    const QFontMetrics metrics(m_sectionsView->font());
    int widest = 0;
    for (const auto &section : m_sections) {
        widest = std::max(widest, labelSize(section->name).width());
        widest =
            std::max(widest, metrics.horizontalAdvance(section->category) + W::categoryTitleRoom);
    }
    // The labels sit two margins inside their boxes, which sit inside the column.
    const int needed = widest + static_cast<int>(4 * C::boxMargin + 2 * C::categoryDistance) +
                       W::sectionColumnSlack;
    return std::clamp(needed, W::minSectionColumnWidth, W::maxSectionColumnWidth);
}

void ViewController::placeSectionColumn()
{
    const double width = m_sectionsView->width();
    for (qsizetype i = 0; i < m_geometry.categoryBoxes.size(); ++i) {
        const CategoryBoxGeometry &geometry = m_geometry.categoryBoxes.at(i);
        QGroupBox *box = m_categories.value(geometry.title);
        box->setGeometry(geometry.rect(width).toAlignedRect());
    }
    for (qsizetype i = 0; i < m_geometry.sectionLabels.size(); ++i) {
        const SectionLabelGeometry &geometry = m_geometry.sectionLabels.at(i);
        const QRectF box = m_geometry.categoryBoxes.at(geometry.categoryBox).rect(width);
        m_sectionLabels.at(i)->setGeometry(
            geometry.rect(width).translated(-box.topLeft()).toAlignedRect());
    }
}

void ViewController::buildTimetable()
{
    view();
    m_built = true;
    setUpClipboardMessage();
    setUpClock();
    startTimer();
    layOutSections();
    buildSectionColumn();
    buildTimeline();
    sizeContents();
    if (m_exportToSharedSuite)
        m_exportToSharedSuite(m_globalSequence, m_builtAt);
    updateCurrentTime();
}

void ViewController::setUpClipboardMessage()
{
    // The clipboard message waits, hidden, with its shadow.
    auto *shadow = new QGraphicsDropShadowEffect(m_clipboardMessage);
    shadow->setBlurRadius(10.0);
    shadow->setColor(Qt::black);
    m_clipboardMessage->setGraphicsEffect(shadow);
    m_clipboardMessage->hide();
}

void ViewController::setUpClock()
{
    // The clock label stands beside the marker, near the top of the time axis; the marker
    // itself is painted by the timeline.
    m_timeLabel->setParent(m_horizontalScrollContent);
    m_timeLabel->setAutoFillBackground(true);
    QPalette palette = m_timeLabel->palette();
    palette.setColor(QPalette::Window, Qt::red);
    palette.setColor(QPalette::WindowText, Qt::white);
    m_timeLabel->setPalette(palette);
    m_timeLabel->show();
}

void ViewController::startTimer()
{
    m_clock.callEvery(timeUpdateInterval, this, [this] { timeUpdate(); });
}

void ViewController::layOutSections()
{
    m_builtAt = m_clock.now();
    m_geometry = TimetableLayout::build(
        m_sections, m_clock.zone(), m_builtAt,
        [this](const QString &name) { return labelHeight(name); }, m_followingDay);
    // The sections in their list order, whatever the grouping on screen.
    m_globalSequence = eventtimer::globalSequence(m_sections, m_clock.zone());
}

void ViewController::buildSectionColumn()
{
    // Category boxes and their labels are real widgets: a few dozen at most.
    const int columnWidth = sectionColumnWidth();
    m_sectionsView->setFixedWidth(columnWidth);
    m_rulerIndent->setFixedWidth(columnWidth);
    for (const CategoryBoxGeometry &geometry : std::as_const(m_geometry.categoryBoxes)) {
        auto *box = new CategoryBox(geometry.title, m_sectionsView);
        m_categories.insert(geometry.title, box);
        box->show(); // the column may already be on screen
    }
    for (const SectionLabelGeometry &geometry : std::as_const(m_geometry.sectionLabels)) {
        const CategoryBoxGeometry &category = m_geometry.categoryBoxes.at(geometry.categoryBox);
        QLabel *label = plainLabel(geometry.text, m_categories.value(category.title));
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        label->setToolTip(geometry.text.toHtmlEscaped());
        label->show();
        m_sectionLabels.append(label);
    }
    placeSectionColumn();
    new EventHook(m_sectionsView, QEvent::Resize, [this] { placeSectionColumn(); });
}

void ViewController::buildTimeline()
{
    m_horizontalScrollContent->setBoxes(m_geometry.eventBoxes);
    // The ruler's marks, made once with the boxes: each reads the axis as the boxes' texts do.
    const QList<RulerMark> marks = rulerMarks(m_clock.zone(), m_builtAt, m_geometry.axisWidth());
    m_horizontalScrollContent->setHourMarks(marks);
    m_hourRuler->setMarks(marks);
    if (m_geometry.followingDate.isValid())
        m_horizontalScrollContent->setDayEnd(
            static_cast<double>(TimetableLayout::dayEndMinute * C::minutesMultiplier),
            QLocale::c().toString(m_geometry.followingDate, u"ddd d MMM"));
    connect(m_horizontalScrollContent, &TimelineWidget::copyRequested, this,
            &ViewController::copyToClipboardWithSender);
    connect(m_horizontalScrollContent, &TimelineWidget::revealRequested, this,
            &ViewController::revealBox);
    connect(m_horizontalScrollContent, &TimelineWidget::menuRequested, this,
            [this](qsizetype box, QPoint at) { boxMenu(box)->popup(at); });
    connect(m_horizontalScrollContent, &TimelineWidget::markToggleRequested, this,
            [this](qsizetype box) {
                if (m_choices)
                    m_choices->toggle(m_horizontalScrollContent->boxes().at(box).event().name);
            });
    showMarks();
}

void ViewController::sizeContents()
{
    // Each content at least as large as its scroll area, and as large as the day.
    const int contentHeight = static_cast<int>(std::ceil(m_geometry.contentHeight));
    const int scrollBar = m_horizontalScroll->horizontalScrollBar()->sizeHint().height();
    m_sectionsView->setFixedHeight(contentHeight);
    m_verticalScrollContent->setMinimumHeight(contentHeight + scrollBar);
    // The axis fills its viewport and reaches every box; it is measured once.
    const int axisWidth = static_cast<int>(std::ceil(m_geometry.axisWidth()));
    m_horizontalScrollContent->setMinimumSize(axisWidth, contentHeight);
    const auto fitTimeline = [this, axisWidth, contentHeight] {
        const QSize viewport = m_horizontalScroll->viewport()->size();
        m_horizontalScrollContent->resize(std::max(axisWidth, viewport.width()),
                                          std::max(contentHeight, viewport.height()));
    };
    fitTimeline();
    new EventHook(m_horizontalScroll->viewport(), QEvent::Resize, fitTimeline);
    m_verticalScroll->verticalScrollBar()->setValue(0);

    const bool empty = m_sections.isEmpty();
    m_verticalScroll->setVisible(!empty);
    m_rulerRow->setVisible(!empty);
    m_emptyMessage->setVisible(empty);
    m_statusMessage->setVisible(empty && !m_statusMessage->text().isEmpty());
}

void ViewController::updateCurrentTime()
{
    const QDateTime now = m_clock.now();
    const double x = timebase::markerX(now);
    m_timeConstraint = x;
    if (m_horizontalScrollContent) {
        m_horizontalScrollContent->setMarkerX(x);
        m_timeLabel->move(static_cast<int>(x + 1.0 + C::eventDistance),
                          static_cast<int>(C::eventDistance));
    }
    m_timeLabel->setText(timebase::clockText(now, m_clock.zone()));
    m_timeLabel->adjustSize();
    if (m_horizontalScroll) {
        const double target = timebase::scrollTarget(x, m_horizontalScroll->width());
        m_horizontalScroll->horizontalScrollBar()->setValue(static_cast<int>(std::floor(target)));
    }
}

void ViewController::timeUpdate()
{
    updateCurrentTime();
    Q_EMIT timeUpdated();
}

void ViewController::copyToClipboardWithSender(qsizetype box)
{
    if (!m_horizontalScrollContent || box < 0 || box >= m_horizontalScrollContent->boxes().size())
        return;
    const std::optional<QString> &link =
        m_horizontalScrollContent->boxes().at(box).event().chatLink;
    if (!link)
        return;
    copyChatLink(*link);
}

void ViewController::copyChatLink(const QString &link)
{
    // One plain-text item, which replaces whatever the clipboard held. An empty link is
    // copied as it is, and the message shows all the same.
    QGuiApplication::clipboard()->setText(link);
    if (!m_view || !m_view->isVisible())
        return;
    m_clipboardMessage->show();
    m_clipboardMessage->raise();
    // Every copy schedules its own hide and none is ever cancelled: the earliest one pending
    // ends the showing, even right after a later copy.
    m_clock.callAfter(clipboardMessageInterval, this, [this] { hideClipboardMessage(); });
}

void ViewController::setReminderChoices(ReminderChoices *choices)
{
    m_choices = choices;
    connect(choices, &ReminderChoices::changed, this, &ViewController::showMarks);
    showMarks();
}

void ViewController::showMarks()
{
    if (m_horizontalScrollContent && m_choices)
        m_horizontalScrollContent->setMarkedNames(m_choices->markedSet());
}

QMenu *ViewController::boxMenu(qsizetype box)
{
    auto *menu = new QMenu(m_view);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (!m_horizontalScrollContent || box < 0 || box >= m_horizontalScrollContent->boxes().size())
        return menu;
    const std::shared_ptr<Event> event = m_horizontalScrollContent->boxes().at(box).item->event;
    QAction *copyLink =
        menu->addAction(u"Copy chat link"_s, this, [this, box] { copyToClipboardWithSender(box); });
    copyLink->setEnabled(event->chatLink.has_value());
    menu->addAction(u"Copy name"_s, this,
                    [event] { QGuiApplication::clipboard()->setText(event->name); });
    if (!m_wikiPageUrl.isEmpty()) {
        const std::optional<QUrl> page = wikiPageUrl(m_wikiPageUrl, event->wiki);
        QAction *open = menu->addAction(u"Open wiki page"_s, this, [page] {
            if (page)
                QDesktopServices::openUrl(*page);
        });
        open->setEnabled(page.has_value());
    }
    if (m_choices) {
        menu->addSeparator();
        QAction *remind = menu->addAction(u"Remind me of "_s + event->name, this, [this, event] {
            if (m_choices)
                m_choices->toggle(event->name);
        });
        remind->setCheckable(true);
        remind->setChecked(m_choices->isMarked(event->name));
        menu->addAction(u"Reminder preferences\u2026"_s, this,
                        [this] { Q_EMIT preferencesRequested(); });
    }
    return menu;
}

void ViewController::openFind()
{
    if (!m_built || m_sections.isEmpty())
        return;
    if (!m_findBar) {
        // Made when first asked for: a start has no use for it.
        m_findBar = new FindBar(m_view);
        static_cast<QVBoxLayout *>(m_view->layout())->insertWidget(0, m_findBar);
        connect(m_findBar, &FindBar::queryChanged, this, &ViewController::findQueryChanged);
        connect(m_findBar, &FindBar::stepRequested, this, &ViewController::stepFind);
        connect(m_findBar, &FindBar::closeRequested, this, &ViewController::closeFind);
    }
    if (!m_scrollBeforeFind)
        m_scrollBeforeFind = QPoint(m_horizontalScroll->horizontalScrollBar()->value(),
                                    m_verticalScroll->verticalScrollBar()->value());
    m_findBar->show();
    m_findBar->field()->setFocus(Qt::ShortcutFocusReason);
    m_findBar->field()->selectAll();
}

void ViewController::findQueryChanged(const QString &query)
{
    const QList<EventBoxGeometry> &boxes = m_horizontalScrollContent->boxes();
    m_findMatches = findMatches(boxes, query);
    m_findCurrent = firstMatchFrom(boxes, m_findMatches, m_timeConstraint.value_or(0.0));
    showFind();
}

void ViewController::stepFind(bool forward)
{
    if (!m_findBar || !m_findBar->isVisible()) {
        openFind();
        return;
    }
    if (!m_findCurrent)
        return;
    m_findCurrent = stepMatch(*m_findCurrent, m_findMatches.size(), forward);
    showFind();
}

void ViewController::showFind()
{
    const bool finding = !m_findBar->field()->text().isEmpty();
    const std::optional<qsizetype> box =
        m_findCurrent ? std::optional(m_findMatches.at(*m_findCurrent)) : std::nullopt;
    m_horizontalScrollContent->setFindState(finding ? std::optional(m_findMatches) : std::nullopt,
                                            box);
    m_findBar->showCount(m_findCurrent.value_or(0), m_findMatches.size());
    if (box)
        revealBox(*box);
}

void ViewController::closeFind()
{
    if (!m_findBar || !m_findBar->isVisible())
        return;
    m_findBar->hide();
    m_findMatches.clear();
    m_findCurrent.reset();
    m_horizontalScrollContent->setFindState(std::nullopt, std::nullopt);
    // The keyboard goes back to the axis, which may bring its ring into view; then the view is
    // put back as it was.
    m_horizontalScrollContent->setFocus(Qt::OtherFocusReason);
    if (m_scrollBeforeFind) {
        m_horizontalScroll->horizontalScrollBar()->setValue(m_scrollBeforeFind->x());
        m_verticalScroll->verticalScrollBar()->setValue(m_scrollBeforeFind->y());
        m_scrollBeforeFind.reset();
    }
}

void ViewController::hideClipboardMessage()
{
    if (m_clipboardMessage)
        m_clipboardMessage->hide();
}

void ViewController::revealBox(qsizetype box)
{
    if (!m_horizontalScrollContent || box < 0 || box >= m_horizontalScrollContent->boxes().size())
        return;
    // Room around the box, so that its focus ring does not touch the edge of the view.
    constexpr double padding = 8.0;
    const QRectF rect = m_horizontalScrollContent->boxes().at(box).rect;

    // Sideways: as much of the box as the view holds. A box that shows that much already
    // stays where it is, even a long one seen only in its middle; otherwise its start comes
    // into view, where its name and time are.
    const double viewportLeft = m_horizontalScroll->horizontalScrollBar()->value();
    const double viewportWidth = m_horizontalScroll->viewport()->width();
    const double needed = std::min(rect.width(), std::max(0.0, viewportWidth - 2 * padding));
    const double shown =
        std::min(rect.right(), viewportLeft + viewportWidth) - std::max(rect.left(), viewportLeft);
    if (shown < needed)
        m_horizontalScroll->ensureVisible(qRound(rect.left() + needed / 2),
                                          qRound(rect.center().y()), qRound(needed / 2 + padding),
                                          0);

    // Up and down: the whole box, in the coordinates of the vertically scrolling content.
    const int top =
        m_horizontalScrollContent->mapTo(m_verticalScrollContent, QPoint(0, qFloor(rect.top())))
            .y();
    const int halfHeight = qCeil(rect.height() / 2);
    m_verticalScroll->ensureVisible(0, top + halfHeight, 0, halfHeight + qRound(padding));
}

} // namespace eventtimer
