#include "data/settingsstore.h"

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

    void valuesSurviveARestart_data()
    {
        QTest::addColumn<QByteArray>("fileBefore");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("serviceUrl");

        QByteArray binary(70000, '\0');
        for (qsizetype i = 0; i < binary.size(); ++i)
            binary[i] = static_cast<char>(i * 31);
        const QByteArray handWritten = "[General]\nevent_service_url=http://127.0.0.1:8123\n";
        QTest::newRow("binary data") << QByteArray() << QVariant(binary) << QString();
        QTest::newRow("a date to the millisecond")
            << QByteArray()
            << QVariant(QDateTime(QDate(2026, 11, 22), QTime(9, 8, 7, 654), QTimeZone::utc()))
            << QString();
        QTest::newRow("into a file written by hand")
            << handWritten << QVariant(u"ü"_s) << u"http://127.0.0.1:8123"_s;
        QTest::newRow("over a damaged store")
            << "eventtimer settings 1\n\x01\x02garbage"_ba << QVariant(u"x"_s) << QString();
    }

    void valuesSurviveARestart()
    {
        QFETCH(QByteArray, fileBefore);
        QFETCH(QVariant, value);
        QFETCH(QString, serviceUrl);

        QTemporaryDir folder;
        const QString path = folder.filePath(u"store.conf"_s);
        if (!fileBefore.isEmpty()) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(fileBefore);
        }
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
        QCOMPARE(settings.value(u"event_service_url"_s).toString(), serviceUrl);
    }
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
