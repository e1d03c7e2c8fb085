#pragma once

#include "layoutconstants.h"
#include "scroll/horizontalscroll.h"
#include "section.h"
#include "timelinewidget.h"
#include "timetablelayout.h"

#include <QHash>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QScrollArea>
#include <QTimer>

namespace eventtimer {

class Clock;

// The controller of the timetable window. It builds its views in code, takes the sections at
// load, builds the timetable once when the view first appears, and keeps the marker and the
// clock current every minute.
class ViewController : public QObject
{
    Q_OBJECT

public:
    using SectionSource = std::function<SectionList()>;
    using SuiteExporter = std::function<void(const GlobalSequence &)>;

    static constexpr double categoryDistance = LayoutConstants::categoryDistance;
    static constexpr double sectionDistance = LayoutConstants::sectionDistance;
    static constexpr double boxTitleHeight = LayoutConstants::boxTitleHeight;
    static constexpr double boxMargin = LayoutConstants::boxMargin;
    static constexpr double eventDistance = LayoutConstants::eventDistance;
    static constexpr qint64 minutesMultiplier = LayoutConstants::minutesMultiplier;
    static constexpr int timeUpdateIntervalMs = 60000;
    // How long the clipboard message shows after each copy.
    static constexpr int clipboardMessageIntervalMs = 3000;

    ViewController(SectionSource loadSections, SuiteExporter exportToSharedSuite,
                   const Clock &clock, QObject *parent = nullptr);
    ~ViewController() override;

    // The root view, built on first use.
    QWidget *view();

    // The sections are taken here, once.
    void viewDidLoad();
    // The first appearance builds the timetable; later ones change nothing.
    void viewDidAppear();

    void buildTimetable();
    void updateCurrentTime();
    void timeUpdate();

    // What a box's copy button does: its event's chat link becomes the clipboard's only
    // content, as plain text, and the clipboard message shows until the earliest pending hide.
    // A box whose event has no chat link has no button, and nothing happens.
    void copyToClipboardWithSender(qsizetype box);
    void hideClipboardMessage();

    QScrollArea *verticalScroll() const { return m_verticalScroll; }
    QWidget *verticalScrollContent() const { return m_verticalScrollContent; }
    QWidget *sectionsView() const { return m_sectionsView; }
    TimelineWidget *horizontalScrollContent() const { return m_horizontalScrollContent; }
    HorizontalScroll *horizontalScroll() const { return m_horizontalScroll; }
    QFrame *clipboardMessage() const { return m_clipboardMessage; }
    QLabel *emptyMessage() const { return m_emptyMessage; }

    const SectionList &sections() const { return m_sections; }
    const QHash<QString, QGroupBox *> &categories() const { return m_categories; }
    const GlobalSequence &globalSequence() const { return m_globalSequence; }
    std::optional<double> timeConstraint() const { return m_timeConstraint; }
    QLabel *timeLabel() const { return m_timeLabel; }
    bool isBuilt() const { return m_built; }
    const TimetableGeometry &geometry() const { return m_geometry; }

private:
    void loadView();
    void placeSectionColumn();
    double labelHeight(const QString &name) const;
    int sectionColumnWidth() const;
    // Scrolls both areas so that the box with the keyboard's focus ring is in view.
    void revealBox(qsizetype box);

    SectionSource m_loadSections;
    SuiteExporter m_exportToSharedSuite;
    const Clock &m_clock;

    QPointer<QWidget> m_view;
    QPointer<QScrollArea> m_verticalScroll;
    QPointer<QWidget> m_verticalScrollContent;
    QPointer<QWidget> m_sectionsView;
    QPointer<TimelineWidget> m_horizontalScrollContent;
    QPointer<HorizontalScroll> m_horizontalScroll;
    QPointer<QFrame> m_clipboardMessage;
    QPointer<QLabel> m_emptyMessage;

    SectionList m_sections;
    QHash<QString, QGroupBox *> m_categories;
    GlobalSequence m_globalSequence;
    std::optional<double> m_timeConstraint;
    QPointer<QLabel> m_timeLabel;
    QList<QLabel *> m_sectionLabels;
    TimetableGeometry m_geometry;
    QTimer *m_timer = nullptr;
    bool m_built = false;
};

} // namespace eventtimer
