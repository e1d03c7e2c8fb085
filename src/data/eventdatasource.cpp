#include "data/eventdatasource.h"

#include "data/iconcache.h"
#include "data/settingsstore.h"
#include "data/urlloader.h"
#include "model/clock.h"

#include <QJsonDocument>
#include <QSet>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

const QString connectionOk = u"[CONNECTION] OK, data correctly downloaded"_s;
const QString connectionError = u"[ERROR] There is an unspecified error with the connection"_s;
const QString parseError = u"[ERROR] An error has happened with parsing of json data"_s;
const QString jsonOk = u"[JSON] OK!"_s;

// The first pass over the document: answers from the store and notes every icon asked for,
// in order, and whether any was missing.
class AskedIcons final : public IconLookup
{
public:
    explicit AskedIcons(IconCache &cache)
        : m_cache(cache)
    {}

    std::optional<QImage> icon(const QString &url) override
    {
        asked.append(url);
        missing = missing || (iconCacheKey(url) && !m_cache.has(url));
        return m_cache.icon(url);
    }

    QStringList asked;
    bool missing = false;

private:
    IconCache &m_cache;
};

// The second pass, after the missing icons were fetched: what each event would have shown had
// its icon been fetched at the moment it was asked for. A key fetched in this start shows from
// the first URL that brought it on, not for the events asked for before that.
class FetchedIcons final : public IconLookup
{
public:
    FetchedIcons(IconCache &cache, const QHash<QString, bool> &fetched)
        : m_cache(cache)
        , m_fetched(fetched)
    {
        for (auto it = fetched.cbegin(); it != fetched.cend(); ++it)
            m_fetchedKeys.insert(*iconCacheKey(it.key()));
    }

    std::optional<QImage> icon(const QString &url) override
    {
        const std::optional<QString> key = iconCacheKey(url);
        if (!key)
            return std::nullopt;
        if (m_fetched.value(url))
            m_arrived.insert(*key);
        if (m_fetchedKeys.contains(*key) && !m_arrived.contains(*key))
            return std::nullopt;
        return m_cache.icon(url);
    }

private:
    IconCache &m_cache;
    const QHash<QString, bool> &m_fetched;
    QSet<QString> m_fetchedKeys;
    QSet<QString> m_arrived;
};

} // namespace

EventDataSource::EventDataSource(SettingsStore &store, UrlLoader &loader, const Clock &clock,
                                 QTextStream &out)
    : m_store(store)
    , m_loader(loader)
    , m_clock(clock)
    , m_out(out)
{}

QUrl EventDataSource::serviceUrl() const
{
    QString base = QStringLiteral(EVENTTIMER_SERVICE_URL);
    const QVariant configured = m_store.value(settingskeys::serviceUrl.toString());
    if (configured.typeId() == QMetaType::QString && !configured.toString().isEmpty())
        base = configured.toString();
    while (base.endsWith(u'/'))
        base.chop(1);
    return QUrl(base + u"/api/events/sequence"_s, QUrl::StrictMode);
}

SectionList EventDataSource::loadSections()
{
    const QDateTime now = m_clock.now();
    const QVariant cachedValue = m_store.value(settingskeys::documentBytes.toString());
    const QVariant stampValue = m_store.value(settingskeys::documentDate.toString());
    const bool haveCache = cachedValue.typeId() == QMetaType::QByteArray;

    // A copy without a date is never refreshed; a date in the future counts as fresh.
    bool download = !haveCache;
    if (stampValue.typeId() == QMetaType::QDateTime && stampValue.toDateTime().isValid()) {
        const qint64 age =
            (now.toMSecsSinceEpoch() - stampValue.toDateTime().toMSecsSinceEpoch()) / 1000;
        download = download || age >= refreshAfterSeconds;
    }

    QByteArray bytes;
    if (download) {
        const QUrl url = serviceUrl();
        if (!url.isValid()) {
            // Nothing can be asked of an address that is not one; say so on the error stream.
            QTextStream(stderr) << "eventtimer: the event service address is not a valid URL: "
                                << url.toString() << Qt::endl;
            return {};
        }
        Result<QByteArray> body = m_loader.read(url);
        if (!body) {
            say(connectionError);
            return {};
        }
        bytes = std::move(body).value();
        m_store.setValue(settingskeys::documentBytes.toString(), bytes);
        m_store.setValue(settingskeys::documentDate.toString(), m_clock.now());
        m_store.sync();
        say(connectionOk);
    } else {
        bytes = cachedValue.toByteArray();
    }

    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError || !document.isArray()) {
        say(parseError);
        return {};
    }
    say(jsonOk);

    const ParsedDocument parsed =
        parseWithIcons(document.array(), ScheduleDay::containing(now, m_clock.zone()));
    for (const SkippedSection &skipped : parsed.skipped)
        say(skipped.line());
    return parsed.sections;
}

ParsedDocument EventDataSource::parseWithIcons(const QJsonArray &document, const ScheduleDay &day)
{
    // A start from the store parses once; only missing icons cost a second pass.
    IconCache cache(m_store);
    AskedIcons asked(cache);
    ParsedDocument parsed = parseDocument(document, {day, &asked});
    if (!asked.missing)
        return parsed;
    const QHash<QString, bool> fetched = cache.fetchMissing(asked.asked, m_loader, iconConcurrency);
    m_store.sync();
    FetchedIcons icons(cache, fetched);
    return parseDocument(document, {day, &icons});
}

void EventDataSource::say(const QString &line)
{
    m_out << line << Qt::endl;
}

} // namespace eventtimer
