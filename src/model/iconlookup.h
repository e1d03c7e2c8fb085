#pragma once

#include "model/icon.h"

#include <QString>

#include <optional>

namespace eventtimer {

// The cache key of an icon URL: the last two "/"-separated pieces of the text between the
// URL's last two dots, joined by "_" (…/file/4F2A9C/517.png gives "4F2A9C_517"). Splitting
// goes by whole user-perceived characters. Absent when the URL has too few pieces.
std::optional<QString> iconCacheKey(const QString &url);

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
