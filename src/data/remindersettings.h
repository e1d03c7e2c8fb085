#pragma once

#include "model/reminderchoices.h"
#include "model/result.h"
#include "model/section.h"

#include <QTextStream>

namespace eventtimer {

class SettingsStore;

// The reminder choices as the settings file keeps them. A lead time that is no whole number of
// minutes from 0 to 60 is said in one line and the default taken; the file keeps what it holds
// until the choices are saved again.
void loadReminderChoices(const SettingsStore &settings, ReminderChoices &choices, QTextStream &err);
Status saveReminderChoices(SettingsStore &settings, const ReminderChoices &choices);

// Marks that name no event of the sections, said in one line: they stay marked (another
// document may have the event) and remind of nothing.
void reportUnknownMarks(const ReminderChoices &choices, const SectionList &sections,
                        QTextStream &err);

} // namespace eventtimer
