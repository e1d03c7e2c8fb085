#pragma once

#include <QStandardPaths>
#include <QString>
#include <QStringView>

// What the program shares with companion programs, and where: one JSON object in
// $XDG_DATA_HOME/tolmerkvarn.eventtimer/suite.json. Qt Core only, so that a companion program
// of our own (the panel feed) needs nothing else.
namespace eventtimer::suitekeys {

inline constexpr QStringView suite = u"tolmerkvarn.eventtimer";
// Four parallel arrays, in ascending order of the start times: index i of each describes the
// same occurrence. The times are seconds from the start of the day, raised by 1 while taken.
inline constexpr QStringView times = u"varn_global_events_times";
inline constexpr QStringView sequence = u"varn_global_events_sequence";
inline constexpr QStringView sections = u"varn_global_events_sections";
inline constexpr QStringView chatLinks = u"varn_global_events_chatlinks";
// The UTC start of the time axis's day (the red marker stands at the minutes since then) and
// the moment the suite was written, both ISO 8601 in UTC.
inline constexpr QStringView axisDayStart = u"axis_day_start";
inline constexpr QStringView writtenAt = u"written_at";

inline QString suitePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' +
           suite.toString() + QStringLiteral("/suite.json");
}

} // namespace eventtimer::suitekeys
