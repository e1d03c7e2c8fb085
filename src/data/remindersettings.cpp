#include "data/remindersettings.h"

#include "data/settingsstore.h"
#include "model/oneline.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace eventtimer {

void loadReminderChoices(const SettingsStore &settings, ReminderChoices &choices, QTextStream &err)
{
    QStringList marked = settings.value(settingskeys::reminderEvents).toStringList();
    marked.removeAll(QString());
    int lead = ReminderChoices::defaultLeadMinutes;
    const QVariant stored = settings.value(settingskeys::reminderLeadMinutes);
    if (stored.isValid()) {
        bool whole = false;
        const int minutes = stored.toString().trimmed().toInt(&whole);
        if (whole && minutes >= 0 && minutes <= ReminderChoices::maxLeadMinutes)
            lead = minutes;
        else
            err << "eventtimer: " << settingskeys::reminderLeadMinutes.toString() << " in "
                << settings.fileName() << " is \"" << stored.toStringList().join(u", "_s)
                << "\", not a whole number of minutes from 0 to " << ReminderChoices::maxLeadMinutes
                << "; " << lead << " is used" << Qt::endl;
    }
    choices.assign(marked, lead);
}

Status saveReminderChoices(SettingsStore &settings, const ReminderChoices &choices)
{
    settings.setValue(settingskeys::reminderEvents, choices.marked());
    settings.setValue(settingskeys::reminderLeadMinutes, choices.leadMinutes());
    return settings.sync();
}

void reportUnknownMarks(const ReminderChoices &choices, const SectionList &sections,
                        QTextStream &err)
{
    QSet<QString> known;
    for (const auto &section : sections)
        for (const auto &event : section->events)
            known.insert(event->name);
    QStringList unknown;
    for (const QString &name : choices.marked())
        if (!known.contains(name))
            unknown.append(u'"' + oneLine(name) + u'"');
    if (!unknown.isEmpty())
        err << "eventtimer: reminders: no event of the event document is named "
            << unknown.join(u", "_s) << "; kept, but nothing to remind of" << Qt::endl;
}

} // namespace eventtimer
