#pragma once

#include "model/icon.h"

#include <QString>

#include <optional>

namespace eventtimer {

// How the parser finds an event's icon: it asks, and never fetches or stores anything itself.
// The data layer answers from its cache (and replays what it fetched for this start).
class IconLookup
{
public:
    virtual ~IconLookup() = default;

    // The icon behind url, or absent. Asked once per event the parser keeps, in the order of
    // the document's sections and their segment keys.
    virtual std::optional<Icon> icon(const QString &url) = 0;
};

} // namespace eventtimer
