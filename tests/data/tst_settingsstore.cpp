#include "data/cachefolder.h"
#include "data/remindersettings.h"
#include "data/settingsstore.h"
#include "suite/suiteformat.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

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
        QCOMPARE(SettingsStore::standardPath(),
                 home.filePath(u"config/tolmerkvarn/eventtimer.conf"_s));
        QCOMPARE(CacheFolder::standardPath(), home.filePath(u"cache/tolmerkvarn/eventtimer"_s));
        QCOMPARE(suitekeys::suitePath(),
                 home.filePath(u"data/tolmerkvarn.eventtimer/suite.json"_s));
    }

    // The file is the truth: the program writes only what it changes, onto what the file holds
    // by then, and what it cannot write or read is said once and lasts for the session.
    void writesOnlyWhatItChanges_data()
    {
        QTest::addColumn<QByteArray>("before");  // the file at the start; none when null
        QTest::addColumn<QByteArray>("byHand");  // written by hand while the program runs
        QTest::addColumn<QString>("change");     // "+NAME", "-NAME" or a lead in minutes
        QTest::addColumn<QByteArray>("after");   // the file afterwards
        QTest::addColumn<QStringList>("marked"); // what the program then has
        QTest::addColumn<int>("lead");
        QTest::addColumn<QString>("said"); // the one line on the error stream, if any

        const QByteArray tide = "[reminders]\nevents=Tide\nlead_minutes=5\n";
        const QByteArray edited = "[General]\nevent_service_url=http://b\n\n"
                                  "[reminders]\nevents=Tide, Storm\nlead_minutes=10\n";
        QTest::newRow("no file yet")
            << QByteArray() << QByteArray() << u"+Zephyr"_s << "[reminders]\nevents=Zephyr\n"_ba
            << QStringList{u"Zephyr"_s} << 5 << QString();
        QTest::newRow("a mark after a hand edit")
            << tide << edited << u"+Zephyr"_s
            << "[General]\nevent_service_url=http://b\n\n[reminders]\n"
               "events=Storm, Tide, Zephyr\nlead_minutes=10\n"_ba
            << QStringList{u"Storm"_s, u"Tide"_s, u"Zephyr"_s} << 10 << QString();
        QTest::newRow("the lead after a hand edit")
            << tide << edited << u"20"_s
            << "[General]\nevent_service_url=http://b\n\n[reminders]\n"
               "events=Tide, Storm\nlead_minutes=20\n"_ba
            << QStringList{u"Storm"_s, u"Tide"_s} << 20 << QString();
        QTest::newRow("the last mark removed")
            << tide << QByteArray() << u"-Tide"_s << "[reminders]\nevents=\nlead_minutes=5\n"_ba
            << QStringList() << 5 << QString();
        QTest::newRow("lead -7, said")
            << "[reminders]\nlead_minutes=-7\n"_ba << QByteArray() << u"+Tide"_s
            << "[reminders]\nevents=Tide\nlead_minutes=-7\n"_ba << QStringList{u"Tide"_s} << 5
            << u"is \"-7\", not a whole number"_s;
        // Its folder cannot be made: a file stands in the way (root writes read-only files).
        QTest::newRow("cannot be written")
            << QByteArray() << QByteArray() << u"+Zephyr"_s << QByteArray()
            << QStringList{u"Zephyr"_s} << 5 << u"cannot write the settings file"_s;
        QTest::newRow("damaged") << "[General\nkey=old\n"_ba << QByteArray() << u"+Zephyr"_s
                                 << "[General\nkey=old\n"_ba << QStringList{u"Zephyr"_s} << 5
                                 << u"cannot be read; it is left as it is"_s;
    }

    void writesOnlyWhatItChanges()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, byHand);
        QFETCH(QString, change);
        QFETCH(QByteArray, after);
        QFETCH(QStringList, marked);
        QFETCH(int, lead);
        QFETCH(QString, said);

        QTemporaryDir folder;
        const QString path = folder.filePath(u"tolmerkvarn/eventtimer.conf"_s);
        const auto writeFile = [&](const QByteArray &text) {
            QDir().mkpath(QFileInfo(path).path());
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        };
        if (!before.isNull())
            writeFile(before);
        const bool blocked = QLatin1StringView(QTest::currentDataTag()) == u"cannot be written";
        if (blocked)
            QFile(folder.filePath(u"tolmerkvarn"_s)).open(QIODevice::WriteOnly);
        QString err;
        QTextStream errors(&err);
        SettingsStore settings(path, errors);
        const ReminderSettings start = readReminderSettings(settings, errors);
        if (!byHand.isEmpty())
            writeFile(byHand);

        ReminderSettings wanted = start;
        if (change.startsWith(u'+'))
            wanted.marked.append(change.mid(1));
        else if (change.startsWith(u'-'))
            wanted.marked.removeAll(change.mid(1));
        else
            wanted.leadMinutes = change.toInt();
        const Result<ReminderSettings> written = writeReminderChanges(settings, start, wanted);
        // A change that could not be written lasts for the session as it was made.
        const ReminderSettings session = written ? written.value() : wanted;
        QCOMPARE(session.marked, marked);
        QCOMPARE(session.leadMinutes, lead);
        QCOMPARE(written.ok(), !said.contains(u"cannot"_s));
        QCOMPARE(settings.problem().isEmpty(), written.ok());
        QCOMPARE(err.count(u'\n'), said.isEmpty() ? 0 : 1);
        QVERIFY2(err.contains(said), qPrintable(err));
        QFile file(path);
        QCOMPARE(file.open(QIODevice::ReadOnly), !blocked);
        QCOMPARE(file.readAll(), after);
    }
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
