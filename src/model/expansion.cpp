#include "model/expansion.h"

#include "model/jsonfields.h"
#include "model/section.h"

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

// "1 event", "3 events"
QString counted(qint64 count, QStringView noun)
{
    return QString::number(count) + u' ' + noun.toString() + (count == 1 ? u""_s : u"s"_s);
}

Error inEntry(QStringView list, qsizetype index, const QString &reason)
{
    return Error{u'"' + list.toString() + u"\" entry "_s + QString::number(index + 1) + u": "_s +
                 reason};
}

// A schedule entry once read and checked.
struct CheckedEntry
{
    qint64 minutes = 0;
    qint64 position = 0; // in the section's events; negative for a pause
    qint64 seconds = 0;
};

Result<CheckedEntry> checkEntry(const QJsonValue &entry, qint64 skippedSegments,
                                const Section &section)
{
    if (!entry.isObject())
        return Error{u"not an object (found "_s + jsonfields::describe(entry) + u')'};
    const QJsonObject record = entry.toObject();

    const Result<qint64> minutes = jsonfields::requireInteger(record, "d"_L1);
    if (!minutes)
        return Error{minutes.error()};
    const Result<qint64> reference = jsonfields::requireInteger(record, "r"_L1);
    if (!reference)
        return Error{reference.error()};

    CheckedEntry checked;
    checked.minutes = minutes.value();
    if (__builtin_sub_overflow(reference.value(), skippedSegments, &checked.position))
        return Error{
            u"\"r\" = "_s + QString::number(reference.value()) +
            u" is out of the 64-bit integer range once the skipped segments are taken off"_s};
    if (__builtin_mul_overflow(checked.minutes, qint64{60}, &checked.seconds))
        return Error{u"\"d\" = "_s + QString::number(checked.minutes) +
                     u" minutes is beyond the 64-bit integer range in seconds"_s};
    if (checked.position >= section.events.size())
        return Error{u"\"r\" = "_s + QString::number(reference.value()) +
                     u" points past the section's events ("_s +
                     counted(section.events.size(), u"event") + u", "_s +
                     counted(skippedSegments, u"skipped segment key") + u')'};
    return checked;
}

// One schedule entry, already read: adds its occurrence (unless it is a pause) and moves
// nextStart on by its minutes. The one place a section's occurrences are made.
Status expandEntry(const CheckedEntry &entry, double &nextStart, Section &section,
                   const ScheduleDay &day)
{
    if (entry.position >= 0) {
        if (nextStart < day.start())
            return Error{u"the occurrence would start before the day begins (negative \"d\" "
                         u"before it)"_s};
        section.sequence.append(std::make_shared<SequenceItem>(section.events.at(entry.position),
                                                               entry.minutes, nextStart));
    }
    nextStart += static_cast<double>(entry.seconds);
    return {};
}

// Reads the entries of one list in order while the day is not full. Every pass over "pattern"
// meets the same entries, so each is read from the document once and kept in checked.
Status expandList(QStringView name, const QJsonArray &entries, double &nextStart,
                  qint64 skippedSegments, Section &section, const ScheduleDay &day,
                  qint64 &entriesRead, DocumentBudget *budget,
                  std::vector<std::optional<CheckedEntry>> &checked)
{
    checked.resize(static_cast<size_t>(entries.size()));
    for (qsizetype i = 0; i < entries.size() && nextStart < day.end(); ++i) {
        if (++entriesRead > maxScheduleEntriesPerDay)
            return Error{u"the schedule needs more than "_s +
                         QString::number(maxScheduleEntriesPerDay) + u" entries to fill the day"_s};
        if (budget && ++budget->entriesRead > maxScheduleEntriesPerDocument)
            return Error{u"the document's schedules need more than "_s +
                         QString::number(maxScheduleEntriesPerDocument) + u" entries in all"_s};
        std::optional<CheckedEntry> &entry = checked[static_cast<size_t>(i)];
        if (!entry) {
            Result<CheckedEntry> read = checkEntry(entries.at(i), skippedSegments, section);
            if (!read)
                return inEntry(name, i, read.error());
            entry = read.value();
        }
        if (Status status = expandEntry(*entry, nextStart, section, day); !status)
            return inEntry(name, i, status.error());
    }
    return {};
}

} // namespace

Status expandSchedule(Section &section, qint64 skippedSegments, const QJsonArray &partial,
                      const QJsonArray &pattern, const ScheduleDay &day, DocumentBudget *budget)
{
    double nextStart = day.start();
    qint64 entriesRead = 0;
    std::vector<std::optional<CheckedEntry>> checked;

    if (Status status = expandList(u"partial", partial, nextStart, skippedSegments, section, day,
                                   entriesRead, budget, checked);
        !status)
        return status;

    checked.clear();
    while (nextStart < day.end()) {
        if (pattern.isEmpty())
            return Error{u"\"pattern\" is empty, so the day never fills"_s};
        const double passStart = nextStart;
        if (Status status = expandList(u"pattern", pattern, nextStart, skippedSegments, section,
                                       day, entriesRead, budget, checked);
            !status)
            return status;
        // Every pass reads the same entries, so a pass that ends where it began (or earlier)
        // would repeat for ever.
        if (nextStart < day.end() && nextStart <= passStart)
            return Error{u"one pass over \"pattern\" moves time by "_s +
                         QString::number((nextStart - passStart) / 60.0) +
                         u" minutes, so the day never fills"_s};
    }
    return {};
}

} // namespace eventtimer
