#pragma once

#include "model/result.h"
#include "model/viewchoices.h"

namespace eventtimer {

class SettingsStore;

// The view choices as the settings file keeps them, under [view]: hidden_sections and
// hidden_categories (names, as hand-editable lists), marked_only and next_up.
ViewChoices readViewChoices(const SettingsStore &settings);

// Hides a section or a category by its name, or shows it again. The file is read again first
// and only that list is written, so hand edits of the rest stay.
Status writeHidden(SettingsStore &settings, bool category, const QString &name, bool hidden);

} // namespace eventtimer
