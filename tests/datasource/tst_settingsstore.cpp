#include "settingsstore.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

using namespace eventtimer;
using namespace Qt::StringLiterals;

class TestSettingsStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void valuesSurviveARestart_data();
    void valuesSurviveARestart();
    void handWrittenTextFileIsRead();
    void damagedStoreIsReplacedOnTheNextWrite();
    void storingNothingRemovesTheKey();
    void filesLiveWhereTheUserExpects();

private:
    QTemporaryDir m_home;
};

void TestSettingsStore::initTestCase()
{
    // Before the first QSettings of this process: Qt takes the folder once.
    QVERIFY(m_home.isValid());
    qputenv("XDG_CONFIG_HOME", m_home.path().toUtf8());
}

void TestSettingsStore::valuesSurviveARestart_data()
{
    QTest::addColumn<QVariant>("value");
    QByteArray binary(70000, '\0');
    for (qsizetype i = 0; i < binary.size(); ++i)
        binary[i] = static_cast<char>(i * 31);
    QTest::newRow("binary data") << QVariant(binary);
    QTest::newRow("a date to the millisecond")
        << QVariant(QDateTime(QDate(2026, 11, 22), QTime(9, 8, 7, 654), QTimeZone::utc()));
    QTest::newRow("text") << QVariant(u"http://127.0.0.1:8080 ü"_s);
    QTest::newRow("list of numbers") << QVariant(QVariantList{qint64{3600}, qint64{3601}});
}

void TestSettingsStore::valuesSurviveARestart()
{
    QFETCH(QVariant, value);
    QTemporaryDir folder;
    const QString path = folder.filePath(u"store.conf"_s);
    {
        QSettings settings(path, SettingsStore::format());
        SettingsStore store(settings);
        store.setValue(u"key"_s, value);
        QVERIFY(store.sync());
    }
    QSettings settings(path, SettingsStore::format());
    const QVariant read = SettingsStore(settings).value(u"key"_s);
    QCOMPARE(read.typeId(), value.typeId());
    QCOMPARE(read, value);
}

void TestSettingsStore::handWrittenTextFileIsRead()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"store.conf"_s);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[General]\nevent_service_url=http://127.0.0.1:8123\n");
    file.close();
    {
        QSettings settings(path, SettingsStore::format());
        SettingsStore store(settings);
        QCOMPARE(store.value(u"event_service_url"_s).toString(), u"http://127.0.0.1:8123"_s);
        store.setValue(u"json_events_sequence"_s, "[]"_ba);
        QVERIFY(store.sync());
    }
    QSettings settings(path, SettingsStore::format());
    QCOMPARE(settings.value(u"event_service_url"_s).toString(), u"http://127.0.0.1:8123"_s);
    QCOMPARE(settings.value(u"json_events_sequence"_s).toByteArray(), "[]"_ba);
}

void TestSettingsStore::damagedStoreIsReplacedOnTheNextWrite()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"store.conf"_s);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("eventtimer settings 1\n\x01\x02garbage");
    file.close();
    {
        QSettings settings(path, SettingsStore::format());
        SettingsStore store(settings);
        QVERIFY(!store.value(u"json_events_sequence"_s).isValid());
        store.setValue(u"json_events_sequence"_s, "[]"_ba);
        QVERIFY(store.sync());
    }
    QSettings settings(path, SettingsStore::format());
    QCOMPARE(settings.value(u"json_events_sequence"_s).toByteArray(), "[]"_ba);
}

void TestSettingsStore::storingNothingRemovesTheKey()
{
    QTemporaryDir folder;
    QSettings settings(folder.filePath(u"store.conf"_s), SettingsStore::format());
    SettingsStore store(settings);
    store.setValue(u"a"_s, 1);
    store.setValue(u"a"_s, QVariant());
    QVERIFY(!settings.contains(u"a"_s));
}

void TestSettingsStore::filesLiveWhereTheUserExpects()
{
    QCOMPARE(SettingsStore::openStandard()->fileName(),
             m_home.filePath(u"tolmerkvarn/eventtimer.conf"_s));
    QCOMPARE(SettingsStore::openSuite(u"tolmerkvarn.eventtimer"_s)->fileName(),
             m_home.filePath(u"tolmerkvarn.eventtimer.conf"_s));
}

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
