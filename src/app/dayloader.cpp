#include "app/dayloader.h"

#include "app/reminders.h"
#include "app/timetablewindow.h"
#include "data/settingsstore.h"
#include "data/urlloader.h"
#include "data/viewsettings.h"
#include "model/clock.h"
#include "model/reminderchoices.h"
#include "ui/eventhook.h"
#include "ui/viewcontroller.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

QString dayText(QDate date)
{
    return QLocale::c().toString(date, u"ddd d MMM");
}

} // namespace

DayLoader::DayLoader(Parts parts, QObject *parent)
    : QObject(parent)
    , m_parts(parts)
    , m_publisher(parts.clock, parts.err, parts.reminders)
{
    // The minute on the clock's own timer, not the timetable's: a new day is noticed whatever
    // the window shows, and so are the reminders due.
    m_parts.clock.callEvery(std::chrono::minutes(1), this, [this] { minuteTick(); });
    // Only marked: a mark set or removed can give a section its row or take it.
    connect(&m_parts.reminders.choices(), &ReminderChoices::changed, this, [this] {
        if (m_viewChoices.markedOnly && m_shown &&
            m_viewChoices.shown(m_shown->sections, m_parts.reminders.choices().markedSet()) !=
                m_given)
            reshow();
    });
}

DayLoader::~DayLoader()
{
    // Whatever is still on its way is dropped at once.
    m_parts.loader.cancel();
}

void DayLoader::start()
{
    // The window shows its loading until the first day is in.
    m_controller = makeController();
    m_parts.window.showTimetable(m_controller->view());
    followSettings();
    load(Occasion::Start);
}

void DayLoader::reload()
{
    load(Occasion::Reload);
}

void DayLoader::followSettings()
{
    if (!m_controller)
        return;
    m_controller->setWikiPageUrl(
        m_parts.settings.value(settingskeys::wikiPageUrl).toString().trimmed());
    const bool follows = m_parts.settings.value(settingskeys::followPresent, true).toBool();
    m_controller->setFollowsPresent(follows);
    const ViewChoices choices = readViewChoices(m_parts.settings);
    m_parts.window.showViewChoices(follows, choices.nextUp, choices.markedOnly);
    const bool rebuild = choices.hiddenSections != m_viewChoices.hiddenSections ||
                         choices.hiddenCategories != m_viewChoices.hiddenCategories ||
                         choices.markedOnly != m_viewChoices.markedOnly;
    m_viewChoices = choices;
    m_controller->setNextUp(choices.nextUp, choices.markedOnly);
    if (rebuild && m_shown)
        reshow();
}

void DayLoader::load(Occasion occasion)
{
    // A load already under way gives way to this one.
    m_parts.loader.cancel();
    m_dayAsked = m_parts.clock.now().toTimeZone(m_parts.clock.zone()).date();
    m_source = std::make_unique<EventDataSource>(m_parts.settings, m_parts.cache, m_parts.loader,
                                                 m_parts.clock, m_parts.out, m_parts.err);
    connect(m_source.get(), &EventDataSource::progress, this,
            [this](EventDataSource::Stage stage, int done, int total) {
                // Before the first day in its own view, afterwards under the timetable shown.
                if (m_shown)
                    m_parts.window.showStatus(progressText(stage, done, total));
                else
                    m_controller->showProgress(progressText(stage, done, total));
            });
    connect(m_source.get(), &EventDataSource::finished, this,
            [this, occasion](const DayData &day) { loaded(occasion, day); });
    m_source->load(occasion == Occasion::Reload);
}

void DayLoader::loaded(Occasion occasion, const DayData &day)
{
    // Done with the source; it is deleted once its signal has returned.
    m_source.release()->deleteLater();
    if (!day.problem) {
        m_failingSince = {};
        m_retryAt = {};
    } else if (!m_failingSince.isValid()) {
        m_failingSince = m_parts.clock.now();
    }
    if (occasion == Occasion::DayChange && day.origin != DayData::Origin::Downloaded &&
        day.origin != DayData::Origin::Cache)
        m_retryAt = m_parts.clock.now().addSecs(
            std::chrono::duration_cast<std::chrono::seconds>(retryInterval).count());

    if (replacesShown(occasion, day)) {
        show(occasion, day);
    } else if (m_shown && !m_shown->sections.isEmpty()) {
        keepShown(day);
    } else {
        // An empty timetable gives way to one that says the latest reason.
        DayData empty = day;
        empty.sections.clear();
        empty.followingDay.clear();
        show(occasion, empty);
    }
}

bool DayLoader::replacesShown(Occasion occasion, const DayData &day) const
{
    if (day.sections.isEmpty())
        return occasion == Occasion::Start;
    if (day.origin != DayData::Origin::Kept)
        return true;
    // A copy kept past its week stands in only for a day that nothing shows yet: not at the
    // start, which shows that the download failed, and not for a day it shows already.
    return occasion == Occasion::DayChange && m_shown && m_shown->day < day.day;
}

void DayLoader::show(Occasion occasion, DayData day)
{
    // The start shows what came as it came, and publishes it, an empty day included; a kept
    // copy does not stand in for its failed download there.
    const bool publishing = occasion == Occasion::Start || !day.sections.isEmpty();
    if (occasion == Occasion::Start && day.origin == DayData::Origin::Kept) {
        day.sections.clear();
        day.followingDay.clear();
    }
    // The first load's day goes to the view that shows the loading.
    std::unique_ptr<ViewController> previous;
    if (m_shown) {
        previous = std::exchange(m_controller, makeController());
    }
    ViewController *controller = m_controller.get();
    if (publishing)
        connect(controller, &ViewController::timetableBuilt, this, [this, controller, day] {
            m_publisher.publishAfterFirstFrame(controller->horizontalScrollContent(), day);
        });
    m_shown = day;
    // An empty timetable says why, where the address is set, and how to try again.
    const QString why = day.problem && day.sections.isEmpty()
                            ? day.problem->text() + u"\nThe address is event_service_url in "_s +
                                  m_parts.settings.fileName() + u"; F5 tries again."_s
                            : QString();
    hand(*controller, day, why);
    if (previous)
        m_parts.window.showTimetable(controller->view());
    // A window in the tray builds the new day's timetable all the same: it keeps the time, the
    // reminders and the shared suite current.
    if (!m_parts.window.isVisible())
        controller->viewDidAppear();

    if (day.origin == DayData::Origin::Kept && !day.sections.isEmpty()) {
        sayStatus(failureText(*day.problem) +
                  u"This timetable comes from the copy downloaded on "_s +
                  dayText(day.downloadedAt.toTimeZone(m_parts.clock.zone()).date()) +
                  u"; F5 tries again."_s);
    } else {
        // An empty timetable says why itself.
        m_parts.window.showStatus({});
    }
    Q_EMIT timetableReplaced();
}

void DayLoader::reshow()
{
    if (m_shown->sections.isEmpty())
        return; // an empty timetable shows no section to hide
    // The old timetable goes once the event that asked for this one is done with it.
    std::exchange(m_controller, makeController()).release()->deleteLater();
    hand(*m_controller, *m_shown, {});
    m_parts.window.showTimetable(m_controller->view());
    if (!m_parts.window.isVisible())
        m_controller->viewDidAppear();
    Q_EMIT timetableReplaced();
}

void DayLoader::hand(ViewController &controller, const DayData &day, const QString &problem)
{
    const QSet<QString> &marked = m_parts.reminders.choices().markedSet();
    m_given = m_viewChoices.shown(day.sections, marked);
    if (const QString why = m_viewChoices.whyNoRows(day.sections, marked); !why.isEmpty())
        controller.setEmptyText(why);
    controller.setHiddenSections(m_viewChoices.hidden(day.sections, marked));
    controller.setNextUp(m_viewChoices.nextUp, m_viewChoices.markedOnly);
    controller.loadDidFinish(m_given, m_viewChoices.shown(day.followingDay, marked), problem);
}

void DayLoader::keepShown(const DayData &day)
{
    QString status = failureText(*day.problem);
    if (m_shown->origin == DayData::Origin::Kept)
        status += u"This timetable comes from the copy downloaded on "_s +
                  dayText(m_shown->downloadedAt.toTimeZone(m_parts.clock.zone()).date()) + u"; "_s;
    else if (m_shown->day != day.day)
        status += u"The timetable shown is for "_s + dayText(m_shown->day) + u"; "_s;
    sayStatus(status + u"F5 tries again."_s);
}

void DayLoader::sayStatus(const QString &status)
{
    // The line under the window, and the same words on the error stream.
    m_parts.window.showStatus(status);
    m_parts.err << "eventtimer: " << status << Qt::endl;
}

QString DayLoader::failureText(const LoadProblem &problem) const
{
    return u"Not updated since "_s +
           m_failingSince.toTimeZone(m_parts.clock.zone()).toString(u"HH:mm") + u": "_s +
           problem.reason + u" ("_s + problem.address.toDisplayString() + u"). "_s;
}

void DayLoader::minuteTick()
{
    m_parts.reminders.check();
    if (m_source)
        return; // a load is under way
    // A new local day (at midnight, or found after a suspend or a clock change), or a new day
    // whose download failed, asked for again.
    const QDateTime now = m_parts.clock.now();
    if (now.toTimeZone(m_parts.clock.zone()).date() != m_dayAsked ||
        (m_retryAt.isValid() && now >= m_retryAt))
        load(Occasion::DayChange);
}

std::unique_ptr<ViewController> DayLoader::makeController()
{
    auto controller = std::make_unique<ViewController>(m_parts.clock);
    ViewController *view = controller.get();
    view->viewDidLoad();
    view->setReminderChoices(&m_parts.reminders.choices());
    view->setWikiPageUrl(m_parts.settings.value(settingskeys::wikiPageUrl).toString().trimmed());
    view->setFollowsPresent(m_parts.settings.value(settingskeys::followPresent, true).toBool());
    view->setViewActions(m_parts.window.viewActions());
    connect(view, &ViewController::preferencesRequested, &m_parts.window,
            &TimetableWindow::preferencesRequested);
    // Hiding builds the timetable again: after the menu that asked has closed, not under it.
    connect(view, &ViewController::hideRequested, this, &DayLoader::hideRequested,
            Qt::QueuedConnection);
    // The timetable is built when its view first shows, as it is on the screen: once the
    // layouts have given it its size, from which the present's place is taken.
    new EventHook(view->view(), QEvent::Show, [view] {
        QMetaObject::invokeMethod(view, &ViewController::viewDidAppear, Qt::QueuedConnection);
    });
    return controller;
}

QString DayLoader::progressText(EventDataSource::Stage stage, int done, int total) const
{
    const QString host = m_source->serviceUrl().host();
    if (stage == EventDataSource::Stage::Document)
        return u"Loading the events from "_s + host + u"\u2026"_s;
    return u"Loading the events from "_s + host + u": icons "_s + QString::number(done) +
           u" of "_s + QString::number(total);
}

} // namespace eventtimer
