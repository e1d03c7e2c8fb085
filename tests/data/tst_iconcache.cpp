#include "data/iconcache.h"
#include "data/memorystore.h"
#include "data/urlloader.h"
#include "eventservice/eventservice.h"
#include "testimages.h"

#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;
using eventtimer::testing::pngBytes;

class TestIconCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void storedValues_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<bool>("icon");
        QTest::addColumn<bool>("has");

        QTest::newRow("nothing") << QVariant() << false << false;
        QTest::newRow("bytes that are no image: kept, no icon")
            << QVariant("junk"_ba) << false << true;
        QTest::newRow("not bytes at all: kept, no icon") << QVariant(42) << false << true;
    }

    void storedValues()
    {
        QFETCH(QVariant, stored);
        QFETCH(bool, icon);
        QFETCH(bool, has);

        MemoryStore store;
        store.setValue(u"X_1"_s, stored);
        IconCache cache(store);
        // Two URLs that differ before their key share what is stored under it.
        for (const QString &url : {u"https://a.test/a/X/1.png"_s, u"https://b.test/b/X/1.png"_s}) {
            QCOMPARE(cache.icon(url).has_value(), icon);
            QCOMPARE(cache.has(url), has);
        }
        QCOMPARE(store.value(u"X_1"_s), stored);
    }

    void fetchesEachKeyFromItsFirstWorkingUrl()
    {
        QTemporaryDir folder;
        for (const QString &path : {u"/b/X/1.png"_s, u"/c/X/1.png"_s, u"/d/Y/2.png"_s}) {
            QVERIFY(QDir(folder.path()).mkpath(QFileInfo(folder.path() + path).path()));
            QFile file(folder.path() + path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(pngBytes(path.startsWith(u"/d"_s) ? Qt::blue : Qt::red));
        }
        EventService service;
        service.setFilesFolder(folder.path());
        QVERIFY(service.listen());
        const QString base = service.baseUrl().toString();
        MemoryStore store;
        store.setValue(u"Z_3"_s, "kept"_ba);
        IconCache cache(store);
        UrlLoader loader;

        // /a fails, so X is tried with /b, the next URL asked for it; /c is never needed; Z is
        // stored already; Y comes from its only URL.
        const QStringList asked{base + u"/a/X/1.png"_s, base + u"/b/X/1.png"_s,
                                base + u"/a/X/1.png"_s, base + u"/c/X/1.png"_s,
                                base + u"/z/Z/3.png"_s, base + u"/d/Y/2.png"_s};
        const QHash<QString, bool> fetched = cache.fetchMissing(asked, loader, 4);
        QCOMPARE(fetched, (QHash<QString, bool>{
                              {asked.at(0), false}, {asked.at(1), true}, {asked.at(5), true}}));
        QCOMPARE(service.totalRequests(), 3);
        QCOMPARE(service.requestCount(u"/a/X/1.png"_s), 1);
        QCOMPARE(cache.icon(asked.at(3))->pixelColor(0, 0), QColor(Qt::red));

        // A later start finds them stored.
        IconCache later(store);
        QCOMPARE(later.icon(asked.at(5))->pixelColor(0, 0), QColor(Qt::blue));
        QVERIFY(later.fetchMissing(asked, loader, 4).isEmpty());
        QCOMPARE(service.totalRequests(), 3);
    }
};

QTEST_GUILESS_MAIN(TestIconCache)
#include "tst_iconcache.moc"
