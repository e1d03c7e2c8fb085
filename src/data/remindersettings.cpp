#include "data/remindersettings.h"

#include "data/settingsstore.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace eventtimer {

ReminderSettings readReminderSettings(const SettingsStore &settings, QTextStream &err)
{
    ReminderSettings read;
    QStringList marked = settings.value(settingskeys::reminderEvents).toStringList();
    marked.removeAll(QString());
    marked.sort();
    marked.removeDuplicates();
    read.marked = marked;
    const QVariant stored = settings.value(settingskeys::reminderLeadMinutes);
    if (stored.isValid()) {
        bool whole = false;
        const int minutes = stored.toString().trimmed().toInt(&whole);
        if (whole && minutes >= 0 && minutes <= ReminderChoices::maxLeadMinutes)
            read.leadMinutes = minutes;
        else
            err << "eventtimer: " << settingskeys::reminderLeadMinutes.toString() << " in "
                << settings.fileName() << " is \"" << stored.toStringList().join(u", "_s)
                << "\", not a whole number of minutes from 0 to " << ReminderChoices::maxLeadMinutes
                << "; " << read.leadMinutes << " is used" << Qt::endl;
    }
    return read;
}

Result<ReminderSettings> writeReminderChanges(SettingsStore &settings,
                                              const ReminderSettings &before,
                                              const ReminderSettings &after)
{
    settings.reload();
    // A lead that is no number was said when the file was read.
    QString unsaid;
    QTextStream quiet(&unsaid);
    ReminderSettings now = readReminderSettings(settings, quiet);
    const QSet<QString> was(before.marked.cbegin(), before.marked.cend());
    const QSet<QString> is(after.marked.cbegin(), after.marked.cend());
    QSet<QString> marked(now.marked.cbegin(), now.marked.cend());
    marked.unite(is - was);
    marked.subtract(was - is);
    QStringList merged(marked.cbegin(), marked.cend());
    merged.sort();
    const bool marksChanged = merged != now.marked;
    const bool leadChanged = after.leadMinutes != before.leadMinutes;
    now.marked = merged;
    if (leadChanged)
        now.leadMinutes = after.leadMinutes;
    Status written;
    if (marksChanged && leadChanged)
        written = settings.write({{settingskeys::reminderEvents, merged},
                                  {settingskeys::reminderLeadMinutes, now.leadMinutes}});
    else if (marksChanged)
        written = settings.write({{settingskeys::reminderEvents, merged}});
    else if (leadChanged)
        written = settings.write({{settingskeys::reminderLeadMinutes, now.leadMinutes}});
    if (!written)
        return Error{written.error()};
    return now;
}

} // namespace eventtimer
