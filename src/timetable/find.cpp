#include "timetable/find.h"

#include "model/event.h"
#include "model/sequenceitem.h"

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

namespace {

// Whether an event's name or section holds the folded query; many boxes share an event, and
// each event is asked once.
class EventMatcher
{
public:
    explicit EventMatcher(const QString &query)
        : m_wanted(foldedForFind(query))
    {}

    bool isEmpty() const { return m_wanted.isEmpty(); }
    bool matches(const Event &event)
    {
        auto answer = m_answers.constFind(&event);
        if (answer == m_answers.cend())
            answer = m_answers.insert(
                &event, foldedForFind(event.name).contains(m_wanted) ||
                            foldedForFind(event.section.value_or(QString())).contains(m_wanted));
        return *answer;
    }

private:
    QString m_wanted;
    QHash<const Event *, bool> m_answers;
};

} // namespace

QList<qsizetype> findMatches(const QList<EventBoxGeometry> &boxes, const QString &query)
{
    QList<qsizetype> matches;
    EventMatcher matcher(query);
    if (matcher.isEmpty())
        return matches;
    for (qsizetype i = 0; i < boxes.size(); ++i)
        if (matcher.matches(boxes.at(i).event()))
            matches.append(i);
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

qsizetype countMatches(const SectionList &sections, const QString &query)
{
    EventMatcher matcher(query);
    qsizetype count = 0;
    if (matcher.isEmpty())
        return count;
    for (const std::shared_ptr<Section> &section : sections)
        for (const std::shared_ptr<SequenceItem> &item : section->sequence)
            count += matcher.matches(*item->event) ? 1 : 0;
    return count;
}

} // namespace eventtimer
