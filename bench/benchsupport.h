#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QList>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace eventtimer::bench {

// The stress document holds this many copies of every section of the realistic one:
// 18 × 11 = 198 sections, a little over 6 000 occurrences.
inline constexpr int stressCopies = 11;

// A document of the test data folder, read whole.
QByteArray readDocument(const QString &name);

// Copies every section `copies` times; each copy after the first gets " (n)" after its name so
// that no two sections share one.
QJsonArray replicated(const QJsonArray &document, int copies);

// The realistic document copied stressCopies times.
QJsonArray stressDocument();

// The realistic document with its first `count` icons pointed at the local event service
// ("{service}/icons/file/set/N.png", N from 0) and the others left out, as compact JSON.
QByteArray realisticWithServedIcons(int count);

// The instructions that this program executes when run again with arguments, counted by
// callgrind (valgrind), only inside the function toggle names when one is given: the same for
// the same work whatever else the machine does, where wall time swings. 0 without valgrind,
// and inside such a run (EVENTTIMER_BENCH_COUNTING is set there), so that it never nests.
qint64 instructions(const QStringList &arguments, const QProcessEnvironment &environment,
                    const QString &toggle = {});

// The middle value of a set of timings.
double median(QList<double> values);

// A number of /proc/self/status ("VmRSS" in kB, "voluntary_ctxt_switches", …); -1 when it
// cannot be read.
qint64 processStatus(const QByteArray &field);
// The process's peak resident memory so far, in kB (-1 when it cannot be read).
qint64 peakResidentKb();

} // namespace eventtimer::bench
