#pragma once

#include "data/keyvaluestore.h"

#include <QSettings>
#include <QStringView>

#include <memory>

namespace eventtimer {

// Every key the program keeps in the user's settings store, in one place. Icon entries are
// keyed by iconCacheKey and are not listed.
namespace settingskeys {
inline constexpr QStringView documentBytes = u"json_events_sequence";
inline constexpr QStringView documentDate = u"json_events_date";
inline constexpr QStringView serviceUrl = u"event_service_url";
} // namespace settingskeys

// The settings store the program reads and writes, over the QSettings it is handed. Values are
// written through to the QSettings object at once; sync() puts them on disk.
class SettingsStore final : public KeyValueStore
{
public:
    explicit SettingsStore(QSettings &settings);

    // The user's standard store: $XDG_CONFIG_HOME/tolmerkvarn/eventtimer.conf, in the store's
    // own format.
    static std::unique_ptr<QSettings> openStandard();
    // The format of the standard store: binary, reading hand-written text files too.
    static QSettings::Format format();
    // A named suite shared with companion programs: $XDG_CONFIG_HOME/<suite>.conf, in the same
    // format.
    static std::unique_ptr<QSettings> openSuite(const QString &suite);

    QVariant value(const QString &key) const override;
    void setValue(const QString &key, const QVariant &value) override;
    void remove(const QString &key) override;

    // Writes what has changed to disk; false when the file could not be written.
    bool sync();

private:
    QSettings &m_settings;
};

} // namespace eventtimer
