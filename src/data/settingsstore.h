#pragma once

#include "model/result.h"

#include <QSettings>
#include <QStringView>
#include <QTextStream>

#include <memory>

namespace eventtimer {

// Every key the program keeps in the user's settings file, in one place.
namespace settingskeys {
inline constexpr QStringView serviceUrl = u"event_service_url";
// The address of an event's wiki page, with {page} for its name: only https.
inline constexpr QStringView wikiPageUrl = u"wiki_page_url";
// The window as it was last closed: its normal geometry, and whether it was maximized.
inline constexpr QStringView windowGeometry = u"window/geometry";
inline constexpr QStringView windowMaximized = u"window/maximized";
// The events to be reminded of, by name, and how many minutes ahead (0 to 60).
inline constexpr QStringView reminderEvents = u"reminders/events";
inline constexpr QStringView reminderLeadMinutes = u"reminders/lead_minutes";
// Whether the player has been told once that a closed window keeps reminding from the tray.
inline constexpr QStringView trayExplained = u"reminders/tray_explained";
} // namespace settingskeys

// The settings a user may edit, as plain INI text: $XDG_CONFIG_HOME/tolmerkvarn/eventtimer.conf.
// A file that cannot be read is said once on the error stream and left exactly as it is:
// nothing is written to it.
class SettingsStore
{
public:
    // The store over settings, which must use QSettings::IniFormat.
    SettingsStore(QSettings &settings, QTextStream &err);

    static std::unique_ptr<QSettings> openStandard();

    QVariant value(QStringView key) const;
    // Ignored while the file is damaged.
    void setValue(QStringView key, const QVariant &value);
    // Puts what changed on disk.
    Status sync();

    bool isDamaged() const { return m_settings.status() != QSettings::NoError; }
    QString fileName() const { return m_settings.fileName(); }

private:
    void reportDamage();

    QSettings &m_settings;
    QTextStream &m_err;
    bool m_reported = false;
};

} // namespace eventtimer
