#pragma once

#include "model/result.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QStringList>

namespace eventtimer {

// What the suite file holds: four parallel arrays in ascending order of the times (index i of
// each describes the same occurrence), the UTC start of the time axis's day and the moment the
// file was written.
struct SuiteFile
{
    QList<qint64> times;
    QStringList sequence;
    QStringList sections;
    QStringList chatLinks;
    QDateTime axisDayStart;
    QDateTime writtenAt;
};

// The file's text: the four arrays in the order companion programs know them (times,
// sequence, sections, chat links), one member per line, then the two moments in UTC.
QByteArray suiteText(const SuiteFile &suite);

// Replaces the file at path at once: a reader sees the old suite or the new one, never a part.
// Fails with the reason.
Status writeSuite(const SuiteFile &suite, const QString &path);

// The suite file at path: why not when it is missing or damaged.
Result<SuiteFile> readSuite(const QString &path);

} // namespace eventtimer
