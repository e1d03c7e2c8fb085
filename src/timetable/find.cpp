#include "timetable/find.h"

#include "model/event.h"

#include <QHash>

#include <algorithm>

namespace eventtimer {

QString foldedForFind(const QString &text)
{
    // Decomposed, accents are marks of their own, which are left out.
    const QString decomposed = text.normalized(QString::NormalizationForm_KD);
    QString folded;
    folded.reserve(decomposed.size());
    for (const QChar c : decomposed)
        if (c.category() != QChar::Mark_NonSpacing)
            folded.append(c);
    return folded.toCaseFolded();
}

QList<qsizetype> findMatches(const QList<EventBoxGeometry> &boxes, const QString &query)
{
    QList<qsizetype> matches;
    const QString wanted = foldedForFind(query);
    if (wanted.isEmpty())
        return matches;
    // Many boxes share an event: each is asked once.
    QHash<const Event *, bool> answers;
    for (qsizetype i = 0; i < boxes.size(); ++i) {
        const Event &event = boxes.at(i).event();
        auto answer = answers.constFind(&event);
        if (answer == answers.cend())
            answer = answers.insert(
                &event, foldedForFind(event.name).contains(wanted) ||
                            foldedForFind(event.section.value_or(QString())).contains(wanted));
        if (*answer)
            matches.append(i);
    }
    std::stable_sort(matches.begin(), matches.end(), [&boxes](qsizetype a, qsizetype b) {
        const QRectF &first = boxes.at(a).rect;
        const QRectF &second = boxes.at(b).rect;
        return first.left() != second.left() ? first.left() < second.left()
                                             : first.top() < second.top();
    });
    return matches;
}

std::optional<qsizetype> firstMatchFrom(const QList<EventBoxGeometry> &boxes,
                                        const QList<qsizetype> &matches, double x)
{
    if (matches.isEmpty())
        return std::nullopt;
    for (qsizetype i = 0; i < matches.size(); ++i)
        if (boxes.at(matches.at(i)).rect.left() >= x)
            return i;
    return 0;
}

qsizetype stepMatch(qsizetype current, qsizetype count, bool forward)
{
    if (count <= 0)
        return 0;
    return ((current + (forward ? 1 : -1)) % count + count) % count;
}

} // namespace eventtimer
