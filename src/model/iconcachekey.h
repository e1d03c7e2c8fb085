#pragma once

#include <QString>

#include <optional>

namespace eventtimer {

// The cache key of an icon URL: the last two "/"-separated pieces of the text between the
// URL's last two dots, joined by "_" (…/file/4F2A9C/517.png gives "4F2A9C_517"). Splitting
// goes by whole user-perceived characters. Absent when the URL has too few pieces.
std::optional<QString> iconCacheKey(const QString &url);

} // namespace eventtimer
