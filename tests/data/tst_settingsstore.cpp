#include "data/cachefolder.h"
#include "data/settingsstore.h"
#include "data/suiteformat.h"

#include <QFile>
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
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
