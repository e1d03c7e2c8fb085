#pragma once

#include "model/globalsequence.h"
#include "model/result.h"
#include "suite/suitefile.h"

#include <QDateTime>

namespace eventtimer {

// What the timetable built at now shares: the day's chat-link occurrences in ascending order of
// their keys, the UTC start of now's day on the time axis, and now itself.
SuiteFile sharedSuite(const GlobalSequence &globalSequence, const QDateTime &now);

// Replaces the suite file at path (the user's, when empty) with sharedSuite(), at once. Fails
// with the reason; the timetable does not depend on it.
Status exportToSharedSuite(const GlobalSequence &globalSequence, const QDateTime &now,
                           const QString &path = {});

} // namespace eventtimer
