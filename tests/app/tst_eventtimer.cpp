#include "app/commandline.h"
#include "app/eventtimer.h"
#include "app/preferencesdialog.h"
#include "app/windowplacement.h"
#include "localeventservice/localeventservice.h"
#include "manualclock.h"
#include "ui/viewcontroller.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace eventtimer;
using eventtimer::testing::ManualClock;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// The program, never with a display: without a home, a window could not even start.
void start(QProcess &process, const QStringList &arguments, const QString &home = QString())
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"DISPLAY"_s);
    environment.remove(u"WAYLAND_DISPLAY"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, home.isEmpty() ? u"xcb"_s : u"offscreen"_s);
    for (const char *variable :
         {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QString::fromLatin1(variable), home);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(EVENTTIMER_PROGRAM), arguments);
}

} // namespace

// Event Timer as the player starts it: the program's command line, one program per user, and
// its window.
class TestEventTimer : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;
    LocalEventService m_service;
    const QString m_document = LocalEventService::documentPath.toString();
    ManualClock m_clock{QDateTime(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc()),
                        QTimeZone::utc()};
    QString m_output;
    QString m_errors;
    QTextStream m_out{&m_output};
    QTextStream m_err{&m_errors};
    const QByteArray m_oneSection =
        R"([{"category": "C", "name": "S", "segments": {"0": {"name": "A"}},
            "sequences": {"partial": [], "pattern": [{"d": 60, "r": 0}]}}])";

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
            qputenv(variable, m_home.filePath(QString::fromLatin1(variable)).toUtf8());
        QVERIFY(m_service.listen());
        m_service.setDocument(m_oneSection);
        QSettings(SettingsStore::standardPath(), QSettings::IniFormat)
            .setValue(settingskeys::serviceUrl.toString(), m_service.baseUrl().toString());
    }

    void commandLines_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<int>("status"); // -1: the program starts
        QTest::addColumn<bool>("hidden");
        // What standard output starts with, or standard error when the status is not 0.
        QTest::addColumn<QString>("output");
        for (const auto &[name, arguments, status, hidden, output] :
             {std::tuple{"none", "", -1, false, ""},
              {"Qt's own, and ours",
               "-style Fusion --platform offscreen -stylesheet=a.qss -reverse --hidden "
               "-qwindowgeometry 800x600+0+0 -widgetcount",
               -1, true, ""},
              {"--help", "--help", 0, false, "Usage: eventtimer"},
              {"--version", "--version", 0, false, "eventtimer 0."},
              {"unknown", "-style Fusion --frobnicate", 2, false,
               "eventtimer: Unknown option 'frobnicate'.\nUsage: "},
              {"Qt's without its value", "-platform", 2, false, "eventtimer: Unknown option"},
              {"an argument", "x", 2, false, "eventtimer: unexpected argument x\n"}})
            QTest::newRow(name) << QString::fromLatin1(arguments) << status << hidden
                                << QString::fromLatin1(output);
    }

    void commandLines()
    {
        QFETCH(QString, arguments);
        QFETCH(int, status);
        QFETCH(bool, hidden);
        QFETCH(QString, output);
        const QStringList split = arguments.split(u' ', Qt::SkipEmptyParts);
        const CommandLine line = CommandLine::parse(split);
        QCOMPARE(line.exitStatus, status);
        QCOMPARE(line.hidden, hidden);
        QVERIFY2(output.isEmpty() || (status == 2 ? line.err : line.out).startsWith(output),
                 qPrintable(line.err));
        if (status < 0)
            return;
        // Answered by the program itself before it needs a display.
        QProcess process;
        start(process, split);
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitCode(), status);
        QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()), line.out);
        QCOMPARE(QString::fromUtf8(process.readAllStandardError()), line.err);
    }

    void oneProgramPerUser()
    {
        QTemporaryDir home;
        QProcess first, second, third;
        // Qt's own options are Qt's.
        start(first, {u"-style"_s, u"Fusion"_s, u"-reverse"_s, u"--hidden"_s}, home.path());
        QTRY_VERIFY_WITH_TIMEOUT(
            QFile::exists(home.filePath(u"org.tolmerkvarn.eventtimer.socket"_s)), 10000);

        // A second start hands over to the first and ends.
        start(second, {}, home.path());
        QVERIFY(second.waitForFinished(10000));
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(second.readAllStandardError().contains("was brought to the front"));
        QCOMPARE(first.state(), QProcess::Running);

        // A first program that crashed leaves its lock and socket: the next start takes over, and
        // runs on past the 3 s a start spends trying to hand over.
        ::kill(static_cast<pid_t>(first.processId()), SIGKILL);
        QVERIFY(first.waitForFinished(10000));
        start(third, {}, home.path());
        QVERIFY(!third.waitForFinished(5000));
        third.terminate();
        QVERIFY(third.waitForFinished(10000));
    }

    void showsItsLoadingReloadsAndDropsALoadWhenGone()
    {
        m_service.setBehaviour(m_document, {.delayMs = 300});
        QElapsedTimer gone;
        {
            EventTimer program(m_clock, m_out, m_err);
            program.show();
            QVERIFY(program.controller().statusMessage()->isVisible());
            QVERIFY(program.controller().statusMessage()->text().startsWith(
                u"Loading the events from 127.0.0.1"_s));
            QTRY_VERIFY(program.controller().isBuilt());
            const ViewController *first = &program.controller();

            // F5: downloaded again, though the copy is fresh; the new timetable takes the place,
            // and while it loads, the line under the old one says so.
            QTest::keyClick(&program.window(), Qt::Key_F5);
            QVERIFY(program.window().statusLine()->text().startsWith(u"Loading the events"_s));
            QTRY_COMPARE(m_service.requestCount(m_document), 2);
            QTRY_VERIFY(&program.controller() != first && program.controller().isBuilt());
            QVERIFY(program.controller().view()->isVisible());
            QVERIFY(!program.window().statusLine()->isVisible());
            // Ctrl+, on every desktop.
            QTest::keyClick(&program.window(), Qt::Key_Comma, Qt::ControlModifier);
            QTRY_VERIFY(program.window().findChild<PreferencesDialog *>()->isVisible());

            m_service.setBehaviour(m_document, {.delayMs = 5000});
            program.reload();
            QTRY_COMPARE(m_service.requestCount(m_document), 3);
            gone.start();
        }
        // Gone with a load under way: it does not wait for the answer, and nothing calls back.
        QTest::qWait(100);
        QCOMPARE_LT(gone.elapsed(), 2000);
        m_service.clearBehaviours();
    }

    void placesTheWindowWithinTheScreens_data()
    {
        QTest::addColumn<QRect>("saved");
        QTest::addColumn<QRect>("opened");
        QTest::addColumn<bool>("placed");
        QTest::addColumn<bool>("placeable");
        // Two screens side by side; the first is where a window opens by default. Wayland
        // places windows itself: only the size is taken there.
        for (const auto &[name, saved, opened, placed, placeable] :
             {std::tuple{"first start: as large as fits", QRect(), QRect(0, 0, 1000, 800), false,
                         true},
              {"where it was", QRect(100, 50, 650, 400), QRect(100, 50, 650, 400), true, true},
              {"on the second screen", QRect(1200, 50, 650, 400), QRect(1200, 50, 650, 400), true,
               true},
              {"screen gone", QRect(5000, 5000, 700, 400), QRect(300, 400, 700, 400), true, true},
              {"too large", QRect(-50, 20, 2000, 400), QRect(0, 20, 1000, 400), true, true},
              {"too small", QRect(300, 300, 100, 100), QRect(300, 300, 640, 360), true, true},
              {"sticking out", QRect(1500, 500, 640, 400), QRect(1360, 400, 640, 400), true, true},
              {"Wayland", QRect(100, 50, 650, 400), QRect(100, 50, 650, 400), false, false}})
            QTest::newRow(name) << saved << opened << placed << placeable;
    }

    void placesTheWindowWithinTheScreens()
    {
        QFETCH(QRect, saved);
        QFETCH(QRect, opened);
        QFETCH(bool, placed);
        QFETCH(bool, placeable);
        const WindowPlacement placement =
            placeWindow(saved, {QRect(0, 0, 1000, 800), QRect(1000, 0, 1000, 800)}, QSize(640, 360),
                        QSize(1280, 800), placeable);
        QCOMPARE(placement.geometry, opened);
        QCOMPARE(placement.placed, placed);
    }

    // The settings file is the truth while the program runs: a hand edit is taken, F5 asks the
    // address it holds, and the program's own change keeps the edit.
    void followsTheSettingsFile()
    {
        const QString path = SettingsStore::standardPath();
        const QString base = m_service.baseUrl().toString();
        EventTimer program(m_clock, m_out, m_err);
        program.show();
        QTRY_VERIFY(program.controller().isBuilt());
        QSaveFile byHand(path); // as an editor saves: a new file in the old one's place
        QVERIFY(byHand.open(QIODevice::WriteOnly));
        byHand.write("[General]\nevent_service_url=" + base.toUtf8() +
                     "/mirror\n[reminders]\nevents=A, B\nlead_minutes=10\n");
        QVERIFY(byHand.commit());
        QTRY_COMPARE(program.reminders().choices().marked(), (QStringList{u"A"_s, u"B"_s}));
        QCOMPARE(program.reminders().choices().leadMinutes(), 10);

        QTest::keyClick(&program.window(), Qt::Key_F5);
        QTRY_COMPARE(m_service.requestCount(u"/mirror"_s + m_document), 1);
        // F: the minute no longer brings the axis back to the present, and that is kept.
        QTest::keyClick(&program.window(), Qt::Key_F);
        QVERIFY(!program.controller().followsPresent());
        program.reminders().choices().setMarked(u"C"_s, true);
        QSettings file(path, QSettings::IniFormat);
        QCOMPARE(file.value(settingskeys::reminderEvents.toString()).toStringList(),
                 (QStringList{u"A"_s, u"B"_s, u"C"_s}));
        QCOMPARE(file.value(settingskeys::reminderLeadMinutes.toString()).toInt(), 10);
        QCOMPARE(file.value(settingskeys::followPresent.toString()).toBool(), false);
        file.setValue(settingskeys::serviceUrl.toString(), base);
        file.remove(u"reminders"_s);
        file.remove(u"view"_s);
    }

    // The player's views of the day, kept across a start: Next up, copied from by keyboard; a
    // hidden section, shown again from the preferences; only marked.
    void viewsOfTheDay()
    {
        m_service.setDocument(R"([
            {"category": "C", "name": "S", "segments": {"0": {"name": "A", "chatlink": "[&A]"}},
             "sequences": {"partial": [], "pattern": [{"d": 60, "r": 0}]}},
            {"category": "D", "name": "T", "segments": {"0": {"name": "B", "chatlink": "[&B]"}},
             "sequences": {"partial": [], "pattern": [{"d": 30, "r": 0}]}}])");
        QDir(CacheFolder::standardPath()).removeRecursively(); // the week's copy is of another
        const auto names = [](EventTimer &program) {
            QSet<QString> shown;
            for (const EventBoxGeometry &box :
                 program.controller().horizontalScrollContent()->boxes())
                shown.insert(box.event().name);
            return QStringList(shown.cbegin(), shown.cend());
        };
        {
            // Twenty seconds into the minute: the timetable's tick comes at twenty past.
            ManualClock clock(m_clock.now().addSecs(20), QTimeZone::utc());
            EventTimer program(clock, m_out, m_err);
            program.show();
            QTRY_VERIFY(program.controller().isBuilt());
            QTest::keyClick(&program.window(), Qt::Key_N);
            NextUpList *list = program.controller().nextUp();
            QTRY_VERIFY(list->isVisible());
            QStringList rows;
            for (int i = 0; i < 3; ++i)
                rows.append(list->topLevelItem(i)->text(NextUpList::Start) + u' ' +
                            list->topLevelItem(i)->text(NextUpList::Soon) + u' ' +
                            list->topLevelItem(i)->text(NextUpList::Name));
            QCOMPARE(rows,
                     (QStringList{u"12:00 now A"_s, u"12:00 now B"_s, u"12:30 in 30 min B"_s}));
            // How soon goes with the clock's minute.
            clock.advance(40s);
            QCOMPARE(list->topLevelItem(2)->text(NextUpList::Soon), u"in 29 min"_s);
            QVERIFY(list->hasFocus());
            QTest::keyClick(list, Qt::Key_Down);
            QTest::keyClick(list, Qt::Key_Return);
            QCOMPARE(QGuiApplication::clipboard()->text(), u"[&B]"_s);

            program.setHidden(false, u"S"_s, true);
            QTRY_COMPARE(names(program), QStringList{u"B"_s});
            QTest::keyClick(&program.window(), Qt::Key_M);
            QTRY_VERIFY(program.controller().emptyMessage()->isVisible());
            QTest::keyClick(&program.window(), Qt::Key_M);
        }
        EventTimer again(m_clock, m_out, m_err);
        again.show();
        QTRY_VERIFY(again.controller().isBuilt());
        QCOMPARE(names(again), QStringList{u"B"_s});
        QVERIFY(again.controller().nextUp()->isVisibleTo(again.controller().view()));
        again.showPreferences();
        auto *preferences = again.window().findChild<PreferencesDialog *>();
        QCOMPARE(preferences->hiddenList()->item(0)->text(), u"Section: S"_s);
        preferences->hiddenList()->item(0)->setSelected(true);
        preferences->showAgainButton()->click();
        QTRY_COMPARE(names(again).size(), 2);
        QCOMPARE(preferences->hiddenList()->count(), 0);
        QSettings(SettingsStore::standardPath(), QSettings::IniFormat).remove(u"view"_s);
        m_service.setDocument(m_oneSection);
        QDir(CacheFolder::standardPath()).removeRecursively();
    }

    // Closed while events are marked, it goes on reminding, hidden, and says once how to get
    // the window back (no tray here); otherwise closing ends it.
    void closesWhereItWas_data()
    {
        QTest::addColumn<QStringList>("marked");
        QTest::newRow("nothing marked") << QStringList();
        QTest::newRow("events marked") << QStringList{u"A"_s};
    }

    void closesWhereItWas()
    {
        QFETCH(QStringList, marked);
        m_errors.clear();
        {
            EventTimer program(m_clock, m_out, m_err);
            program.reminders().setBus(QDBusConnection(u"none"_s));
            program.reminders().choices().assign(marked, 5);
            program.window().show();
            program.window().setGeometry(120, 80, 660, 410);
            for (int close = 0; close < 2; ++close) {
                program.window().show();
                QCOMPARE(program.window().close(), marked.isEmpty());
                QVERIFY(!program.window().isVisible());
            }
            QTRY_COMPARE(m_errors.count(u"Start Event Timer again to see the window."_s),
                         marked.isEmpty() ? 0 : 1);
        }
        EventTimer next(m_clock, m_out, m_err);
        QCOMPARE(next.window().geometry(), QRect(120, 80, 660, 410));
    }

    // Every change takes effect at once.
    void preferences()
    {
        ReminderChoices choices;
        choices.assign({u"Tide"_s, u"Storm"_s}, 5);
        // A program whose path needs quoting in the autostart entry.
        Autostart autostart(u"/opt/Event Timer/eventtimer"_s);
        PreferencesDialog dialog(choices, autostart);
        QCOMPARE(dialog.leadMinutes()->value(), 5);
        dialog.markedEvents()->item(0)->setSelected(true);
        dialog.removeButton()->click();
        QCOMPARE(choices.marked(), QStringList{u"Tide"_s});
        QCOMPARE(dialog.markedEvents()->item(0)->text(), u"Tide"_s);
        dialog.leadMinutes()->setValue(61);
        QCOMPARE(choices.leadMinutes(), 60);

        QVERIFY(!dialog.startAtLogin()->isChecked());
        connect(&dialog, &PreferencesDialog::startAtLoginRequested, this,
                [&](bool start) { QVERIFY(autostart.setEnabled(start)); });
        dialog.startAtLogin()->click();
        QVERIFY(autostart.isEnabled() && dialog.startAtLogin()->isChecked());
        QFile entry(Autostart::standardPath());
        QVERIFY(entry.open(QIODevice::ReadOnly));
        QVERIFY(entry.readAll().contains("\nExec=\"/opt/Event Timer/eventtimer\" --hidden\n"));
        const QString validator = QStandardPaths::findExecutable(u"desktop-file-validate"_s);
        if (!validator.isEmpty())
            QCOMPARE(QProcess::execute(validator, {Autostart::standardPath()}), 0);

        // Removed by hand: off, and shown so when the dialog opens again.
        QVERIFY(QFile::remove(Autostart::standardPath()));
        dialog.hide();
        dialog.show();
        QVERIFY(!dialog.startAtLogin()->isChecked());
        QVERIFY(autostart.setEnabled(false));
    }
};

QTEST_MAIN(TestEventTimer)
#include "tst_eventtimer.moc"
