#include "model/documentparser.h"

#include "model/eventrecord.h"
#include "model/expansion.h"
#include "model/jsonfields.h"

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

template <typename T> Error reasonOf(const Result<T> &result, const QString &where = {})
{
    return Error{where.isEmpty() ? result.error() : where + u": "_s + result.error()};
}

} // namespace

Result<std::shared_ptr<Section>> parseSection(const QJsonObject &record,
                                              const ParseContext &context)
{
    auto section = std::make_shared<Section>();

    const Result<QString> category = jsonfields::requireString(record, u"category");
    if (!category)
        return reasonOf(category);
    const Result<QString> name = jsonfields::requireString(record, u"name");
    if (!name)
        return reasonOf(name);
    section->category = category.value();
    section->name = name.value();
    section->wiki = jsonfields::optionalString(record, u"link").value_or(section->name);

    const QString where = u'"' + section->name + u'"';
    const Result<QJsonObject> segments = jsonfields::requireObject(record, u"segments");
    if (!segments)
        return reasonOf(segments, where);
    const Result<QJsonObject> sequences = jsonfields::requireObject(record, u"sequences");
    if (!sequences)
        return reasonOf(sequences, where);
    const Result<QJsonArray> partial = jsonfields::requireArray(sequences.value(), u"partial");
    if (!partial)
        return reasonOf(partial, where + u", \"sequences\""_s);
    const Result<QJsonArray> pattern = jsonfields::requireArray(sequences.value(), u"pattern");
    if (!pattern)
        return reasonOf(pattern, where + u", \"sequences\""_s);

    // n + 1 probes, "0" to "n": accepts keys numbered from 0 and from 1. Every probe that
    // yields no event, except the last, shifts the references by one.
    const qsizetype keyCount = segments.value().size();
    QList<QJsonObject> records;
    qint64 skippedSegments = 0;
    for (qsizetype i = 0; i <= keyCount; ++i) {
        const QString key = QString::number(i);
        const QJsonValue value = segments.value().value(key);
        bool yieldsEvent = false;
        if (value.isObject()) {
            const QJsonObject segment = value.toObject();
            const Result<QString> eventName = jsonfields::requireString(segment, u"name");
            if (!eventName)
                return reasonOf(eventName, where + u", segment \""_s + key + u'"');
            yieldsEvent = !eventName.value().isEmpty();
            if (yieldsEvent)
                records.append(segment);
        }
        if (!yieldsEvent && i != keyCount)
            ++skippedSegments;
    }
    section->events.reserve(records.size());
    for (const QJsonObject &segment : std::as_const(records))
        section->events.append(parseEvent(segment, section->name));

    const Status expanded = expandSchedule(*section, skippedSegments, partial.value(),
                                           pattern.value(), context.day, context.budget);
    if (!expanded)
        return reasonOf(expanded, where);
    if (context.budget) {
        if (context.budget->occurrences + section->sequence.size() > maxOccurrencesPerDocument)
            return Error{where + u": the document would hold more than "_s +
                         QString::number(maxOccurrencesPerDocument) + u" occurrences"_s};
        context.budget->occurrences += section->sequence.size();
    }
    // A record that is left out asks for no icon, so that it costs no download.
    if (context.icons) {
        for (qsizetype i = 0; i < records.size(); ++i)
            section->events.at(i)->icon = iconOf(records.at(i), *context.icons);
    }
    return section;
}

Status appendSection(const QJsonValue &element, SectionList &sections, const ParseContext &context)
{
    if (!element.isObject())
        return Error{u"not an object (found "_s + jsonfields::describe(element) + u')'};
    Result<std::shared_ptr<Section>> section = parseSection(element.toObject(), context);
    if (!section)
        return Error{section.error()};
    sections.append(std::move(section).value());
    return {};
}

QString SkippedSection::line() const
{
    return u"[ERROR] Skipped section "_s + QString::number(number) + u": "_s + reason;
}

ParsedDocument parseDocument(const QJsonArray &document, const ParseContext &context)
{
    DocumentBudget budget;
    ParseContext bounded = context;
    if (!bounded.budget)
        bounded.budget = &budget;
    ParsedDocument parsed;
    parsed.sections.reserve(document.size());
    for (qsizetype i = 0; i < document.size(); ++i) {
        const Status status = appendSection(document.at(i), parsed.sections, bounded);
        if (!status)
            parsed.skipped.append({i + 1, status.error()});
    }
    return parsed;
}

} // namespace eventtimer
