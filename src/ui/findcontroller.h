#pragma once

#include "model/section.h"
#include "ui/findbar.h"

#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>

#include <optional>

class QScrollArea;

namespace eventtimer {

class TimelineWidget;

// Find (Ctrl+F) over a timetable: the find bar at the top of the view; as it is typed in, the
// matching boxes stay clear and the first from the marker on is shown and made the current
// box; F3 and Enter go on, Shift+F3 back; Escape closes it and leaves the keyboard on the box
// found (without one, the view goes back as it was).
class FindController : public QObject
{
    Q_OBJECT

public:
    // The keys work inside view, whose layout (a QVBoxLayout) takes the find bar at its top;
    // the two scroll areas around the timeline go back to their places when find closes.
    FindController(QWidget *view, TimelineWidget *timeline, QScrollArea *sideways,
                   QScrollArea *upright, QObject *parent = nullptr);

    // The day's sections the view does not show: find counts its matches there, to say so.
    void setHidden(const SectionList &hidden) { m_hidden = hidden; }

    // Absent until find is first opened.
    FindBar *findBar() const { return m_findBar; }

    void open();
    void step(bool forward);
    void close();

private:
    void queryChanged(const QString &query);
    void show();

    QWidget *m_view;
    TimelineWidget *m_timeline;
    QScrollArea *m_sideways;
    QScrollArea *m_upright;
    QPointer<FindBar> m_findBar;
    SectionList m_hidden;
    qsizetype m_hiddenMatches = 0;
    QList<qsizetype> m_matches;
    std::optional<qsizetype> m_current;
    std::optional<QPoint> m_scrollBeforeFind;
};

} // namespace eventtimer
