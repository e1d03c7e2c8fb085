#pragma once

#include "data/suiteformat.h"
#include "model/globalsequence.h"
#include "model/result.h"

#include <QDateTime>
#include <QList>
#include <QStringList>

namespace eventtimer {

// The day's chat-link occurrences as four parallel arrays in ascending order of their keys.
struct SuiteArrays
{
    QList<qint64> times;
    QStringList sequence;
    QStringList sections;
    QStringList chatLinks;
};

SuiteArrays suiteArrays(const GlobalSequence &globalSequence);

// The suite's text: the four arrays in the order companion programs know them (times,
// sequence, sections, chat links), one member per line, then the UTC start of now's day on the
// time axis and now itself.
QByteArray suiteJson(const GlobalSequence &globalSequence, const QDateTime &now);

// Replaces the suite file at path (the user's, when empty) at once: a reader sees the old
// suite or the new one, never a part. Fails with the reason; the timetable does not depend
// on it.
Status exportToSharedSuite(const GlobalSequence &globalSequence, const QDateTime &now,
                           const QString &path = {});

} // namespace eventtimer
