#include "data/cachefolder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

class TestCacheFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void safeNames_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("name");

        QTest::newRow("a usual key") << u"4f2a9c_517"_s << u"4f2a9c_517"_s;
        QTest::newRow("capitals are no letters of their own")
            << u"4F2A9C_517"_s << u"4%462%419%43_517"_s;
        QTest::newRow("dots and slashes") << u"../x/.."_s << u"%2E%2E%2Fx%2F%2E%2E"_s;
        QTest::newRow("NUL and a percent") << u"a\u0000%b"_s << u"a%00%25b"_s;
        QTest::newRow("combined characters") << u"e\u0301"_s << u"e%CC%81"_s;
        QTest::newRow("a long key")
            << u"k"_s.repeated(200)
            << u"~"_s + QString::fromLatin1(QCryptographicHash::hash("k"_ba.repeated(200),
                                                                     QCryptographicHash::Sha256)
                                                .toHex());
    }

    void safeNames()
    {
        QFETCH(QString, key);
        QFETCH(QString, name);
        QCOMPARE(CacheFolder::safeName(key), name);
    }

    void differentKeysNeverShareAFile()
    {
        // Also where the file system ignores case.
        QSet<QString> names;
        const QStringList keys{u"a_1"_s, u"A_1"_s, u"%41_1"_s,           u"a%5F1"_s,
                               u"~x"_s,  u""_s,    u"x"_s.repeated(121), u"x"_s.repeated(122)};
        for (const QString &key : keys)
            names.insert(CacheFolder::safeName(key).toLower());
        QCOMPARE(names.size(), keys.size());
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
