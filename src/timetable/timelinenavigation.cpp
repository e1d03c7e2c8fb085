#include "timetable/timelinenavigation.h"

#include <algorithm>

namespace eventtimer {

TimelineNavigation::KeyAction TimelineNavigation::actionOf(int key, Qt::KeyboardModifiers modifiers,
                                                           bool copyShortcut)
{
    const bool plain = (modifiers & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (copyShortcut || (plain && (key == Qt::Key_Return || key == Qt::Key_Enter)))
        return KeyAction::Copy;
    if (!plain)
        return KeyAction::None;
    if (key == Qt::Key_R)
        return KeyAction::Mark;
    const bool move = key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up ||
                      key == Qt::Key_Down || key == Qt::Key_Home || key == Qt::Key_End;
    return move ? KeyAction::Move : KeyAction::None;
}

void TimelineNavigation::setBoxes(const QList<EventBoxGeometry> &boxes)
{
    m_rects.clear();
    m_rowOf.clear();
    qsizetype rowCount = 0;
    for (const EventBoxGeometry &box : boxes) {
        m_rects.append(box.rect);
        m_rowOf.append(box.row);
        rowCount = std::max(rowCount, box.row + 1);
    }
    m_rows = QList<QList<qsizetype>>(rowCount);
    for (qsizetype i = 0; i < m_rects.size(); ++i)
        m_rows[m_rowOf.at(i)].append(i);
    m_placeInRow = QList<qsizetype>(m_rects.size());
    for (QList<qsizetype> &row : m_rows) {
        // A row's occurrences follow each other, so this only guards the order, and it keeps
        // equal starts in build order.
        std::stable_sort(row.begin(), row.end(), [this](qsizetype a, qsizetype b) {
            return m_rects.at(a).left() < m_rects.at(b).left();
        });
        for (qsizetype place = 0; place < row.size(); ++place)
            m_placeInRow[row.at(place)] = place;
    }
}

qsizetype TimelineNavigation::nearestInRow(qsizetype row, double x) const
{
    const QList<qsizetype> &boxes = m_rows.at(row);
    // The candidates are the last box starting at or before x and the one after it.
    const auto after =
        std::upper_bound(boxes.begin(), boxes.end(), x, [this](double value, qsizetype box) {
            return value < m_rects.at(box).left();
        });
    const auto distance = [this, x](qsizetype box) {
        const QRectF rect = m_rects.at(box);
        return x < rect.left() ? rect.left() - x : x > rect.right() ? x - rect.right() : 0.0;
    };
    if (after == boxes.begin())
        return *after;
    const qsizetype before = *(after - 1);
    if (after == boxes.end())
        return before;
    return distance(*after) < distance(before) ? *after : before;
}

std::optional<qsizetype> TimelineNavigation::rowWithBoxes(qsizetype from, qsizetype step) const
{
    for (qsizetype row = from + step; row >= 0 && row < m_rows.size(); row += step)
        if (!m_rows.at(row).isEmpty())
            return row;
    return std::nullopt;
}

std::optional<qsizetype> TimelineNavigation::entryBox(double top, double bottom, double x) const
{
    std::optional<qsizetype> first;
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        if (m_rows.at(row).isEmpty())
            continue;
        const QRectF rect = m_rects.at(m_rows.at(row).first());
        const bool inView = rect.bottom() > top && rect.top() < bottom;
        if (!first || inView)
            first = row;
        if (inView)
            break;
    }
    if (!first)
        return std::nullopt;
    return nearestInRow(*first, x);
}

std::optional<qsizetype> TimelineNavigation::target(qsizetype current, int key) const
{
    if (current < 0 || current >= m_rects.size())
        return std::nullopt;
    const qsizetype row = m_rowOf.at(current);
    const QList<qsizetype> &boxes = m_rows.at(row);
    const qsizetype place = m_placeInRow.at(current);
    switch (key) {
    case Qt::Key_Left:
        return boxes.at(std::max<qsizetype>(place - 1, 0));
    case Qt::Key_Right:
        return boxes.at(std::min(place + 1, boxes.size() - 1));
    case Qt::Key_Home:
        return boxes.first();
    case Qt::Key_End:
        return boxes.last();
    case Qt::Key_Up:
    case Qt::Key_Down: {
        const std::optional<qsizetype> next = rowWithBoxes(row, key == Qt::Key_Up ? -1 : 1);
        if (!next)
            return current;
        return nearestInRow(*next, m_rects.at(current).center().x());
    }
    default:
        return std::nullopt;
    }
}

} // namespace eventtimer
