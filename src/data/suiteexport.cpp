#include "data/suiteexport.h"

#include "data/settingsstore.h"

#include <QVariantList>

using namespace Qt::StringLiterals;

namespace eventtimer {

SuiteArrays suiteArrays(const GlobalSequence &globalSequence)
{
    SuiteArrays arrays;
    const auto count = static_cast<qsizetype>(globalSequence.size());
    arrays.times.reserve(count);
    arrays.sequence.reserve(count);
    arrays.sections.reserve(count);
    arrays.chatLinks.reserve(count);
    // std::map walks its keys in ascending order.
    for (const auto &[key, event] : globalSequence) {
        arrays.times.append(key);
        arrays.sequence.append(event->name);
        // Every registered event has both: its section's name from the parser, and a chat link
        // because only such events are registered.
        arrays.sections.append(event->section.value_or(QString()));
        arrays.chatLinks.append(event->chatLink.value_or(QString()));
    }
    return arrays;
}

void exportToSharedSuite(const GlobalSequence &globalSequence, KeyValueStore &suite)
{
    const SuiteArrays arrays = suiteArrays(globalSequence);
    // As 64-bit numbers, so that a reader gets integers back.
    QVariantList times;
    times.reserve(arrays.times.size());
    for (const qint64 time : arrays.times)
        times.append(QVariant::fromValue(time));
    suite.setValue(suitekeys::times.toString(), times);
    suite.setValue(suitekeys::sequence.toString(), arrays.sequence);
    suite.setValue(suitekeys::sections.toString(), arrays.sections);
    suite.setValue(suitekeys::chatLinks.toString(), arrays.chatLinks);
}

Status exportToSharedSuite(const GlobalSequence &globalSequence, QSettings &suite)
{
    // Writing over a suite that could not be read would lose what companions keep there.
    if (suite.status() != QSettings::NoError)
        return Error{u"cannot read the shared suite \""_s + suite.fileName() + u'"'};
    SettingsStore store(suite);
    exportToSharedSuite(globalSequence, store);
    if (!store.sync())
        return Error{u"cannot write the shared suite \""_s + suite.fileName() + u'"'};
    return {};
}

Status exportToSharedSuite(const GlobalSequence &globalSequence)
{
    const std::unique_ptr<QSettings> suite = SettingsStore::openSuite(suitekeys::suite.toString());
    return exportToSharedSuite(globalSequence, *suite);
}

} // namespace eventtimer
