#include "iconcache.h"

#include "imagefetcher.h"
#include "keyvaluestore.h"
#include "tiffcodec.h"

#include <QStringList>
#include <QTextBoundaryFinder>
#include <QUrl>

#include <algorithm>

namespace eventtimer {

namespace {

// Splits text at every user-perceived character equal to separator, dropping empty pieces.
QStringList splitByCharacters(const QString &text, QChar separator)
{
    // In plain ASCII every character stands alone (only "\r\n" pairs up), so a plain split
    // gives the same pieces; URLs nearly always are.
    const bool ascii =
        std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x80; });
    if (ascii)
        return text.split(separator, Qt::SkipEmptyParts);

    QStringList pieces;
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    qsizetype pieceStart = 0;
    qsizetype characterStart = 0;
    while (true) {
        const qsizetype characterEnd = boundaries.toNextBoundary();
        if (characterEnd < 0)
            break;
        if (characterEnd - characterStart == 1 && text.at(characterStart) == separator) {
            if (characterStart > pieceStart)
                pieces.append(text.mid(pieceStart, characterStart - pieceStart));
            pieceStart = characterEnd;
        }
        characterStart = characterEnd;
    }
    if (text.size() > pieceStart)
        pieces.append(text.mid(pieceStart));
    return pieces;
}

} // namespace

std::optional<QString> iconCacheKey(const QString &url)
{
    const QStringList dotted = splitByCharacters(url, u'.');
    if (dotted.size() < 2)
        return std::nullopt;
    const QStringList path = splitByCharacters(dotted.at(dotted.size() - 2), u'/');
    if (path.size() < 2)
        return std::nullopt;
    return path.at(path.size() - 2) + u'_' + path.last();
}

IconCache::IconCache(KeyValueStore &store, ImageFetcher &fetcher)
    : m_store(store)
    , m_fetcher(fetcher)
{}

std::optional<QImage> IconCache::icon(const QString &url)
{
    const std::optional<QString> key = iconCacheKey(url);
    if (!key)
        return std::nullopt;

    const QVariant stored = m_store.value(*key);
    if (stored.isValid()) {
        // Stored once, never replaced: data that does not decode leaves the icon absent.
        if (stored.typeId() != QMetaType::QByteArray)
            return std::nullopt;
        return TiffCodec::decode(stored.toByteArray());
    }

    const QUrl address(url, QUrl::StrictMode);
    if (!address.isValid())
        return std::nullopt;
    return storeFetched(url, m_fetcher.fetch(address));
}

bool IconCache::needsFetch(const QString &url) const
{
    const std::optional<QString> key = iconCacheKey(url);
    return key && !m_store.value(*key).isValid() && QUrl(url, QUrl::StrictMode).isValid();
}

std::optional<QImage> IconCache::storeFetched(const QString &url, const Result<QByteArray> &fetched)
{
    const std::optional<QString> key = iconCacheKey(url);
    if (!key || !fetched)
        return std::nullopt;
    QImage image = QImage::fromData(fetched.value());
    if (image.isNull())
        return std::nullopt;
    const QByteArray tiff = TiffCodec::encode(image);
    if (tiff.isEmpty())
        m_store.remove(*key);
    else
        m_store.setValue(*key, tiff);
    return image;
}

} // namespace eventtimer
