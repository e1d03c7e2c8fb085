#pragma once

#include "data/daydata.h"
#include "data/iconcache.h"
#include "model/documentparser.h"

#include <QJsonArray>
#include <QObject>
#include <QTextStream>
#include <QUrl>

#include <memory>

namespace eventtimer {

class CacheFolder;
class Clock;
class SettingsStore;
class UrlLoader;

// Where the event document comes from: the copy kept in the cache folder while it is less than
// a week old, otherwise a fresh download from the event service. Reports what happened in the
// four diagnostic lines on the output stream (and one line per section record it had to skip),
// and what else went wrong on the error stream. Loading never blocks the event loop.
//
// A download that fails still hands over the copy in the cache folder, whatever its age, marked
// as kept and with the reason: the lines on the output stream stay those of the failed download,
// and whoever shows the day decides whether the kept copy may stand in for it.
class EventDataSource : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 refreshAfterSeconds = 604800;
    static constexpr int iconConcurrency = 20;
    // The cache folder's files for the document and the moment it was downloaded.
    static constexpr QStringView documentFile = u"json_events_sequence";
    static constexpr QStringView dateFile = u"json_events_date";

    enum class Stage
    {
        Document,
        Icons
    };
    Q_ENUM(Stage)

    EventDataSource(const SettingsStore &settings, CacheFolder &cache, UrlLoader &loader,
                    const Clock &clock, QTextStream &out, QTextStream &err,
                    QObject *parent = nullptr);
    ~EventDataSource() override;

    // Starts loading today's sections; finished() brings them. download: whatever the age of
    // the kept copy (a reload asked for by the user).
    void load(bool download = false);

    // The event service's document address: the built-in base, or the one the settings file
    // holds under "event_service_url", with the fixed path.
    QUrl serviceUrl() const;

Q_SIGNALS:
    void progress(eventtimer::EventDataSource::Stage stage, int done, int total);
    // Everything the load brought, once.
    void finished(const eventtimer::DayData &day);

private:
    // Whether a decode speaks: the kept copy that stands in for a failed download says nothing
    // more on the output stream than the failure did.
    enum class Lines
    {
        Said,
        Silent
    };

    void say(const QString &line);
    void downloaded(const QUrl &url, Result<QByteArray> body);
    // The download failed: the kept copy, if there is one, comes with the reason.
    void fallBack(const QString &reason);
    void decode(const QByteArray &bytes, Lines lines);
    void finish(ParsedDocument parsed, Lines lines);
    void fail(const QString &reason);

    const SettingsStore &m_settings;
    CacheFolder &m_cache;
    UrlLoader &m_loader;
    const Clock &m_clock;
    QTextStream &m_out;
    QTextStream &m_err;
    std::unique_ptr<IconCache> m_icons;
    QJsonArray m_document;
    // The kept copy, for a download that fails.
    std::optional<QByteArray> m_cached;
    // What this load brings, filled as it goes.
    DayData m_result;
};

} // namespace eventtimer
