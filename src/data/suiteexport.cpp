#include "data/suiteexport.h"

#include "suite/suiteformat.h"

#include <QTimeZone>

namespace eventtimer {

SuiteFile sharedSuite(const GlobalSequence &globalSequence, const QDateTime &now)
{
    SuiteFile suite;
    // std::map walks its keys in ascending order.
    for (const auto &[key, event] : globalSequence) {
        suite.times.append(key);
        suite.sequence.append(event->name);
        // Every registered event has both: its section's name from the parser, and a chat link
        // because only such events are registered.
        suite.sections.append(event->section.value_or(QString()));
        suite.chatLinks.append(event->chatLink.value_or(QString()));
    }
    suite.writtenAt = now.toUTC();
    suite.axisDayStart = suite.writtenAt.date().startOfDay(QTimeZone::utc());
    return suite;
}

Status exportToSharedSuite(const GlobalSequence &globalSequence, const QDateTime &now,
                           const QString &path)
{
    return writeSuite(sharedSuite(globalSequence, now),
                      path.isEmpty() ? suitekeys::suitePath() : path);
}

} // namespace eventtimer
