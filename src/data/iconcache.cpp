#include "data/iconcache.h"

#include "data/keyvaluestore.h"
#include "data/tiffcodec.h"
#include "data/urlloader.h"

#include <QUrl>

namespace eventtimer {

IconCache::IconCache(KeyValueStore &store)
    : m_store(store)
{}

std::optional<QImage> IconCache::icon(const QString &url)
{
    const std::optional<QString> key = iconCacheKey(url);
    if (!key)
        return std::nullopt;
    auto known = m_decoded.find(*key);
    if (known == m_decoded.end()) {
        // Stored once, never replaced: data that does not decode leaves the icon absent.
        const QVariant stored = m_store.value(*key);
        std::optional<QImage> image;
        if (stored.typeId() == QMetaType::QByteArray)
            image = TiffCodec::decode(stored.toByteArray());
        known = m_decoded.insert(*key, image);
    }
    return known.value();
}

bool IconCache::has(const QString &url) const
{
    const std::optional<QString> key = iconCacheKey(url);
    return key && m_store.value(*key).isValid();
}

QHash<QString, bool> IconCache::fetchMissing(const QStringList &asked, UrlLoader &loader,
                                             int concurrency)
{
    // Per key without a stored value, its URLs in the order they were asked for, each once.
    QStringList keys;
    QHash<QString, QStringList> urlsOf;
    for (const QString &url : asked) {
        const std::optional<QString> key = iconCacheKey(url);
        if (!key || has(url))
            continue;
        if (!urlsOf.contains(*key))
            keys.append(*key);
        QStringList &urls = urlsOf[*key];
        if (!urls.contains(url))
            urls.append(url);
    }

    QHash<QString, bool> fetched;
    QHash<QString, qsizetype> tried;
    QStringList round = keys;
    while (!round.isEmpty()) {
        QStringList texts;
        QList<QUrl> urls;
        for (const QString &key : std::as_const(round)) {
            texts.append(urlsOf.value(key).at(tried[key]++));
            urls.append(QUrl(texts.last(), QUrl::StrictMode));
        }
        const QList<Result<QByteArray>> bodies = loader.readAll(urls, concurrency);
        QStringList again;
        for (qsizetype i = 0; i < round.size(); ++i) {
            const QString &key = round.at(i);
            const QImage image = bodies.at(i) ? QImage::fromData(bodies.at(i).value()) : QImage();
            fetched.insert(texts.at(i), !image.isNull());
            if (!image.isNull()) {
                const QByteArray tiff = TiffCodec::encode(image);
                if (!tiff.isEmpty())
                    m_store.setValue(key, tiff);
                m_decoded.insert(key, image);
            } else if (tried.value(key) < urlsOf.value(key).size()) {
                again.append(key);
            }
        }
        round = again;
    }
    return fetched;
}

} // namespace eventtimer
