#include "data/iconcache.h"

#include "data/cachefolder.h"
#include "data/urlloader.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace eventtimer {

IconCache::IconCache(CacheFolder &folder, QTextStream &err)
    : m_folder(folder)
    , m_err(err)
{}

QString IconCache::fileName(const QString &key)
{
    return u"icons/"_s + CacheFolder::safeName(key);
}

const IconCache::Kept *IconCache::kept(const QString &url)
{
    // A document names the same few dozen icon URLs again and again.
    auto key = m_keys.find(url);
    if (key == m_keys.end())
        key = m_keys.insert(url, iconCacheKey(url));
    if (!key.value())
        return nullptr;
    auto known = m_kept.find(*key.value());
    if (known == m_kept.end()) {
        // Kept once, never replaced: a file that does not decode leaves the icon absent.
        Kept kept;
        if (const std::optional<QByteArray> bytes =
                m_folder.read(fileName(*key.value()), maxIconBytes)) {
            kept.file = true;
            kept.icon = Icon::fromBytes(*bytes);
        } else {
            kept.file = m_folder.contains(fileName(*key.value()));
        }
        known = m_kept.insert(*key.value(), kept);
    }
    return &known.value();
}

std::optional<Icon> IconCache::icon(const QString &url)
{
    const Kept *found = kept(url);
    return found ? found->icon : std::nullopt;
}

bool IconCache::has(const QString &url)
{
    const Kept *found = kept(url);
    return found && found->file;
}

QHash<QString, bool> IconCache::fetchMissing(const QStringList &asked, UrlLoader &loader,
                                             int concurrency)
{
    // Per key not kept yet, its URLs in the order they were asked for, each once.
    QStringList keys;
    QHash<QString, QStringList> urlsOf;
    for (const QString &url : asked) {
        const std::optional<QString> key = iconCacheKey(url);
        if (!key || has(url))
            continue;
        if (!urlsOf.contains(*key)) {
            if (keys.size() == maxFetchedPerDocument) {
                m_err << "eventtimer: the document asks for more than " << maxFetchedPerDocument
                      << " new icons; the others wait for a later start" << Qt::endl;
                break;
            }
            keys.append(*key);
        }
        QStringList &urls = urlsOf[*key];
        if (!urls.contains(url))
            urls.append(url);
    }

    QHash<QString, bool> fetched;
    QHash<QString, qsizetype> tried;
    QStringList failures;
    QStringList round = keys;
    while (!round.isEmpty()) {
        QStringList texts;
        QList<QUrl> urls;
        for (const QString &key : std::as_const(round)) {
            texts.append(urlsOf.value(key).at(tried[key]++));
            urls.append(QUrl(texts.last(), QUrl::StrictMode));
        }
        const QList<Result<QByteArray>> bodies = loader.readAll(urls, concurrency, maxIconBytes);
        QStringList again;
        for (qsizetype i = 0; i < round.size(); ++i) {
            const QString &key = round.at(i);
            QImage image;
            if (bodies.at(i))
                image = Icon::decode(bodies.at(i).value());
            fetched.insert(texts.at(i), !image.isNull());
            if (!image.isNull()) {
                m_folder.write(fileName(key), bodies.at(i).value());
                m_kept.insert(key, {true, Icon(image)});
                continue;
            }
            failures.append(texts.at(i) + u": "_s +
                            (bodies.at(i) ? u"not an image"_s : bodies.at(i).error()));
            if (tried.value(key) < urlsOf.value(key).size())
                again.append(key);
        }
        round = again;
    }
    constexpr qsizetype shown = 3;
    for (qsizetype i = 0; i < std::min(failures.size(), shown); ++i)
        m_err << "eventtimer: no icon from " << failures.at(i) << Qt::endl;
    if (failures.size() > shown)
        m_err << "eventtimer: and " << failures.size() - shown
              << " more icons could not be fetched; they are tried again at the next start"
              << Qt::endl;
    return fetched;
}

} // namespace eventtimer
