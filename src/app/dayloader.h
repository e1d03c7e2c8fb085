#pragma once

#include "app/daypublisher.h"
#include "data/daydata.h"
#include "data/eventdatasource.h"
#include "model/viewchoices.h"

#include <QDateTime>
#include <QObject>
#include <QTextStream>

#include <memory>
#include <optional>

namespace eventtimer {

class CacheFolder;
class Clock;
class Reminders;
class SettingsStore;
class TimetableWindow;
class UrlLoader;
class ViewController;

// The day's one owner, from the start to the next day: it loads the event document, decides
// whether what came takes the place of the timetable shown, has the window show it, publishes
// the day's chat-link occurrences to the shared suite, hands the days to the reminders, and
// every minute notices a new local day, which it loads the same way. F5 loads again.
//
// The start shows whatever it brings, as the program always has: an empty timetable when the
// document could not be had. Once a timetable has been shown, nothing that fails takes it away:
// a load that fails or yields no sections leaves the timetable and the suite as they are, and
// the window's status line (and a line on the error stream) says why and since when. A new day
// whose download fails is built from the copy in the cache folder, however old, and the status
// line names the day that copy was downloaded.
//
// The player's view choices (hidden sections and categories, only marked, Next up) shape only
// what the window shows: a change builds the shown day's timetable again, and never touches the
// suite or the reminders, which always take the whole day.
class DayLoader : public QObject
{
    Q_OBJECT

public:
    // What it works with; the program owns them all.
    struct Parts
    {
        const SettingsStore &settings;
        CacheFolder &cache;
        UrlLoader &loader;
        Clock &clock;
        QTextStream &out;
        QTextStream &err;
        Reminders &reminders;
        TimetableWindow &window;
    };

    // A day whose download failed is asked for again this often.
    static constexpr std::chrono::minutes retryInterval{15};

    explicit DayLoader(Parts parts, QObject *parent = nullptr);
    ~DayLoader() override;

    // Shows the loading, and loads today's timetable.
    void start();
    // Downloads the document again, whatever its age.
    void reload();
    // The settings file changed: the timetable shown takes what it uses of it, the view choices
    // included. (The address is read at every load.)
    void followSettings();
    const ViewChoices &viewChoices() const { return m_viewChoices; }

    // Whether a load is under way.
    bool isLoading() const { return m_source != nullptr; }
    // The timetable in the window.
    ViewController &controller() const { return *m_controller; }
    // The day it shows; absent while the first load is under way.
    const std::optional<DayData> &shownDay() const { return m_shown; }

Q_SIGNALS:
    // A new timetable stands in the window.
    void timetableReplaced();
    // The player asked, from the timetable, to hide a section or a category.
    void hideRequested(bool category, const QString &name);

private:
    enum class Occasion
    {
        Start,
        Reload,
        DayChange
    };

    void load(Occasion occasion);
    void loaded(Occasion occasion, const DayData &day);
    // Whether a load's day takes the place of the one shown: the rule above, in one place.
    bool replacesShown(Occasion occasion, const DayData &day) const;
    void show(Occasion occasion, DayData day);
    void keepShown(const DayData &day);
    // Why the timetable shown is not the latest, under the window and on the error stream.
    void sayStatus(const QString &status);
    // The shown day's timetable again, for changed view choices; nothing else changes.
    void reshow();
    // What the view is given of a day: the sections the choices let through.
    void hand(ViewController &controller, const DayData &day, const QString &problem);
    void minuteTick();
    std::unique_ptr<ViewController> makeController();
    QString progressText(EventDataSource::Stage stage, int done, int total) const;
    QString failureText(const LoadProblem &problem) const;

    Parts m_parts;
    DayPublisher m_publisher;
    std::unique_ptr<EventDataSource> m_source;
    std::unique_ptr<ViewController> m_controller;
    std::optional<DayData> m_shown;
    // The local day the latest load was for; a new one is loaded when the clock leaves it.
    QDate m_dayAsked;
    // Since when loads have failed, and when a failed new day is asked for again.
    QDateTime m_failingSince;
    QDateTime m_retryAt;
    ViewChoices m_viewChoices;
    // The sections the timetable in the window was given.
    SectionList m_given;
};

} // namespace eventtimer
