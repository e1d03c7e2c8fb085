#pragma once

#include "model/eventcolor.h"
#include "model/icon.h"

#include <QString>

#include <optional>

namespace eventtimer {

// Something that can happen in a section: shared between the section's event list, its
// occurrences and, later, the view's chat-link registry. It names its section by name only,
// so the model holds no reference cycle.
class Event
{
public:
    QString name;
    EventColor backgroundColor;
    std::optional<QString> chatLink;
    std::optional<Icon> icon;
    QString wiki;
    std::optional<QString> section;
};

} // namespace eventtimer
