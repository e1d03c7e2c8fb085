#pragma once

#include "result.h"
#include "scheduleday.h"
#include "section.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

namespace eventtimer {

class IconCache;

// What every section of one document is parsed against: the day its schedule fills, and the
// icon cache (none: events get no icon).
struct ParseContext
{
    ScheduleDay day;
    IconCache *icons = nullptr;
};

// One section record: its events in segment-key order and its day of occurrences. Fails with
// the reason when the record breaks the document rules.
Result<std::shared_ptr<Section>> parseSection(const QJsonObject &record,
                                              const ParseContext &context);

// Parses one element of the document's top-level array and appends its section to sections.
// An element that is not a valid section record appends nothing and gives the reason.
Status appendSection(const QJsonValue &element, SectionList &sections, const ParseContext &context);

// A section record left out of the day, numbered from 1 in document order.
struct SkippedSection
{
    qsizetype number = 0;
    QString reason;

    // "[ERROR] Skipped section N: reason"
    QString line() const;
};

struct ParsedDocument
{
    SectionList sections;
    QList<SkippedSection> skipped;
};

// Every element of the top-level array in order; invalid records are skipped, the rest kept.
ParsedDocument parseDocument(const QJsonArray &document, const ParseContext &context);

} // namespace eventtimer
