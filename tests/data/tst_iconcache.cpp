#include "blockingcalls.h"
#include "data/cachefolder.h"
#include "data/iconcache.h"
#include "data/urlloader.h"
#include "localeventservice/localeventservice.h"
#include "testimages.h"

#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;
using eventtimer::testing::fetchMissingNow;
using eventtimer::testing::pngBytes;

class TestIconCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fetchesEachMissingKeyOnceWithinBounds()
    {
        LocalEventService service;
        QVERIFY(service.listen());
        service.setBehaviour(u"/b/X/1.png"_s, {.body = pngBytes(Qt::red)});
        service.setBehaviour(u"/c/X/1.png"_s, {.body = pngBytes(Qt::red)});
        service.setBehaviour(u"/d/Y/2.png"_s, {.body = pngBytes(Qt::blue)});
        service.setBehaviour(u"/big/B/1.png"_s, {.oversizeBytes = IconCache::maxIconBytes + 1});
        const QString base = service.baseUrl().toString();
        QTemporaryDir kept;
        QString err;
        QTextStream errors(&err);
        CacheFolder folder(kept.path(), errors);
        // What is kept is never replaced, even when it does not decode.
        QVERIFY(folder.write(IconCache::fileName(u"Z_3"_s), "junk"));
        IconCache cache(folder, errors);
        UrlLoader loader;

        // /a fails, so X is tried with /b, the next URL asked for it; /c is never needed; Z is
        // kept already; Y comes from its only URL; B is larger than an icon may be.
        const QStringList asked{base + u"/a/X/1.png"_s,  base + u"/b/X/1.png"_s,
                                base + u"/a/X/1.png"_s,  base + u"/c/X/1.png"_s,
                                base + u"/z/Z/3.png"_s,  base + u"/d/Y/2.png"_s,
                                base + u"/big/B/1.png"_s};
        QCOMPARE(fetchMissingNow(cache, asked, loader, 4),
                 (IconCache::Fetched{{asked.at(0), false},
                                     {asked.at(1), true},
                                     {asked.at(5), true},
                                     {asked.at(6), false}}));
        QVERIFY(err.startsWith(u"eventtimer: no icon from "_s + asked.at(0) + u": "_s));
        QVERIFY2(err.contains(asked.at(6) + u": body larger than 1 MiB"_s), qPrintable(err));
        QVERIFY(!cache.icon(asked.at(4)));

        // A later start finds them kept as sent, and asks for nothing but the one too large.
        QCOMPARE(folder.read(IconCache::fileName(u"Y_2"_s), 1000),
                 std::optional(pngBytes(Qt::blue)));
        QCOMPARE(folder.read(IconCache::fileName(u"Z_3"_s), 1000), std::optional("junk"_ba));
        IconCache later(folder, errors);
        QCOMPARE(later.icon(asked.at(3))->image().pixelColor(0, 0), QColor(Qt::red));
        QCOMPARE(fetchMissingNow(later, asked, loader, 4).keys(), QList{asked.at(6)});

        // At most a thousand new keys a start (at addresses refused without a request).
        err.clear();
        QStringList many;
        for (int i = 0; i <= IconCache::maxFetchedPerDocument; ++i)
            many.append(u"http://far.example.test/set/"_s + QString::number(i) + u"/1.png"_s);
        QCOMPARE(fetchMissingNow(later, many, loader, 20).size(), IconCache::maxFetchedPerDocument);
        QVERIFY(err.startsWith(u"eventtimer: the document asks for more than 1000 new icons"_s));
    }
};

QTEST_GUILESS_MAIN(TestIconCache)
#include "tst_iconcache.moc"
