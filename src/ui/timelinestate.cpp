#include "ui/timelinestate.h"

#include "model/event.h"

#include <algorithm>
#include <utility>

namespace eventtimer {

namespace {

// The boxes a change touches: the one before and the one after, when there are any.
TimelineState::Changed beforeAndAfter(std::optional<qsizetype> before,
                                      std::optional<qsizetype> after)
{
    TimelineState::Changed changed;
    if (before)
        changed.boxes.append(*before);
    if (after && after != before)
        changed.boxes.append(*after);
    return changed;
}

} // namespace

void TimelineState::resetBoxes()
{
    m_currentBox.reset();
    m_hoveredButton.reset();
    m_pressedButton.reset();
}

TimelineState::Changed TimelineState::setHoveredButton(std::optional<qsizetype> button)
{
    if (button == m_hoveredButton)
        return {};
    return beforeAndAfter(std::exchange(m_hoveredButton, button), button);
}

TimelineState::Changed TimelineState::setPressedButton(std::optional<qsizetype> button)
{
    return beforeAndAfter(std::exchange(m_pressedButton, button), button);
}

TimelineState::Changed TimelineState::setCurrentBox(qsizetype box)
{
    if (box == m_currentBox)
        return {};
    return beforeAndAfter(std::exchange(m_currentBox, box), box);
}

bool TimelineState::isMarked(const EventBoxGeometry &box) const
{
    return m_markedNames.contains(box.event().name);
}

TimelineState::Changed TimelineState::setMarkedNames(const QSet<QString> &names,
                                                     const QList<EventBoxGeometry> &boxes)
{
    Changed changed;
    if (names == m_markedNames)
        return changed;
    // Only the boxes whose bell comes or goes are drawn again.
    for (qsizetype i = 0; i < boxes.size(); ++i) {
        const QString &name = boxes.at(i).event().name;
        if (names.contains(name) != m_markedNames.contains(name))
            changed.boxes.append(i);
    }
    m_markedNames = names;
    return changed;
}

void TimelineState::setDayEnd(double x, const QString &nextDay)
{
    m_dayEndX = x;
    m_nextDay = nextDay;
}

TimelineState::Changed TimelineState::setFind(const std::optional<QList<qsizetype>> &matches,
                                              std::optional<qsizetype> current)
{
    // The current match's ring is drawn with its box: both boxes are drawn anew.
    Changed changed = beforeAndAfter(std::exchange(m_findCurrent, current), current);
    std::optional<QSet<qsizetype>> matching;
    if (matches)
        matching = QSet<qsizetype>(matches->cbegin(), matches->cend());
    if (matching != m_findMatches) {
        m_findMatches = std::move(matching);
        changed.all = true;
    }
    return changed;
}

} // namespace eventtimer
