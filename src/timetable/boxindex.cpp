#include "timetable/boxindex.h"

#include <algorithm>
#include <cmath>

namespace eventtimer {

BoxIndex::BoxIndex(const QList<EventBoxGeometry> &boxes)
{
    for (qsizetype i = 0; i < boxes.size(); ++i) {
        const QRectF &rect = boxes.at(i).rect;
        if (rect.width() <= 0 || rect.height() <= 0)
            continue;
        const qsizetype last = columnOf(rect.right());
        if (m_columns.size() <= last)
            m_columns.resize(last + 1);
        for (qsizetype column = columnOf(rect.left()); column <= last; ++column)
            m_columns[column].append(i);
    }
}

QList<qsizetype> BoxIndex::boxesIn(const QList<EventBoxGeometry> &boxes, const QRectF &area) const
{
    QList<qsizetype> found;
    const qsizetype last = std::min(columnOf(area.right()), m_columns.size() - 1);
    for (qsizetype column = columnOf(area.left()); column <= last; ++column)
        for (const qsizetype box : m_columns.at(column))
            if (boxes.at(box).rect.intersects(area))
                found.append(box);
    // A box reaching into several columns is met in each.
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

} // namespace eventtimer
