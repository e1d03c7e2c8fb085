#include "timetable/nextup.h"

#include "model/event.h"
#include "model/sequenceitem.h"
#include "timetable/layoutconstants.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace eventtimer {

QList<NextUpRow> nextUp(const QList<EventBoxGeometry> &boxes, const SectionList &sections,
                        const QDateTime &now, const QSet<QString> *marked)
{
    // The axis counts the UTC day, as the marker does, at its whole second.
    const double present = std::floor(now.toUTC().time().msecsSinceStartOfDay() / 1000.0);
    QHash<QString, qsizetype> order;
    for (qsizetype i = 0; i < sections.size(); ++i)
        order.insert(sections.at(i)->name, i);
    const auto startSeconds = [](const EventBoxGeometry &box) {
        return std::llround(box.rect.left() / LayoutConstants::minutesMultiplier * 60.0);
    };

    QList<NextUpRow> rows;
    for (qsizetype i = 0; i < boxes.size(); ++i) {
        const EventBoxGeometry &box = boxes.at(i);
        const qint64 start = startSeconds(box);
        if (static_cast<double>(start + box.item->duration * 60) <= present)
            continue;
        if (marked && !marked->contains(box.event().name))
            continue;
        rows.append({i, start - static_cast<qint64>(present)});
    }
    const auto sectionOf = [&](const NextUpRow &row) {
        return order.value(boxes.at(row.box).event().section.value_or(QString()), sections.size());
    };
    std::stable_sort(rows.begin(), rows.end(), [&](const NextUpRow &a, const NextUpRow &b) {
        if (a.secondsAhead != b.secondsAhead)
            return a.secondsAhead < b.secondsAhead;
        return sectionOf(a) < sectionOf(b);
    });
    return rows;
}

} // namespace eventtimer
