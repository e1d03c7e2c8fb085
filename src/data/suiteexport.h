#pragma once

#include "data/keyvaluestore.h"
#include "model/globalsequence.h"
#include "model/result.h"

#include <QList>
#include <QSettings>
#include <QStringList>
#include <QStringView>

#include <memory>

namespace eventtimer {

// The suite that companion programs of the application group read, and the keys written there.
namespace suitekeys {
inline constexpr QStringView suite = u"tolmerkvarn.eventtimer";
inline constexpr QStringView times = u"varn_global_events_times";
inline constexpr QStringView sequence = u"varn_global_events_sequence";
inline constexpr QStringView sections = u"varn_global_events_sections";
inline constexpr QStringView chatLinks = u"varn_global_events_chatlinks";
} // namespace suitekeys

// The day's chat-link occurrences as four parallel arrays in ascending order of their keys:
// index i of each describes the same occurrence.
struct SuiteArrays
{
    // Start in seconds of the day, with the +1 steps of taken keys.
    QList<qint64> times;
    QStringList sequence;
    QStringList sections;
    QStringList chatLinks;
};

SuiteArrays suiteArrays(const GlobalSequence &globalSequence);

// Writes the four arrays into suite, each replacing its earlier value, in the order times,
// sequence, sections, chat links. A reader between two writes may see arrays of different
// lengths; the fixed order is all it can rely on. Nothing else is written or removed.
void exportToSharedSuite(const GlobalSequence &globalSequence, KeyValueStore &suite);

// The same into suite, then puts it on disk. Writes nothing when the suite could not be read,
// and fails when it cannot be written; the timetable does not depend on either.
Status exportToSharedSuite(const GlobalSequence &globalSequence, QSettings &suite);

// The same into the user's suite "tolmerkvarn.eventtimer" (SettingsStore::openSuite).
Status exportToSharedSuite(const GlobalSequence &globalSequence);

} // namespace eventtimer
