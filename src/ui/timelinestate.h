#pragma once

#include "timetable/hourruler.h"

#include "timetable/timetablelayout.h"

#include <QList>
#include <QRectF>
#include <QSet>
#include <QString>

#include <optional>

namespace eventtimer {

// What the player and the clock did to the boxes of the time axis: the marker, the copy button
// under the mouse, the focus ring, the reminder marks, find. The timeline widget keeps it; its
// renderer paints it. Each change says what it changes on screen (the boxes whose button, ring
// or bell changes), which the widget draws anew.
class TimelineState
{
public:
    struct Changed
    {
        QList<qsizetype> boxes;
        // More than some boxes: the whole axis.
        bool all = false;
    };

    // New boxes: none is current, hovered or pressed any more.
    void resetBoxes();

    // The marker's left edge; absent until the first time update.
    std::optional<double> markerX() const { return m_markerX; }
    void setMarkerX(double x) { m_markerX = x; }

    // The copy button under the mouse, and the one held down.
    std::optional<qsizetype> hoveredButton() const { return m_hoveredButton; }
    Changed setHoveredButton(std::optional<qsizetype> button);
    std::optional<qsizetype> pressedButton() const { return m_pressedButton; }
    Changed setPressedButton(std::optional<qsizetype> button);

    // The box that carries the keyboard focus ring while the timeline has the focus.
    std::optional<qsizetype> currentBox() const { return m_currentBox; }
    Changed setCurrentBox(qsizetype box);

    // The names of the events marked for reminders: their boxes carry a bell.
    bool isMarked(const EventBoxGeometry &box) const;
    Changed setMarkedNames(const QSet<QString> &names, const QList<EventBoxGeometry> &boxes);

    // Where the day ends, and the next day's date shown there, when its first hours follow.
    std::optional<double> dayEndX() const { return m_dayEndX; }
    const QString &nextDay() const { return m_nextDay; }
    void setDayEnd(double x, const QString &nextDay);

    // The ruler's marks, for the faint hour lines behind the boxes.
    const QList<RulerMark> &hourMarks() const { return m_hourMarks; }
    void setHourMarks(QList<RulerMark> marks) { m_hourMarks = std::move(marks); }

    // While find is open, the boxes that match stay clear, and the current match carries the
    // ring; without find every box is clear.
    bool isFound(qsizetype box) const { return !m_findMatches || m_findMatches->contains(box); }
    std::optional<qsizetype> findCurrent() const { return m_findCurrent; }
    Changed setFind(const std::optional<QList<qsizetype>> &matches,
                    std::optional<qsizetype> current);

private:
    std::optional<double> m_markerX;
    std::optional<qsizetype> m_hoveredButton;
    std::optional<qsizetype> m_pressedButton;
    std::optional<qsizetype> m_currentBox;
    QSet<QString> m_markedNames;
    std::optional<double> m_dayEndX;
    QString m_nextDay;
    QList<RulerMark> m_hourMarks;
    std::optional<QSet<qsizetype>> m_findMatches;
    std::optional<qsizetype> m_findCurrent;
};

} // namespace eventtimer
