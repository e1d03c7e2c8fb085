#pragma once

#include "model/iconlookup.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QTextStream>

#include <functional>
#include <optional>

namespace eventtimer {

class CacheFolder;
class UrlLoader;

// The icons of the event document: the one owner that fetches and keeps them. An icon is kept
// as the bytes the service sent, in icons/ of the cache folder under its cache key, so it is
// downloaded once and later starts need no network. A failed download is not kept and is tried
// again next time; a kept file that does not decode leaves the icon absent and is kept as it is.
class IconCache final : public IconLookup
{
public:
    // A document asks for at most this many new icons per start, each at most this large, and
    // one is kept only up to the second size: a larger one is shown for this start alone.
    static constexpr int maxFetchedPerDocument = 1000;
    static constexpr qint64 maxIconBytes = 1024 * 1024;
    static constexpr qint64 maxKeptBytes = 64 * 1024;

    IconCache(CacheFolder &folder, QTextStream &err);

    // The kept icon of url's key, read once per key and decoded when first drawn; absent when
    // what is kept under it is no image or the URL has no key.
    std::optional<Icon> icon(const QString &url) override;

    // Whether anything at all is kept under url's key: then nothing is fetched for it.
    bool has(const QString &url);

    // Per URL fetched, whether it gave the icon.
    using Fetched = QHash<QString, bool>;

    // Fetches the icons that were asked for and not found, given in the order they were asked
    // for, each key from its first URL; a key whose URL failed is tried again with the next URL
    // asked for it. Keys are fetched several at a time, all under one deadline (the loader's
    // time-out): what is not in by then is left out of this start. What arrives and decodes is
    // kept, and what could not be had is said on the error stream. Calls back from the event
    // loop; progress counts the keys settled.
    void fetchMissing(const QStringList &asked, UrlLoader &loader, int concurrency,
                      std::function<void(Fetched)> done,
                      std::function<void(int settled, int total)> progress = {});

    static QString fileName(const QString &key);

private:
    // What is kept under a URL's key, read once per key: nothing, or the file and its icon.
    struct Kept
    {
        bool file = false;
        std::optional<Icon> icon;
    };
    const Kept *kept(const QString &url);
    struct Fetch;
    void fetchRound(const std::shared_ptr<Fetch> &fetch);
    void report(const QStringList &failures);

    CacheFolder &m_folder;
    QTextStream &m_err;
    QHash<QString, std::optional<QString>> m_keys;
    QHash<QString, Kept> m_kept;
};

} // namespace eventtimer
