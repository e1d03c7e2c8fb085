#pragma once

#include "model/documentparser.h"
#include "model/section.h"

#include <QJsonArray>
#include <QTextStream>
#include <QUrl>

namespace eventtimer {

class Clock;
class SettingsStore;
class UrlLoader;

// Where the event document comes from: the copy kept in the settings store while it is less
// than a week old, otherwise a fresh download from the event service. Reports what happened
// in the four diagnostic lines (and one line per section record it had to skip).
class EventDataSource
{
public:
    static constexpr qint64 refreshAfterSeconds = 604800;
    static constexpr int iconConcurrency = 20;

    EventDataSource(SettingsStore &store, UrlLoader &loader, const Clock &clock, QTextStream &out);

    // The sections of today, in document order; empty when nothing usable could be had.
    SectionList loadSections();

    // The event service's document address: the built-in base, or the one the settings store
    // holds under "event_service_url", with the fixed path.
    QUrl serviceUrl() const;

private:
    void say(const QString &line);
    // Parses the document with the icons its kept events ask for: those in the store, and
    // those missing, fetched first.
    ParsedDocument parseWithIcons(const QJsonArray &document, const ScheduleDay &day);

    SettingsStore &m_store;
    UrlLoader &m_loader;
    const Clock &m_clock;
    QTextStream &m_out;
};

} // namespace eventtimer
