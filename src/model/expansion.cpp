#include "expansion.h"

#include "jsonfields.h"
#include "section.h"

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

Error inEntry(QStringView list, qsizetype index, const QString &reason)
{
    return Error{u'"' + list.toString() + u"\" entry "_s + QString::number(index + 1) + u": "_s +
                 reason};
}

// Reads the entries of one list in order while the day is not full.
Status expandList(QStringView name, const QJsonArray &entries, double &nextStart,
                  qint64 skippedSegments, Section &section, const ScheduleDay &day,
                  qint64 &entriesRead)
{
    for (qsizetype i = 0; i < entries.size() && nextStart < day.end(); ++i) {
        if (++entriesRead > maxScheduleEntriesPerDay)
            return Error{u"the schedule needs more than "_s +
                         QString::number(maxScheduleEntriesPerDay) + u" entries to fill the day"_s};
        const Status status = expandEntry(entries.at(i), nextStart, skippedSegments, section, day);
        if (!status)
            return inEntry(name, i, status.error());
    }
    return {};
}

} // namespace

Status expandSchedule(Section &section, qint64 skippedSegments, const QJsonArray &partial,
                      const QJsonArray &pattern, const ScheduleDay &day)
{
    double nextStart = day.start();
    qint64 entriesRead = 0;

    if (Status status =
            expandList(u"partial", partial, nextStart, skippedSegments, section, day, entriesRead);
        !status)
        return status;

    while (nextStart < day.end()) {
        if (pattern.isEmpty())
            return Error{u"\"pattern\" is empty, so the day never fills"_s};
        const double passStart = nextStart;
        if (Status status = expandList(u"pattern", pattern, nextStart, skippedSegments, section,
                                       day, entriesRead);
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

Status expandEntry(const QJsonValue &entry, double &nextStart, qint64 skippedSegments,
                   Section &section, const ScheduleDay &day)
{
    if (!(nextStart < day.end()))
        return {};
    if (!entry.isObject())
        return Error{u"not an object (found "_s + jsonfields::describe(entry) + u')'};
    const QJsonObject record = entry.toObject();

    const Result<qint64> minutes = jsonfields::requireInteger(record, u"d");
    if (!minutes)
        return Error{minutes.error()};
    const Result<qint64> reference = jsonfields::requireInteger(record, u"r");
    if (!reference)
        return Error{reference.error()};

    qint64 position = 0;
    if (__builtin_sub_overflow(reference.value(), skippedSegments, &position))
        return Error{
            u"\"r\" = "_s + QString::number(reference.value()) +
            u" is out of the 64-bit integer range once the skipped segments are taken off"_s};
    qint64 seconds = 0;
    if (__builtin_mul_overflow(minutes.value(), qint64{60}, &seconds))
        return Error{u"\"d\" = "_s + QString::number(minutes.value()) +
                     u" minutes is beyond the 64-bit integer range in seconds"_s};

    if (position >= 0) {
        if (position >= section.events.size())
            return Error{u"\"r\" = "_s + QString::number(reference.value()) +
                         u" points past the section's events ("_s +
                         QString::number(section.events.size()) + u" events, "_s +
                         QString::number(skippedSegments) + u" skipped segment keys)"_s};
        if (nextStart < day.start())
            return Error{u"the occurrence would start before the day begins (negative \"d\" "
                         u"before it)"_s};
        section.sequence.append(std::make_shared<SequenceItem>(section.events.at(position),
                                                               minutes.value(), nextStart));
    }
    nextStart += static_cast<double>(seconds);
    return {};
}

} // namespace eventtimer
