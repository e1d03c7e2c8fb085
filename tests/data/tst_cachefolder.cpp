#include "data/cachefolder.h"

#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

class TestCacheFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Only a-z, 0-9, "_" and "-" stay as they are, so distinct keys never share a file, also
    // where the file system ignores case; past 120 characters the name is a hash.
    void safeNames_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("name");

        const auto hashed = [](const QByteArray &key) {
            return u'~' + QString::fromLatin1(
                              QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex());
        };
        QTest::newRow("a usual key") << u"4f2a9c_517"_s << u"4f2a9c_517"_s;
        QTest::newRow("capitals are no letters of their own")
            << u"4F2A9C_517"_s << u"4%462%419%43_517"_s;
        QTest::newRow("NUL, percent, tilde") << u"a\u0000%~b"_s << u"a%00%25%7Eb"_s;
        QTest::newRow("combined characters") << u"e\u0301"_s << u"e%CC%81"_s;
        QTest::newRow("empty") << QString() << u"%"_s;
        QTest::newRow("120 characters") << u"k"_s.repeated(120) << u"k"_s.repeated(120);
        QTest::newRow("121 characters") << u"k"_s.repeated(121) << hashed("k"_ba.repeated(121));
        QTest::newRow("41 capitals") << u"K"_s.repeated(41) << hashed("K"_ba.repeated(41));
    }

    void safeNames()
    {
        QFETCH(QString, key);
        QFETCH(QString, name);
        QCOMPARE(CacheFolder::safeName(key), name);
    }

    void keepsFilesAndSaysOnceWhenItCannot()
    {
        QTemporaryDir home;
        QString err;
        QTextStream errors(&err);
        CacheFolder cache(home.filePath(u"cache"_s), errors);
        QVERIFY(!cache.read(u"document"_s, 100));
        QVERIFY(cache.write(u"icons/a"_s, "bytes"));
        QCOMPARE(cache.read(u"icons/a"_s, 100), std::optional("bytes"_ba));
        QVERIFY(!cache.read(u"icons/a"_s, 4)); // larger than asked counts as absent
        QVERIFY(!cache.read(u"icons"_s, 100)); // a folder is no file

        // A file where the folder should be.
        QFile blocker(home.filePath(u"blocked"_s));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        CacheFolder blocked(blocker.fileName(), errors);
        QVERIFY(!blocked.write(u"document"_s, "x"));
        QVERIFY(!blocked.write(u"icons/a"_s, "x"));
        QCOMPARE(err.count(u'\n'), 1);
        QVERIFY(err.contains(blocker.fileName()));
    }
};

QTEST_GUILESS_MAIN(TestCacheFolder)
#include "tst_cachefolder.moc"
