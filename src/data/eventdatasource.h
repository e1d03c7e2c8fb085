#pragma once

#include "model/documentparser.h"
#include "model/section.h"

#include <QJsonArray>
#include <QTextStream>
#include <QUrl>

namespace eventtimer {

class CacheFolder;
class Clock;
class SettingsStore;
class UrlLoader;

// Where the event document comes from: the copy kept in the cache folder while it is less than
// a week old, otherwise a fresh download from the event service. Reports what happened in the
// four diagnostic lines on the output stream (and one line per section record it had to skip),
// and what else went wrong on the error stream.
class EventDataSource
{
public:
    static constexpr qint64 refreshAfterSeconds = 604800;
    static constexpr int iconConcurrency = 20;

    // The cache folder's files for the document and the moment it was downloaded.
    static constexpr QStringView documentFile = u"json_events_sequence";
    static constexpr QStringView dateFile = u"json_events_date";

    EventDataSource(const SettingsStore &settings, CacheFolder &cache, UrlLoader &loader,
                    const Clock &clock, QTextStream &out, QTextStream &err);

    // The sections of today, in document order; empty when nothing usable could be had.
    SectionList loadSections();

    // The event service's document address: the built-in base, or the one the settings file
    // holds under "event_service_url", with the fixed path.
    QUrl serviceUrl() const;

private:
    void say(const QString &line);
    // Parses the document with the icons its kept events ask for: those kept already, and
    // those missing, fetched first.
    ParsedDocument parseWithIcons(const QJsonArray &document, const ScheduleDay &day);

    const SettingsStore &m_settings;
    CacheFolder &m_cache;
    UrlLoader &m_loader;
    const Clock &m_clock;
    QTextStream &m_out;
    QTextStream &m_err;
};

} // namespace eventtimer
