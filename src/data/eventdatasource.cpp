#include "data/eventdatasource.h"

#include "data/cachefolder.h"
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

    std::optional<Icon> icon(const QString &url) override
    {
        asked.append(url);
        std::optional<Icon> icon = m_cache.icon(url);
        missing = missing || (!icon && !m_cache.has(url) && iconCacheKey(url));
        return icon;
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

    std::optional<Icon> icon(const QString &url) override
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

EventDataSource::EventDataSource(const SettingsStore &settings, CacheFolder &cache,
                                 UrlLoader &loader, const Clock &clock, QTextStream &out,
                                 QTextStream &err)
    : m_settings(settings)
    , m_cache(cache)
    , m_loader(loader)
    , m_clock(clock)
    , m_out(out)
    , m_err(err)
{}

QUrl EventDataSource::serviceUrl() const
{
    QString base = QStringLiteral(EVENTTIMER_SERVICE_URL);
    const QVariant configured = m_settings.value(settingskeys::serviceUrl);
    if (configured.typeId() == QMetaType::QString && !configured.toString().isEmpty())
        base = configured.toString();
    while (base.endsWith(u'/'))
        base.chop(1);
    return QUrl(base + u"/api/events/sequence"_s, QUrl::StrictMode);
}

SectionList EventDataSource::loadSections()
{
    const QDateTime now = m_clock.now();
    const std::optional<QByteArray> cached =
        m_cache.read(documentFile.toString(), UrlLoader::Limits().maxBodyBytes);
    // A date file that does not hold a date counts as no date.
    const std::optional<QByteArray> dateText = m_cache.read(dateFile.toString(), 64);
    const QDateTime stamp =
        dateText
            ? QDateTime::fromString(QString::fromLatin1(dateText->trimmed()), Qt::ISODateWithMs)
            : QDateTime();

    // A copy without a date is never refreshed; a date in the future counts as fresh.
    bool download = !cached;
    if (stamp.isValid()) {
        const qint64 age = (now.toMSecsSinceEpoch() - stamp.toMSecsSinceEpoch()) / 1000;
        download = download || age >= refreshAfterSeconds;
    }

    QByteArray bytes;
    if (download) {
        const QUrl url = serviceUrl();
        if (!url.isValid()) {
            // Nothing can be asked of an address that is not one; say so on the error stream.
            m_err << "eventtimer: the event service address is not a valid URL: " << url.toString()
                  << Qt::endl;
            return {};
        }
        Result<QByteArray> body = m_loader.read(url);
        if (!body) {
            say(connectionError);
            return {};
        }
        bytes = std::move(body).value();
        // The bytes first, then their date: a start killed in between finds the new bytes with
        // the old date, never a date without its bytes.
        if (m_cache.write(documentFile.toString(), bytes))
            m_cache.write(dateFile.toString(),
                          m_clock.now().toUTC().toString(Qt::ISODateWithMs).toLatin1());
        say(connectionOk);
    } else {
        bytes = *cached;
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
    // A start from the cache parses once; only missing icons cost a second pass.
    IconCache cache(m_cache, m_err);
    AskedIcons asked(cache);
    ParsedDocument parsed = parseDocument(document, {day, &asked});
    if (!asked.missing)
        return parsed;
    const QHash<QString, bool> fetched = cache.fetchMissing(asked.asked, m_loader, iconConcurrency);
    FetchedIcons icons(cache, fetched);
    return parseDocument(document, {day, &icons});
}

void EventDataSource::say(const QString &line)
{
    m_out << line << Qt::endl;
}

} // namespace eventtimer
