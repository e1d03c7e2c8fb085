#pragma once

#include <QDateTime>
#include <QStringList>
#include <QTextStream>
#include <QTimeZone>

namespace eventtimer::checker {

// eventtimer-check [--json | --export] [--at DATETIME] FILE
//
// Parses the event document FILE for the day that contains "now" (or the --at moment) in zone
// and writes to out every section in document order with its events and occurrences, and the
// "[ERROR] Skipped section N: reason" line of every record left out, at its place. With
// --export it writes instead the four arrays that the timetable of that day publishes to the
// shared suite, and the skipped lines to err. Problems with the command line or the file go to
// err.
//
// Returns the exit status: 0 when every section is valid, 1 when a section was skipped, 2 when
// the file could not be read as an array of sections or the command line is wrong.
//
// now and zone come from the caller, so that nothing here reads the clock or the system's zone.
int run(const QStringList &arguments, QTextStream &out, QTextStream &err, const QDateTime &now,
        const QTimeZone &zone);

} // namespace eventtimer::checker
