#pragma once

#include "model/reminderchoices.h"
#include "model/result.h"

#include <QTextStream>

namespace eventtimer {

class SettingsStore;

// The reminder choices as the settings file keeps them: the marked events, in alphabetical
// order, and the minutes ahead.
struct ReminderSettings
{
    QStringList marked;
    int leadMinutes = ReminderChoices::defaultLeadMinutes;

    friend bool operator==(const ReminderSettings &, const ReminderSettings &) = default;
};

// What the file holds. A lead time that is no whole number of minutes from 0 to 60 is said in
// one line and the default taken; the file keeps what it holds until the lead is changed.
ReminderSettings readReminderSettings(const SettingsStore &settings, QTextStream &err);

// The program's changes from before to after, made to what the file holds now: the marks
// added and removed, and the lead if it changed; nothing else is written, so marks added or a
// lead set by hand meanwhile stay. Gives what the file then holds.
Result<ReminderSettings> writeReminderChanges(SettingsStore &settings,
                                              const ReminderSettings &before,
                                              const ReminderSettings &after);

} // namespace eventtimer
