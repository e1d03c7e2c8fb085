#pragma once

#include "data/iconcache.h"
#include "model/documentparser.h"
#include "model/section.h"

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
    // The same, waiting in a local event loop: for tools and tests.
    SectionList loadSections(bool download = false);

    // The event service's document address: the built-in base, or the one the settings file
    // holds under "event_service_url", with the fixed path.
    QUrl serviceUrl() const;
    // Why the last load brought no document, in plain words; empty when it brought one.
    const QString &problem() const { return m_problem; }
    // The local day the last load's sections are for, and the same document's sections for the
    // day after it, for looking ahead (its skipped records are not reported again).
    QDate day() const { return m_day; }
    const SectionList &followingDay() const { return m_followingDay; }

Q_SIGNALS:
    void progress(eventtimer::EventDataSource::Stage stage, int done, int total);
    // The sections of today, in document order; empty when nothing usable could be had.
    void finished(const eventtimer::SectionList &sections);

private:
    void say(const QString &line);
    void downloaded(const QUrl &url, Result<QByteArray> body);
    void decode(const QByteArray &bytes);
    void finish(ParsedDocument parsed);
    void fail(const QString &problem);

    const SettingsStore &m_settings;
    CacheFolder &m_cache;
    UrlLoader &m_loader;
    const Clock &m_clock;
    QTextStream &m_out;
    QTextStream &m_err;
    QString m_problem;
    std::unique_ptr<IconCache> m_icons;
    QJsonArray m_document;
    QDate m_day;
    SectionList m_followingDay;
};

} // namespace eventtimer
