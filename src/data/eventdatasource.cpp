#include "eventdatasource.h"

#include "clock.h"
#include "documentparser.h"
#include "iconcache.h"
#include "settingsstore.h"
#include "urlloader.h"

#include <QJsonDocument>
#include <QSet>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

const QString connectionOk = u"[CONNECTION] OK, data correctly downloaded"_s;
const QString connectionError = u"[ERROR] There is an unspecified error with the connection"_s;
const QString parseError = u"[ERROR] An error has happened with parsing of json data"_s;
const QString jsonOk = u"[JSON] OK!"_s;

// Parsing after the prefetch must not reach the network again: whatever was missing has just
// been tried, and what failed is tried again on the next start.
class NoFetch final : public ImageFetcher
{
public:
    Result<QByteArray> fetch(const QUrl &) override
    {
        return Error{u"not fetched again in this start"_s};
    }
};

// The icon texts of every segment record of the document, each once.
QStringList iconTexts(const QJsonArray &document)
{
    QStringList texts;
    QSet<QString> seen;
    for (const QJsonValue &element : document) {
        const QJsonObject segments = element.toObject().value(u"segments").toObject();
        for (auto it = segments.constBegin(); it != segments.constEnd(); ++it) {
            const QJsonValue icon = it.value().toObject().value(u"icon");
            if (icon.isString() && !seen.contains(icon.toString())) {
                seen.insert(icon.toString());
                texts.append(icon.toString());
            }
        }
    }
    return texts;
}

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

    prefetchIcons(document.array());
    NoFetch noFetch;
    IconCache icons(m_store, noFetch);
    const ParsedDocument parsed =
        parseDocument(document.array(), {ScheduleDay::containing(now, m_clock.zone()), &icons});
    for (const SkippedSection &skipped : parsed.skipped)
        say(skipped.line());
    return parsed.sections;
}

void EventDataSource::prefetchIcons(const QJsonArray &document)
{
    NoFetch noFetch;
    IconCache icons(m_store, noFetch);
    QStringList missing;
    QSet<QString> keys;
    for (const QString &text : iconTexts(document)) {
        const std::optional<QString> key = iconCacheKey(text);
        if (icons.needsFetch(text) && !keys.contains(*key)) {
            keys.insert(*key);
            missing.append(text);
        }
    }
    if (missing.isEmpty())
        return;

    QList<QUrl> urls;
    for (const QString &text : std::as_const(missing))
        urls.append(QUrl(text, QUrl::StrictMode));
    const QList<Result<QByteArray>> fetched = m_loader.readAll(urls, iconConcurrency);
    for (qsizetype i = 0; i < missing.size(); ++i)
        icons.storeFetched(missing.at(i), fetched.at(i));
    m_store.sync();
}

void EventDataSource::say(const QString &line)
{
    m_out << line << Qt::endl;
}

} // namespace eventtimer
