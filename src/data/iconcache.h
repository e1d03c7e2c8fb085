#pragma once

#include "model/iconlookup.h"

#include <QHash>
#include <QImage>
#include <QList>
#include <QString>

#include <optional>

namespace eventtimer {

class KeyValueStore;
class UrlLoader;

// The icons of the event document: the one owner that fetches and keeps them. An icon is kept
// in the settings store as TIFF data under its cache key, so it is downloaded once and later
// starts need no network. A failed download is not kept and is tried again next time; a stored
// value that does not decode leaves the icon absent and is kept as it is.
class IconCache final : public IconLookup
{
public:
    explicit IconCache(KeyValueStore &store);

    // The stored icon of url's key (decoded once per key); absent when nothing decodable is
    // stored under it or the URL has no key.
    std::optional<QImage> icon(const QString &url) override;

    // Whether anything at all is stored under url's key: then nothing is fetched for it.
    bool has(const QString &url) const;

    // Fetches the icons that were asked for and not found, given in the order they were asked
    // for, each key from its first URL; a key whose URL failed is tried again with the next URL
    // asked for it. Keys are fetched several at a time. What arrives and decodes is stored.
    // Returns, per URL fetched, whether it gave the icon.
    QHash<QString, bool> fetchMissing(const QStringList &asked, UrlLoader &loader, int concurrency);

private:
    KeyValueStore &m_store;
    QHash<QString, std::optional<QImage>> m_decoded;
};

} // namespace eventtimer
