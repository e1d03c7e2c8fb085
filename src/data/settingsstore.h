#pragma once

#include "model/result.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QSettings>
#include <QStringView>
#include <QTextStream>
#include <QTimer>

#include <initializer_list>
#include <memory>
#include <optional>
#include <utility>

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
// Whether every minute brings the axis back to the present (true unless set to false).
inline constexpr QStringView followPresent = u"view/follow_present";
// What the timetable leaves out (names kept as they are), only sections with a marked event,
// and the Next up list beside the axis.
inline constexpr QStringView hiddenSections = u"view/hidden_sections";
inline constexpr QStringView hiddenCategories = u"view/hidden_categories";
inline constexpr QStringView markedOnly = u"view/marked_only";
inline constexpr QStringView nextUp = u"view/next_up";
} // namespace settingskeys

// The settings a user may edit, as plain INI text: $XDG_CONFIG_HOME/tolmerkvarn/eventtimer.conf.
// The file is the truth: a change made by hand while the program runs is read (once watched),
// and the program writes only the keys it means to change, reading the file again first, so
// that what was edited by hand stays. (The INI writer keeps no comments.) A file that cannot be
// read is said once and never written over; a write that fails is said once; either way the
// program goes on with the change for as long as it runs.
class SettingsStore : public QObject
{
    Q_OBJECT

public:
    SettingsStore(QString fileName, QTextStream &err, QObject *parent = nullptr);
    ~SettingsStore() override;

    static QString standardPath();

    QVariant value(QStringView key, const QVariant &byDefault = {}) const;
    // Changes these keys, and only these. A list without names is written as an empty value.
    Status write(std::initializer_list<std::pair<QStringView, QVariant>> values);

    // Reads the file again, as it is now.
    void reload();
    // From now on, changes of the file by other programs are read, and said by changedOnDisk().
    void watch();

    bool isDamaged() const { return m_damagedText.has_value(); }
    QString fileName() const { return m_fileName; }
    // Why changes are not kept, in plain words; empty while they are.
    const QString &problem() const { return m_problem; }

Q_SIGNALS:
    void changedOnDisk();
    void problemChanged(const QString &problem);

private:
    void open();
    void setProblem(const QString &problem);
    void rewatch();

    QString m_fileName;
    QTextStream &m_err;
    std::unique_ptr<QSettings> m_settings;
    QString m_problem;
    // The text of the file when it was found damaged.
    std::optional<QByteArray> m_damagedText;
    std::unique_ptr<QFileSystemWatcher> m_watcher;
    // Editors write a file in several steps: it is read again once they are done.
    QTimer m_settle;
    // Our own writes change the file too; they are not news.
    QByteArray m_written;
};

} // namespace eventtimer
