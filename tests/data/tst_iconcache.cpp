#include "data/cachefolder.h"
#include "data/iconcache.h"
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

    void keptFilesAreNeverReplaced()
    {
        // Two URLs that differ before their key share what is kept under it; a file that does
        // not decode gives no icon and is not fetched again.
        QTemporaryDir folder;
        QString err;
        QTextStream errors(&err);
        CacheFolder cache(folder.path(), errors);
        QVERIFY(cache.write(IconCache::fileName(u"X_1"_s), "junk"));
        IconCache icons(cache, errors);
        for (const QString &url : {u"https://a.test/a/X/1.png"_s, u"https://b.test/b/X/1.png"_s}) {
            QVERIFY(!icons.icon(url));
            QVERIFY(icons.has(url));
        }
        UrlLoader loader;
        QVERIFY(icons.fetchMissingNow({u"https://a.test/a/X/1.png"_s}, loader, 4).isEmpty());
        QCOMPARE(cache.read(IconCache::fileName(u"X_1"_s), 10), std::optional("junk"_ba));
    }

    void boundsPerStart()
    {
        QTemporaryDir kept;
        QString err;
        QTextStream errors(&err);
        CacheFolder folder(kept.path(), errors);
        IconCache cache(folder, errors);
        UrlLoader loader;
        // 1001 new icons (at addresses refused without a request): the first 1000 are tried.
        QStringList asked;
        for (int i = 0; i <= IconCache::maxFetchedPerDocument; ++i)
            asked.append(u"http://far.example.test/set/"_s + QString::number(i) + u"/1.png"_s);
        QCOMPARE(cache.fetchMissingNow(asked, loader, 20).size(), IconCache::maxFetchedPerDocument);
        QVERIFY(err.startsWith(u"eventtimer: the document asks for more than 1000 new icons"_s));

        // An icon larger than 1 MiB is not taken.
        EventService service;
        QVERIFY(service.listen());
        service.setBehaviour(u"*"_s, {.oversizeBytes = IconCache::maxIconBytes + 1});
        err.clear();
        QVERIFY(
            !cache.fetchMissingNow({service.baseUrl().toString() + u"/big/B/1.png"_s}, loader, 4)
                 .value(service.baseUrl().toString() + u"/big/B/1.png"_s));
        QVERIFY2(err.contains(u"body larger than 1 MiB"_s), qPrintable(err));
    }

    void fetchesEachKeyFromItsFirstWorkingUrl()
    {
        QTemporaryDir served;
        for (const QString &path : {u"/b/X/1.png"_s, u"/c/X/1.png"_s, u"/d/Y/2.png"_s}) {
            QVERIFY(QDir(served.path()).mkpath(QFileInfo(served.path() + path).path()));
            QFile file(served.path() + path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(pngBytes(path.startsWith(u"/d"_s) ? Qt::blue : Qt::red));
        }
        EventService service;
        service.setFilesFolder(served.path());
        QVERIFY(service.listen());
        const QString base = service.baseUrl().toString();
        QTemporaryDir kept;
        QString err;
        QTextStream errors(&err);
        CacheFolder folder(kept.path(), errors);
        folder.write(IconCache::fileName(u"Z_3"_s), "kept");
        IconCache cache(folder, errors);
        UrlLoader loader;

        // /a fails, so X is tried with /b, the next URL asked for it; /c is never needed; Z is
        // stored already; Y comes from its only URL.
        const QStringList asked{base + u"/a/X/1.png"_s, base + u"/b/X/1.png"_s,
                                base + u"/a/X/1.png"_s, base + u"/c/X/1.png"_s,
                                base + u"/z/Z/3.png"_s, base + u"/d/Y/2.png"_s};
        const QHash<QString, bool> fetched = cache.fetchMissingNow(asked, loader, 4);
        QCOMPARE(fetched, (QHash<QString, bool>{
                              {asked.at(0), false}, {asked.at(1), true}, {asked.at(5), true}}));
        QCOMPARE(service.totalRequests(), 3);
        QCOMPARE(service.requestCount(u"/a/X/1.png"_s), 1);
        QCOMPARE(cache.icon(asked.at(3))->image().pixelColor(0, 0), QColor(Qt::red));

        // The one that failed is said; a later start finds the others kept, as sent.
        QVERIFY(err.startsWith(u"eventtimer: no icon from "_s + asked.at(0) + u": "_s));
        QCOMPARE(folder.read(IconCache::fileName(u"Y_2"_s), 1000),
                 std::optional(pngBytes(Qt::blue)));
        IconCache later(folder, errors);
        QCOMPARE(later.icon(asked.at(5))->image().pixelColor(0, 0), QColor(Qt::blue));
        QVERIFY(later.fetchMissingNow(asked, loader, 4).isEmpty());
        QCOMPARE(service.totalRequests(), 3);
    }
};

QTEST_GUILESS_MAIN(TestIconCache)
#include "tst_iconcache.moc"
