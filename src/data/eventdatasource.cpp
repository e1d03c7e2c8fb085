#include "data/eventdatasource.h"

#include "data/cachefolder.h"
#include "data/iconcache.h"
#include "data/settingsstore.h"
#include "data/urlloader.h"
#include "model/clock.h"
#include "model/documentjson.h"
#include "model/iconcachekey.h"

#include <QSet>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

const QString documentPath = u"/api/events/sequence"_s;
const QString connectionOk = u"[CONNECTION] OK, data correctly downloaded"_s;
const QString connectionError = u"[ERROR] There is an unspecified error with the connection"_s;
const QString parseError = u"[ERROR] An error has happened with parsing of json data"_s;
const QString jsonOk = u"[JSON] OK!"_s;

// Where the document is asked for: the configured root (else the built-in one) with the
// document's path added. An address that already names the document is taken as its root.
struct DocumentAddress
{
    QUrl url;
    // The service's root, without the document's path.
    QString root;
    // The user's setting named the document itself.
    bool namedDocument = false;
};

DocumentAddress documentAddress(const SettingsStore &settings)
{
    QString base = QStringLiteral(EVENTTIMER_SERVICE_URL);
    const QVariant configured = settings.value(settingskeys::serviceUrl);
    const bool isConfigured =
        configured.typeId() == QMetaType::QString && !configured.toString().trimmed().isEmpty();
    if (isConfigured)
        base = configured.toString().trimmed();
    while (base.endsWith(u'/'))
        base.chop(1);
    const bool namedDocument = base.endsWith(documentPath);
    if (namedDocument)
        base.chop(documentPath.size());
    return {QUrl(base + documentPath, QUrl::StrictMode), base, isConfigured && namedDocument};
}

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
                                 QTextStream &err, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_cache(cache)
    , m_loader(loader)
    , m_clock(clock)
    , m_out(out)
    , m_err(err)
{}

EventDataSource::~EventDataSource() = default;

QUrl EventDataSource::serviceUrl() const
{
    return documentAddress(m_settings).url;
}

void EventDataSource::load(bool download)
{
    const QDateTime now = m_clock.now();
    m_result = DayData();
    m_result.day = now.toTimeZone(m_clock.zone()).date();
    m_cached = m_cache.read(documentFile.toString(), UrlLoader::Limits().maxBodyBytes);
    // A date file that does not hold a date counts as no date.
    const std::optional<QByteArray> dateText = m_cache.read(dateFile.toString(), 64);
    const QDateTime stamp =
        dateText
            ? QDateTime::fromString(QString::fromLatin1(dateText->trimmed()), Qt::ISODateWithMs)
            : QDateTime();
    m_result.downloadedAt = stamp;

    // A copy without a date is never refreshed; a date in the future counts as fresh.
    download = download || !m_cached;
    if (stamp.isValid()) {
        const qint64 age = (now.toMSecsSinceEpoch() - stamp.toMSecsSinceEpoch()) / 1000;
        download = download || age >= refreshAfterSeconds;
    }
    if (!download) {
        m_result.origin = DayData::Origin::Cache;
        QTimer::singleShot(0, this, [this] { decode(*m_cached, Lines::Said); });
        return;
    }

    const DocumentAddress address = documentAddress(m_settings);
    const QUrl &url = address.url;
    if (!url.isValid()) {
        // Nothing can be asked of an address that is not one; no connection was tried.
        m_err << "eventtimer: the event service address is not a valid URL: " << url.toString()
              << Qt::endl;
        QTimer::singleShot(0, this,
                           [this] { fallBack(u"the event service address is not valid"_s); });
        return;
    }
    if (address.namedDocument)
        m_err << "eventtimer: event_service_url names the document; its root " << address.root
              << " is used" << Qt::endl;
    Q_EMIT progress(Stage::Document, 0, 1);
    m_loader.read(url, [this, url](Result<QByteArray> body) { downloaded(url, std::move(body)); });
}

void EventDataSource::downloaded(const QUrl &url, Result<QByteArray> body)
{
    if (!body) {
        say(connectionError);
        m_err << "eventtimer: cannot read the event document from " << url.toString() << ": "
              << body.error() << Qt::endl;
        fallBack(body.error());
        return;
    }
    // The bytes first, then their date: a start killed in between finds the new bytes with the
    // old date, never a date without its bytes.
    const QDateTime now = m_clock.now();
    if (m_cache.write(documentFile.toString(), body.value()))
        m_cache.write(dateFile.toString(), now.toUTC().toString(Qt::ISODateWithMs).toLatin1());
    say(connectionOk);
    m_result.origin = DayData::Origin::Downloaded;
    m_result.downloadedAt = now;
    decode(body.value(), Lines::Said);
}

void EventDataSource::fallBack(const QString &reason)
{
    m_result.problem = LoadProblem{reason, serviceUrl()};
    if (!m_cached) {
        fail(reason);
        return;
    }
    m_result.origin = DayData::Origin::Kept;
    decode(*m_cached, Lines::Silent);
}

void EventDataSource::decode(const QByteArray &bytes, Lines lines)
{
    DecodedDocument document = decodeDocument(bytes);
    if (document.error) {
        if (lines == Lines::Said)
            say(parseError);
        fail(document.error->kind == DocumentJsonError::Kind::NotJson
                 ? u"the event document is no JSON ("_s + document.error->jsonError + u')'
                 : u"the event document is no list of sections"_s);
        return;
    }
    if (lines == Lines::Said)
        say(jsonOk);

    // A start from the cache parses once; only missing icons cost a second pass. The kept copy
    // that stands in for a failed download shows the icons the cache has.
    m_document = std::move(document.sections);
    m_result.day = m_clock.now().toTimeZone(m_clock.zone()).date();
    const ScheduleDay day = ScheduleDay::of(m_result.day, m_clock.zone());
    m_icons = std::make_unique<IconCache>(m_cache, m_err);
    AskedIcons asked(*m_icons);
    ParsedDocument parsed = parseDocument(m_document, {day, &asked});
    if (!asked.missing || lines == Lines::Silent) {
        finish(std::move(parsed), lines);
        return;
    }
    Q_EMIT progress(Stage::Icons, 0, 0);
    m_icons->fetchMissing(
        asked.asked, m_loader, iconConcurrency,
        [this, day](const IconCache::Fetched &fetched) {
            FetchedIcons icons(*m_icons, fetched);
            finish(parseDocument(m_document, {day, &icons}), Lines::Said);
        },
        [this](int settled, int total) { Q_EMIT progress(Stage::Icons, settled, total); });
}

void EventDataSource::finish(ParsedDocument parsed, Lines lines)
{
    if (lines == Lines::Said)
        for (const SkippedSection &skipped : parsed.skipped)
            say(skipped.line());
    if (parsed.sections.isEmpty()) {
        fail(parsed.skipped.isEmpty() ? u"the event document holds no sections"_s
                                      : u"no section of the event document could be read"_s);
        return;
    }
    // The icons are all in by now: the day after shows what the cache holds.
    m_result.followingDay =
        parseDocument(m_document,
                      {ScheduleDay::of(m_result.day.addDays(1), m_clock.zone()), m_icons.get()})
            .sections;
    m_result.sections = std::move(parsed.sections);
    m_document = {};
    m_cached.reset();
    Q_EMIT finished(m_result);
}

void EventDataSource::fail(const QString &reason)
{
    // A kept copy that cannot stand in leaves the download's own reason.
    if (!m_result.problem)
        m_result.problem = LoadProblem{reason, serviceUrl()};
    m_result.origin = DayData::Origin::None;
    m_result.downloadedAt = {};
    m_result.sections.clear();
    m_result.followingDay.clear();
    m_document = {};
    m_cached.reset();
    Q_EMIT finished(m_result);
}

void EventDataSource::say(const QString &line)
{
    m_out << line << Qt::endl;
}

} // namespace eventtimer
