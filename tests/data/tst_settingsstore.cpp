#include "data/cachefolder.h"
#include "data/remindersettings.h"
#include "data/settingsstore.h"
#include "suite/suiteformat.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "testday.h"

using namespace eventtimer;
using namespace Qt::StringLiterals;

class TestSettingsStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesLiveWhereTheDesktopSays()
    {
        QTemporaryDir home;
        qputenv("XDG_CONFIG_HOME", home.filePath(u"config"_s).toUtf8());
        qputenv("XDG_CACHE_HOME", home.filePath(u"cache"_s).toUtf8());
        qputenv("XDG_DATA_HOME", home.filePath(u"data"_s).toUtf8());
        QCOMPARE(SettingsStore::openStandard()->fileName(),
                 home.filePath(u"config/tolmerkvarn/eventtimer.conf"_s));
        QCOMPARE(CacheFolder::standardPath(), home.filePath(u"cache/tolmerkvarn/eventtimer"_s));
        QCOMPARE(suitekeys::suitePath(),
                 home.filePath(u"data/tolmerkvarn.eventtimer/suite.json"_s));
    }

    // Marks and lead time come back after a restart, beside what was written by hand; what a
    // hand edit spoiled is said in one line and the rest kept; a file that cannot be read is
    // said once and left as it is.
    void choicesSurviveARestart_data()
    {
        QTest::addColumn<QByteArray>("before"); // the file, if any
        QTest::addColumn<QStringList>("marked");
        QTest::addColumn<int>("lead");
        QTest::addColumn<QString>("said"); // the one line on the error stream, if any

        const QByteArray byHand =
            "[General]\nevent_service_url=http://127.0.0.1:8123\n[reminders]\n";
        QTest::newRow("no file yet") << QByteArray() << QStringList() << 5 << QString();
        QTest::newRow("kept") << byHand + "events=Tide, \"Rift, the Second\"\nlead_minutes=10\n"
                              << QStringList{u"Rift, the Second"_s, u"Tide"_s} << 10
                              << u"\"Rift, the Second\"; kept"_s;
        QTest::newRow("lead -7") << byHand + "lead_minutes=-7\n"
                                 << QStringList() << 5 << u"is \"-7\", not a whole"_s;
        QTest::newRow("lead 61") << byHand + "lead_minutes=61\n"
                                 << QStringList() << 5 << u"is \"61\", not a whole"_s;
        QTest::newRow("lead abc") << byHand + "lead_minutes=abc\n"
                                  << QStringList() << 5 << u"is \"abc\", not a whole"_s;
        QTest::newRow("damaged") << "[General\nkey=old\n"_ba << QStringList() << 5
                                 << u"cannot be read; it is left as it is"_s;
    }

    void choicesSurviveARestart()
    {
        QFETCH(QByteArray, before);
        QFETCH(QStringList, marked);
        QFETCH(int, lead);
        QFETCH(QString, said);

        QTemporaryDir folder;
        QFile text(folder.filePath(u"eventtimer.conf"_s));
        QVERIFY(before.isEmpty() || (text.open(QIODevice::WriteOnly) && text.write(before) > 0));
        text.close();
        QString err;
        QTextStream errors(&err);
        bool damaged = false; // expected through the line said
        const SectionList coast{testing::makeSection(u"C"_s, u"Coast"_s, 0, {{u"Tide"_s, 0, 5}})};
        {
            QSettings file(text.fileName(), QSettings::IniFormat);
            SettingsStore settings(file, errors);
            damaged = settings.isDamaged();
            ReminderChoices choices;
            loadReminderChoices(settings, choices, errors);
            QCOMPARE(choices.marked(), marked);
            QCOMPARE(choices.leadMinutes(), lead);
            reportUnknownMarks(choices, coast, errors);
            choices.setMarked(u"Zephyr"_s, true);
            QCOMPARE(saveReminderChoices(settings, choices).ok(), !damaged);
        }
        QCOMPARE(err.count(u'\n'), said.isEmpty() ? 0 : 1);
        QVERIFY2(err.contains(said), qPrintable(err));
        if (damaged) {
            QVERIFY(text.open(QIODevice::ReadOnly));
            QCOMPARE(text.readAll(), before);
            return;
        }

        QSettings file(text.fileName(), QSettings::IniFormat);
        SettingsStore settings(file, errors);
        ReminderChoices again;
        loadReminderChoices(settings, again, errors);
        QCOMPARE(again.marked(), QStringList(marked) << u"Zephyr"_s);
        QCOMPARE(again.leadMinutes(), lead);
        QCOMPARE(settings.value(settingskeys::serviceUrl).toString(),
                 before.isEmpty() ? QString() : u"http://127.0.0.1:8123"_s);
    }
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
