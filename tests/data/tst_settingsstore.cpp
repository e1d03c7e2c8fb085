#include "data/cachefolder.h"
#include "data/remindersettings.h"
#include "data/settingsstore.h"
#include "data/suiteformat.h"

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

    void handEditsSurviveAndDamageIsLeftAlone_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QStringList>("after"); // lines the file holds afterwards
        QTest::addColumn<bool>("damaged");

        QTest::newRow("no file yet") << QByteArray() << QStringList{u"key=new"_s} << false;
        QTest::newRow("written by hand")
            << "[General]\nevent_service_url=http://127.0.0.1:8123\n"_ba
            << QStringList{u"event_service_url=http://127.0.0.1:8123"_s, u"key=new"_s} << false;
        QTest::newRow("damaged") << "[General\nkey=old\n"_ba
                                 << QStringList{u"[General"_s, u"key=old"_s} << true;
    }

    void handEditsSurviveAndDamageIsLeftAlone()
    {
        QFETCH(QByteArray, before);
        QFETCH(QStringList, after);
        QFETCH(bool, damaged);

        QTemporaryDir folder;
        const QString path = folder.filePath(u"eventtimer.conf"_s);
        if (!before.isEmpty()) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(before);
        }
        QString err;
        QTextStream errors(&err);
        {
            QSettings file(path, QSettings::IniFormat);
            SettingsStore settings(file, errors);
            QCOMPARE(settings.isDamaged(), damaged);
            settings.setValue(u"key", u"new"_s);
            QCOMPARE(settings.sync().ok(), !damaged);
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        for (const QString &line : after)
            QVERIFY2(text.contains(line + u'\n'), qPrintable(text));
        QCOMPARE(err.count(u'\n'), damaged ? 1 : 0);
    }

    // Marks and lead time come back after a restart; what a hand edit spoiled is said in one
    // line and the rest kept.
    void reminderChoicesSurviveARestart_data()
    {
        QTest::addColumn<QByteArray>("reminders");
        QTest::addColumn<QStringList>("marked");
        QTest::addColumn<int>("lead");
        QTest::addColumn<QStringList>("said");

        QTest::newRow("none yet") << QByteArray() << QStringList() << 5 << QStringList();
        QTest::newRow("kept") << "events=Tide, \"Rift, the Second\"\nlead_minutes=10\n"_ba
                              << QStringList{u"Rift, the Second"_s, u"Tide"_s} << 10
                              << QStringList{u"\"Rift, the Second\"; kept"_s};
        QTest::newRow("lead -7") << "events=Tide\nlead_minutes=-7\n"_ba << QStringList{u"Tide"_s}
                                 << 5 << QStringList{u"is \"-7\", not a whole number"_s};
        QTest::newRow("lead abc") << "events=Tide\nlead_minutes=abc\n"_ba << QStringList{u"Tide"_s}
                                  << 5 << QStringList{u"is \"abc\", not a whole number"_s};
    }

    void reminderChoicesSurviveARestart()
    {
        QFETCH(QByteArray, reminders);
        QFETCH(QStringList, marked);
        QFETCH(int, lead);
        QFETCH(QStringList, said);

        QTemporaryDir folder;
        const QString path = folder.filePath(u"eventtimer.conf"_s);
        QFile text(path);
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("[General]\nevent_service_url=http://127.0.0.1:8123\n[reminders]\n" + reminders);
        text.close();
        QString err;
        QTextStream errors(&err);
        const SectionList sections{
            testing::makeSection(u"C"_s, u"Coast"_s, 0, {{u"Tide"_s, 0, 5}})};
        {
            QSettings file(path, QSettings::IniFormat);
            SettingsStore settings(file, errors);
            ReminderChoices choices;
            loadReminderChoices(settings, choices, errors);
            QCOMPARE(choices.marked(), marked);
            QCOMPARE(choices.leadMinutes(), lead);
            reportUnknownMarks(choices, sections, errors);
            choices.setMarked(u"Zephyr"_s, true);
            QVERIFY(saveReminderChoices(settings, choices).ok());
        }
        QCOMPARE(err.count(u'\n'), said.size());
        for (const QString &line : said)
            QVERIFY2(err.contains(line), qPrintable(err));

        QSettings file(path, QSettings::IniFormat);
        SettingsStore settings(file, errors);
        ReminderChoices again;
        loadReminderChoices(settings, again, errors);
        QCOMPARE(again.marked(), QStringList(marked) << u"Zephyr"_s);
        QCOMPARE(again.leadMinutes(), lead);
        QCOMPARE(settings.value(settingskeys::serviceUrl).toString(), u"http://127.0.0.1:8123"_s);
    }
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
