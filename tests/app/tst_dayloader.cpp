#include "app/eventtimer.h"
#include "data/eventdatasource.h"
#include "localeventservice/localeventservice.h"
#include "manualclock.h"
#include "model/scheduleday.h"
#include "suite/suiteformat.h"
#include "ui/viewcontroller.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using eventtimer::testing::ManualClock;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// One section whose event, with a chat link, starts every hour.
QByteArray document(const char *event)
{
    return QByteArray(R"([{"category": "C", "name": "S", "segments": {"0": {"name": ")") + event +
           R"(", "chatlink": "[&L]"}}, "sequences": {"partial": [], "pattern": [{"d": 60, "r": 0}]}}])";
}

// "A 22": the event the timetable shows and the day of the month it is for; "empty".
QString dayText(const QString &event, QDate day)
{
    return (event.isEmpty() ? u"empty"_s : event) + u' ' + QString::number(day.day());
}

} // namespace

// The day's owner as the player meets it: at the start, on F5 and at midnight, whatever the
// event service does, a timetable once shown is never taken away.
class TestDayLoader : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;
    LocalEventService m_service;
    const QString m_document = LocalEventService::documentPath.toString();

    // What the cache holds (a copy of A downloaded that many days ago; none below 0) and what
    // the service answers ("B": a document of B, "[]", or an HTTP status).
    void prepare(int copyAge, const QByteArray &answer, const QDateTime &now)
    {
        CacheFolder cache(CacheFolder::standardPath(), m_errors);
        QDir(cache.path()).removeRecursively();
        if (copyAge >= 0)
            QVERIFY(cache.write(EventDataSource::documentFile.toString(), document("A")) &&
                    cache.write(EventDataSource::dateFile.toString(),
                                now.addDays(-copyAge).toString(Qt::ISODateWithMs).toLatin1()));
        const int status = answer.toInt();
        m_service.setDocument(answer == "[]" ? answer : document(answer.constData()));
        m_service.setBehaviour(m_document, {.status = status ? status : 200});
    }

    // "A 22" for the suite's first event and its day; "" when there is no suite.
    static QString published()
    {
        QFile file(suitekeys::suitePath());
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QJsonObject suite = QJsonDocument::fromJson(file.readAll()).object();
        return dayText(
            suite.value(suitekeys::sequence).toArray().first().toString(),
            QDateTime::fromString(suite.value(suitekeys::axisDayStart).toString(), Qt::ISODate)
                .date());
    }

    static QString shown(EventTimer &program)
    {
        const TimelineWidget *timeline = program.controller().horizontalScrollContent();
        if (!program.controller().isBuilt() || !program.days().shownDay())
            return u"not built"_s;
        return dayText(timeline->boxes().isEmpty() ? QString()
                                                   : timeline->boxes().first().event().name,
                       program.days().shownDay()->day);
    }

    QString m_said;
    QTextStream m_output{&m_said};
    QTextStream m_errors{&m_said};

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
            qputenv(variable, m_home.filePath(QString::fromLatin1(variable)).toUtf8());
        QVERIFY(m_service.listen());
        QSettings(SettingsStore::standardPath(), QSettings::IniFormat)
            .setValue(settingskeys::serviceUrl.toString(), m_service.baseUrl().toString());
    }

    void init() { QFile::remove(suitekeys::suitePath()); }

    void keepsWhatItShows_data()
    {
        QTest::addColumn<QString>("occasion");
        QTest::addColumn<int>("copyAge");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("shows");
        QTest::addColumn<QString>("suite");  // afterwards; empty when left as it was
        QTest::addColumn<QString>("status"); // a pattern
        const auto row = [](const QString &occasion, const char *condition, int copyAge,
                            const QByteArray &answer, const QString &shows, const QString &suite,
                            const QString &status = u"^$"_s) {
            QTest::addRow("%s, %s", qPrintable(occasion), condition)
                << occasion << copyAge << answer << shows << suite << status;
        };
        const auto kept = [](const QString &since, const QString &reason, const QString &shown) {
            return u"^Not updated since "_s + since + u": "_s + reason +
                   u" \\(http://127\\.0\\.0\\.1:\\d+/api/events/sequence\\)\\. "_s + shown +
                   u"F5 tries again\\.$"_s;
        };
        const QString failed = u"HTTP 500"_s, nothing = u"the event document holds no sections"_s;
        // The start shows what it gets, an empty timetable included, and publishes it.
        for (const auto &[condition, age, answer, shows] :
             {std::tuple{"download ok", -1, "A", "A 22"},
              {"fails, fresh copy", 0, "500", "A 22"},
              {"fails, expired copy", 8, "500", "empty 22"},
              {"fails, no copy", -1, "500", "empty 22"},
              {"no sections", -1, "[]", "empty 22"}})
            row(u"start"_s, condition, age, answer, QString::fromLatin1(shows),
                QString::fromLatin1(shows));
        // F5 downloads whatever the copy's age; when that fails, everything stays.
        row(u"reload"_s, "download ok", 0, "B", u"B 22"_s, u"B 22"_s);
        for (const auto &[condition, age] : {std::pair{"fails, fresh copy", 0},
                                             {"fails, expired copy", 8},
                                             {"fails, no copy", -1}})
            row(u"reload"_s, condition, age, "500", u"A 22"_s, {}, kept(u"23:59"_s, failed, {}));
        row(u"reload"_s, "no sections", 0, "[]", u"A 22"_s, {}, kept(u"23:59"_s, nothing, {}));
        // The new day from the copy however old, else the old day stays with its suite.
        const QString oldDay = u"The timetable shown is for Sun 22 Nov; "_s;
        row(u"day change"_s, "download ok", 8, "B", u"B 23"_s, u"B 23"_s);
        row(u"day change"_s, "fails, fresh copy", 0, "500", u"A 23"_s, u"A 23"_s);
        row(u"day change"_s, "fails, expired copy", 8, "500", u"A 23"_s, u"A 23"_s,
            kept(u"00:00"_s, failed,
                 u"This timetable comes from the copy downloaded on Sat 14 Nov; "_s));
        row(u"day change"_s, "fails, no copy", -1, "500", u"A 22"_s, {},
            kept(u"00:00"_s, failed, oldDay));
        row(u"day change"_s, "no sections", 8, "[]", u"A 22"_s, {},
            kept(u"00:00"_s, nothing, oldDay));
    }

    void keepsWhatItShows()
    {
        QFETCH(QString, occasion);
        QFETCH(int, copyAge);
        QFETCH(QByteArray, answer);
        QFETCH(QString, shows);
        QFETCH(QString, suite);
        QFETCH(QString, status);
        ManualClock clock(QDateTime(QDate(2026, 11, 22), QTime(23, 59), QTimeZone::utc()),
                          QTimeZone::utc());
        EventTimer program(clock, m_output, m_errors);
        if (occasion != u"start"_s) {
            prepare(-1, "A", clock.now());
            program.show();
            QTRY_COMPARE(shown(program), u"A 22"_s);
            QTRY_COMPARE(published(), u"A 22"_s);
            QFile::remove(suitekeys::suitePath());
        }
        prepare(copyAge, answer, clock.now());
        if (occasion == u"start"_s)
            program.show();
        else if (occasion == u"reload"_s)
            QTest::keyClick(&program.window(), Qt::Key_F5);
        else
            clock.advance(1min);
        QTRY_VERIFY(!program.days().isLoading());
        QTRY_COMPARE(shown(program), shows);
        QTest::qWait(20); // a suite that is not to be written has had its chance
        QTRY_COMPARE(published(), suite);
        // An empty timetable says why, where the address is set, and that F5 tries again.
        if (shows.startsWith(u"empty"_s))
            QVERIFY(program.controller().statusMessage()->text().endsWith(
                u"\nThe address is event_service_url in "_s + SettingsStore::standardPath() +
                u"; F5 tries again."_s));
        const QString line = program.window().statusLine()->text();
        QVERIFY2(QRegularExpression(status).match(line).hasMatch(), qPrintable(line));
        QCOMPARE(program.window().statusLine()->isVisible(), !line.isEmpty());
    }

    // Hiding is a view: whatever the timetable leaves out, the shared suite is the same byte
    // for byte and the reminders plan the same, and the empty timetable says what hides it.
    void hidingIsOnlyAView()
    {
        const QDateTime now(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc());
        prepare(-1, "A", now);
        QByteArray plainSuite;
        QString plainReminder;
        for (const auto &[key, value, empty] :
             {std::tuple{settingskeys::hiddenSections, QVariant(), QString()},
              {settingskeys::hiddenSections, QVariant(u"S"_s), u"Every section is hidden"_s},
              {settingskeys::hiddenCategories, QVariant(u"C"_s), u"Every section is hidden"_s},
              {settingskeys::markedOnly, QVariant(true), u"No section holds a marked event"_s}}) {
            QFile::remove(suitekeys::suitePath());
            QSettings file(SettingsStore::standardPath(), QSettings::IniFormat);
            for (QStringView view : {settingskeys::hiddenSections, settingskeys::hiddenCategories,
                                     settingskeys::markedOnly})
                file.remove(view.toString());
            if (value.isValid())
                file.setValue(key.toString(), value);
            file.setValue(settingskeys::reminderEvents.toString(), u"B"_s);
            file.sync();
            ManualClock clock(now, QTimeZone::utc());
            EventTimer program(clock, m_output, m_errors);
            program.show();
            QTRY_VERIFY(program.controller().isBuilt());
            QTRY_VERIFY(QFile::exists(suitekeys::suitePath()));
            QCOMPARE(program.controller().emptyMessage()->isVisible(), !empty.isEmpty());
            QVERIFY(program.controller().emptyMessage()->text().startsWith(
                empty.isEmpty() ? u"No events"_s : empty));
            // A mark on the shown event: the reminders plan it whatever is hidden.
            program.reminders().choices().setMarked(u"A"_s, true);
            QFile suite(suitekeys::suitePath());
            QVERIFY(suite.open(QIODevice::ReadOnly));
            const std::optional<Reminder> next = program.reminders().scheduler().next();
            QVERIFY(next);
            const QString reminder = next->summary() + u' ' + next->due.toString(Qt::ISODate);
            if (!value.isValid()) {
                plainSuite = suite.readAll();
                plainReminder = reminder;
                continue;
            }
            QCOMPARE(suite.readAll(), plainSuite);
            QCOMPARE(reminder, plainReminder);
        }
    }

    // Started at 23:58 local time with A (every hour) marked one minute ahead: a reminder comes
    // at 23:59, and at the local midnight, not the UTC one, the new day's timetable takes the
    // place, with its first occurrence at that midnight.
    void changesDayAtLocalMidnight_data()
    {
        QTest::addColumn<QDateTime>("start");
        QTest::addColumn<QDate>("next");
        QTest::newRow("UTC") << QDateTime(QDate(2026, 11, 22), QTime(23, 58), QTimeZone::utc())
                             << QDate(2026, 11, 23);
        QTest::newRow("UTC+2") << QDateTime(QDate(2026, 11, 22), QTime(23, 58), QTimeZone(7200))
                               << QDate(2026, 11, 23);
        QTest::newRow("UTC-5") << QDateTime(QDate(2026, 11, 22), QTime(23, 58), QTimeZone(-18000))
                               << QDate(2026, 11, 23);
        const QTimeZone berlin("Europe/Berlin");
        QTest::newRow("into summer time")
            << QDateTime(QDate(2026, 3, 28), QTime(23, 58), berlin) << QDate(2026, 3, 29);
        QTest::newRow("out of summer time")
            << QDateTime(QDate(2026, 10, 24), QTime(23, 58), berlin) << QDate(2026, 10, 25);
    }

    void changesDayAtLocalMidnight()
    {
        QFETCH(QDateTime, start);
        QFETCH(QDate, next);
        prepare(-1, "A", start);
        ManualClock clock(start, start.timeZone());
        EventTimer program(clock, m_output, m_errors);
        program.reminders().setBus(QDBusConnection(u"none"_s));
        program.reminders().choices().assign({u"A"_s}, 1);
        QStringList heard;
        connect(&program.reminders().scheduler(), &ReminderScheduler::remind, this,
                [&](const Reminder &reminder) { heard.append(reminder.startText); });
        program.show();
        QTRY_COMPARE(shown(program), dayText(u"A"_s, start.date()));
        // The day is published, and the reminders planned, after its first frame.
        QTRY_VERIFY(program.reminders().scheduler().next());

        clock.advance(1min);
        QCOMPARE(program.days().shownDay()->day, start.date());
        QCOMPARE(heard.size(), 1);
        clock.advance(1min);
        QTRY_COMPARE(shown(program), dayText(u"A"_s, next));
        const SectionList &sections = program.days().shownDay()->sections;
        QCOMPARE(sections.first()->sequence.first()->time,
                 secondsSinceEpoch(next.startOfDay(start.timeZone())));
        QTRY_COMPARE(published().section(u' ', 0, 0), u"A"_s);
    }
};

QTEST_MAIN(TestDayLoader)
#include "tst_dayloader.moc"
