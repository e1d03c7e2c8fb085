#include "data/iconcache.h"

#include "data/cachefolder.h"
#include "data/urlloader.h"
#include "model/iconcachekey.h"

#include <QElapsedTimer>
#include <QTimer>
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

// One fetchMissing in progress.
struct IconCache::Fetch
{
    UrlLoader *loader = nullptr;
    int concurrency = 1;
    std::function<void(Fetched)> done;
    std::function<void(int, int)> progress;
    QStringList keys;
    QHash<QString, QStringList> urlsOf;
    QHash<QString, qsizetype> tried;
    QStringList round;
    Fetched fetched;
    QStringList failures;
    QElapsedTimer elapsed;
    int settled = 0;
    int notKept = 0;
};

void IconCache::fetchMissing(const QStringList &asked, UrlLoader &loader, int concurrency,
                             std::function<void(Fetched)> done,
                             std::function<void(int, int)> progress)
{
    auto fetch = std::make_shared<Fetch>();
    fetch->loader = &loader;
    fetch->concurrency = concurrency;
    fetch->done = std::move(done);
    fetch->progress = std::move(progress);
    // Per key not kept yet, its URLs in the order they were asked for, each once.
    for (const QString &url : asked) {
        const std::optional<QString> key = iconCacheKey(url);
        if (!key || has(url))
            continue;
        if (!fetch->urlsOf.contains(*key)) {
            if (fetch->keys.size() == maxFetchedPerDocument) {
                m_err << "eventtimer: the document asks for more than " << maxFetchedPerDocument
                      << " new icons; the others wait for a later start" << Qt::endl;
                break;
            }
            fetch->keys.append(*key);
        }
        QStringList &urls = fetch->urlsOf[*key];
        if (!urls.contains(url))
            urls.append(url);
    }
    fetch->round = fetch->keys;
    fetch->elapsed.start();
    fetchRound(fetch);
}

void IconCache::fetchRound(const std::shared_ptr<Fetch> &fetch)
{
    const auto left =
        fetch->loader->limits().timeout - std::chrono::milliseconds(fetch->elapsed.elapsed());
    if (fetch->round.isEmpty() || left.count() <= 0) {
        // Always from the event loop, as the loader's own answers come.
        QTimer::singleShot(0, fetch->loader, [this, fetch] {
            report(fetch->failures);
            if (fetch->notKept > 0)
                m_err << "eventtimer: " << fetch->notKept
                      << " icons larger than 64 KiB are shown, not kept" << Qt::endl;
            fetch->done(fetch->fetched);
        });
        return;
    }
    QStringList texts;
    QList<QUrl> urls;
    for (const QString &key : std::as_const(fetch->round)) {
        texts.append(fetch->urlsOf.value(key).at(fetch->tried[key]++));
        urls.append(QUrl(texts.last(), QUrl::StrictMode));
    }
    const int total = static_cast<int>(fetch->keys.size());
    const auto onProgress = [fetch, total](int, int) {
        if (fetch->progress)
            fetch->progress(++fetch->settled, total);
    };
    fetch->loader->readAll(
        urls, fetch->concurrency, maxIconBytes,
        [this, fetch, texts](const UrlLoader::Results &bodies) {
            QStringList again;
            for (qsizetype i = 0; i < fetch->round.size(); ++i) {
                const QString &key = fetch->round.at(i);
                QImage image;
                if (bodies.at(i))
                    image = Icon::decode(bodies.at(i).value());
                fetch->fetched.insert(texts.at(i), !image.isNull());
                if (!image.isNull()) {
                    if (bodies.at(i).value().size() <= maxKeptBytes)
                        m_folder.write(fileName(key), bodies.at(i).value());
                    else
                        ++fetch->notKept;
                    m_kept.insert(key, {true, Icon(image)});
                    continue;
                }
                fetch->failures.append(texts.at(i) + u": "_s +
                                       (bodies.at(i) ? u"not an image"_s : bodies.at(i).error()));
                if (fetch->tried.value(key) < fetch->urlsOf.value(key).size()) {
                    again.append(key);
                    --fetch->settled; // it counts when its next URL is settled
                }
            }
            fetch->round = again;
            fetchRound(fetch);
        },
        onProgress, left);
}

void IconCache::report(const QStringList &failures)
{
    constexpr qsizetype shown = 3;
    for (qsizetype i = 0; i < std::min(failures.size(), shown); ++i)
        m_err << "eventtimer: no icon from " << failures.at(i) << Qt::endl;
    if (failures.size() > shown)
        m_err << "eventtimer: and " << failures.size() - shown
              << " more icons could not be fetched; they are tried again at the next start"
              << Qt::endl;
}

} // namespace eventtimer
