#pragma once

#include "result.h"

#include <QImage>
#include <QString>

#include <optional>

namespace eventtimer {

class ImageFetcher;
class KeyValueStore;

// The cache key of an icon URL: the last two "/"-separated pieces of the text between the
// URL's last two dots, joined by "_" (…/file/4F2A9C/517.png gives "4F2A9C_517"). Splitting
// goes by whole user-perceived characters. Absent when the URL has too few pieces.
std::optional<QString> iconCacheKey(const QString &url);

// Icons kept in the settings store as TIFF data under their cache key, so that an icon is
// downloaded once and later starts need no network. Failed downloads are not stored and are
// tried again next time; a stored value that does not decode leaves the icon absent and is
// kept as it is.
class IconCache
{
public:
    IconCache(KeyValueStore &store, ImageFetcher &fetcher);

    // The icon behind url: from the store when its key is there, otherwise fetched and stored.
    std::optional<QImage> icon(const QString &url);

    // Whether icon(url) would fetch: the URL has a key and nothing is stored under it.
    bool needsFetch(const QString &url) const;

    // Decodes fetched bytes and stores the image as TIFF under the URL's key; a failed fetch or
    // undecodable bytes store nothing.
    std::optional<QImage> storeFetched(const QString &url, const Result<QByteArray> &fetched);

private:
    KeyValueStore &m_store;
    ImageFetcher &m_fetcher;
};

} // namespace eventtimer
