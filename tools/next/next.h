#pragma once

#include "suite/suitefile.h"

#include <QDateTime>
#include <QList>
#include <QStringList>
#include <QTextStream>
#include <QTimeZone>

namespace eventtimer::next {

// A chat-link occurrence of the suite on its way: when the window's marker reaches its box, and
// the "HH:mm" its box shows.
struct Upcoming
{
    QString name;
    QString section;
    QString chatLink;
    QDateTime due;
    QString start;
};

// The entries still to come today from now, in the order they fall due, the one that started
// less than a minute ago first. An entry starts its time after the local midnight of the day
// the suite was written, and its box shows that start as shownStart does with the offset of the
// moment it was written; a local day meets each box once, at the time it shows.
QList<Upcoming> upcoming(const SuiteFile &suite, const QDateTime &now, const QTimeZone &zone);

// eventtimer-next [--format plain|waybar|argos] [--count N] [--at DATETIME] [--strict] [--watch]
// The lines for a panel at now, written to out; problems with the command line to err. Returns
// the exit status, or -1 when it is to go on watching.
int run(const QStringList &arguments, QTextStream &out, QTextStream &err, const QDateTime &now,
        const QTimeZone &zone, const QString &suitePath);

} // namespace eventtimer::next
