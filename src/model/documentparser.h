#pragma once

#include "model/expansion.h"
#include "model/result.h"
#include "model/scheduleday.h"
#include "model/section.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

namespace eventtimer {

class IconLookup;

// What every section of one document is parsed against: the day its schedule fills, and where
// icons are looked up (none: events get no icon).
struct ParseContext
{
    ScheduleDay day;
    IconLookup *icons = nullptr;
    // The document's bounds, shared by its sections (parseDocument makes one).
    DocumentBudget *budget = nullptr;
};

// One section record: its events in segment-key order and its day of occurrences. Fails with
// the reason when the record breaks the document rules. Icons are looked up only for the events
// of a record that is kept.
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
// A section that would take the document past its bounds is skipped too.
ParsedDocument parseDocument(const QJsonArray &document, const ParseContext &context);

} // namespace eventtimer
