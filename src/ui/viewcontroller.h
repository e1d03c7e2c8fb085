#pragma once

#include "model/section.h"
#include "timetable/timetablelayout.h"
#include "ui/boxmenu.h"
#include "ui/clipboardmessage.h"
#include "ui/clocklabel.h"
#include "ui/findcontroller.h"
#include "ui/hourrulerwidget.h"
#include "ui/nextuplist.h"
#include "ui/remindermarks.h"
#include "ui/scroll/horizontalscroll.h"
#include "ui/sectioncolumn.h"
#include "ui/timelinewidget.h"
#include "ui/viewmessages.h"

#include <QGroupBox>
#include <QHash>
#include <QLabel>
#include <QObject>
#include <QPointer>
#include <QScrollArea>
#include <QSplitter>

#include <chrono>
#include <optional>

namespace eventtimer {

class Clock;
class ReminderChoices;

// The controller of the timetable window: the lifecycle of its view. It builds the widget tree
// in code, shows the loading until the sections are in, builds the timetable once, step by
// step, when it has them and the view has appeared, and keeps the marker and the clock current
// every minute. What it builds does its own work: the section column (SectionColumn), the time
// axis (TimelineWidget), the clipboard message, the box menu, the reminder marks, bringing a
// box into view (BoxReveal) and find (FindController).
class ViewController : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    // The timetable stands, and the marker is about to be placed for the first time: the moment
    // the day's chat-link occurrences are published.
    void timetableBuilt();
    // The player asked for the reminder preferences.
    void preferencesRequested();
    // The player asked to hide a section, or a category, by its name.
    void hideRequested(bool category, const QString &name);

public:
    static constexpr std::chrono::milliseconds timeUpdateInterval{60000};

    explicit ViewController(Clock &clock, QObject *parent = nullptr);
    ~ViewController() override;

    // The root view, built on first use.
    QWidget *view();

    // Once the views exist and before they are shown: the view shows that it is loading.
    void viewDidLoad();
    // What is being loaded, for the loading view ("the event document", "icons 3 of 40").
    void showProgress(const QString &text) { m_messages->showProgress(text); }
    // What the view shows, taken here once: the day's sections, the same document's sections
    // for the next day (the axis goes on after the day's end with their first hours), and why
    // there are none, when there are none. The timetable is built now if the view has appeared.
    void loadDidFinish(const SectionList &sections, const SectionList &followingDay = {},
                       const QString &problem = {});
    // What the empty timetable says when sections were loaded but the player's choices hide
    // them all; set before loadDidFinish. "No events could be loaded." without one.
    void setEmptyText(const QString &text)
    {
        view();
        m_messages->setEmptyText(text);
    }
    // The sections the player's choices hide: find says how many of its matches they hold.
    void setHiddenSections(const SectionList &hidden) { m_hidden = hidden; }
    // Next up beside the axis (shown or not), with only the marked events or all.
    void setNextUp(bool shown, bool markedOnly);
    // When the view is shown (its QEvent::Show): builds the timetable if the sections are in;
    // later appearances change nothing.
    void viewDidAppear();

    void buildTimetable();
    // Places the marker and sets the clock; and, while the view follows the present, scrolls
    // the axis so that the marker stands a sixth of its width from the left.
    void updateCurrentTime();
    // What the 60-second timer calls.
    void timeUpdate() { updateCurrentTime(); }
    // Whether every minute brings the axis back to the present (the default); without, the
    // minute moves only the marker and the clock, and the axis stays where the player put it.
    void setFollowsPresent(bool follows) { m_followsPresent = follows; }
    bool followsPresent() const { return m_followsPresent; }
    // The axis back at the present, as the minute brings it.
    void scrollToPresent();

    // The slot of a box's copy button (the timeline's copyRequested), its sender the box whose
    // button was pressed: its event's chat link becomes the clipboard's only content, as plain
    // text, and the clipboard message shows until the earliest pending hide. A box whose event
    // has no chat link has no button.
    void copyToClipboardWithSender(qsizetype pressedBox);
    // A chat link onto the clipboard as the copy button puts it, from elsewhere (a
    // notification): the message shows while the window is visible.
    void copyChatLink(const QString &link);

    // The player's reminder marks: shown as bells, set and removed from a box's menu and with R.
    void setReminderChoices(ReminderChoices *choices)
    {
        m_boxMenu->setReminderChoices(choices);
        m_marks->setChoices(choices);
        m_choices = choices;
    }
    // The settings' wiki address template ("https://…/{page}"): the box menu then opens an
    // event's wiki page.
    void setWikiPageUrl(const QString &urlTemplate) { m_boxMenu->setWikiPageUrl(urlTemplate); }
    // The window's actions for the whole view, offered in every box's menu too.
    void setViewActions(const QList<QAction *> &actions) { m_boxMenu->setViewActions(actions); }

    // Find's bar (Ctrl+F, see FindController), absent until find is first opened over a
    // timetable.
    FindBar *findBar() const { return m_find ? m_find->findBar() : nullptr; }
    HourRulerWidget *hourRuler() const { return m_hourRuler; }
    // Absent until Next up is first shown.
    NextUpList *nextUp() const { return m_nextUp; }

    QScrollArea *verticalScroll() const { return m_verticalScroll; }
    QWidget *verticalScrollContent() const { return m_verticalScrollContent; }
    SectionColumn *sectionsView() const { return m_sectionsView; }
    TimelineWidget *horizontalScrollContent() const { return m_horizontalScrollContent; }
    HorizontalScroll *horizontalScroll() const { return m_horizontalScroll; }
    // Absent until the first copy.
    ClipboardMessage *clipboardMessage() const { return m_clipboardMessage; }
    QLabel *emptyMessage() const { return m_messages->emptyMessage(); }
    // Under the empty message: why nothing could be loaded; while loading: what is loading.
    QLabel *statusMessage() const { return m_messages->statusMessage(); }

    const QHash<QString, QGroupBox *> &categories() const { return m_sectionsView->categories(); }
    // The marker's left edge on the time axis; absent until the first time update.
    std::optional<double> timeConstraint() const { return m_timeConstraint; }
    ClockLabel *timeLabel() const { return m_timeLabel; }
    bool isBuilt() const { return m_built; }

private:
    void loadView();

    // The steps of buildTimetable, in their order.
    void setUpClock(); // the clock label and the minute's tick
    void layOutSections();
    void buildSectionColumn();
    void buildTimeline();
    void sizeContents();

    Clock &m_clock;
    BoxMenu *m_boxMenu = nullptr;
    ReminderMarks *m_marks = nullptr;

    QPointer<QWidget> m_view;
    QPointer<QScrollArea> m_verticalScroll;
    QPointer<QWidget> m_verticalScrollContent;
    QPointer<SectionColumn> m_sectionsView;
    QPointer<TimelineWidget> m_horizontalScrollContent;
    QPointer<HorizontalScroll> m_horizontalScroll;
    QPointer<ClipboardMessage> m_clipboardMessage;
    QPointer<ViewMessages> m_messages;
    QPointer<QWidget> m_rulerRow;
    QPointer<QWidget> m_rulerIndent;
    QPointer<HourRulerWidget> m_hourRuler;
    QPointer<FindController> m_find;
    QPointer<QSplitter> m_body;
    QPointer<NextUpList> m_nextUp;
    ReminderChoices *m_choices = nullptr;

    SectionList m_sections;
    SectionList m_followingDay;
    SectionList m_hidden;
    std::optional<double> m_timeConstraint;
    QPointer<ClockLabel> m_timeLabel;
    TimetableGeometry m_geometry;
    QDateTime m_builtAt;
    bool m_loaded = false;
    bool m_appeared = false;
    bool m_built = false;
    bool m_followsPresent = true;
};

} // namespace eventtimer
