#include "event.h"
#include "eventrecord.h"
#include "iconcache.h"
#include "imagefetcher.h"
#include "memorystore.h"
#include "testimages.h"

#include <QJsonDocument>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;
using eventtimer::testing::pngBytes;

namespace {

QJsonObject object(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

// Serves fixed bytes per URL and counts what is asked of it.
class FakeFetcher final : public ImageFetcher
{
public:
    Result<QByteArray> fetch(const QUrl &url) override
    {
        requests.append(url.toString());
        if (!responses.contains(url.toString()))
            return Error{u"not found"_s};
        return responses.value(url.toString());
    }

    QHash<QString, QByteArray> responses;
    QStringList requests;
};

const QString iconUrl = u"https://icons.example.test/file/4F2A9C/517.png"_s;

} // namespace

class TestEventRecord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textFields_data();
    void textFields();
    void colors_data();
    void colors();
    void cacheKeys_data();
    void cacheKeys();
    void iconIsFetchedOnceAndStoredAsTiff();
    void failedFetchIsNotCachedAndRetried();
    void undecodableStoredDataIsKeptAndGivesNoIcon_data();
    void undecodableStoredDataIsKeptAndGivesNoIcon();
    void urlsSharingAKeyShareTheIcon();
    void unusableIconTextsFetchNothing_data();
    void unusableIconTextsFetchNothing();
};

void TestEventRecord::textFields_data()
{
    QTest::addColumn<QByteArray>("record");
    QTest::addColumn<QString>("wiki");
    QTest::addColumn<std::optional<QString>>("chatLink");

    QTest::newRow("all strings")
        << R"({"name": "Ember Wyrm", "link": "Ember_Wyrm", "chatlink": "[&AbC=]"})"_ba
        << u"Ember_Wyrm"_s << std::optional<QString>(u"[&AbC=]"_s);
    QTest::newRow("no link: wiki is the name")
        << R"({"name": "Ember Wyrm"})"_ba << u"Ember Wyrm"_s << std::optional<QString>();
    QTest::newRow("link a number counts as missing")
        << R"({"name": "Ember Wyrm", "link": 5})"_ba << u"Ember Wyrm"_s << std::optional<QString>();
    QTest::newRow("chatlink a number is absent") << R"({"name": "Ember Wyrm", "chatlink": 7})"_ba
                                                 << u"Ember Wyrm"_s << std::optional<QString>();
    QTest::newRow("empty chatlink is kept") << R"({"name": "Ember Wyrm", "chatlink": ""})"_ba
                                            << u"Ember Wyrm"_s << std::optional<QString>(u""_s);
    QTest::newRow("record's own section key is not read")
        << R"({"name": "Ember Wyrm", "section": "Elsewhere"})"_ba << u"Ember Wyrm"_s
        << std::optional<QString>();
}

void TestEventRecord::textFields()
{
    QFETCH(QByteArray, record);
    QFETCH(QString, wiki);
    QFETCH(std::optional<QString>, chatLink);

    const auto event = parseEvent(object(record), u"Harbour"_s, nullptr);
    QCOMPARE(event->name, u"Ember Wyrm"_s);
    QCOMPARE(event->wiki, wiki);
    QCOMPARE(event->chatLink, chatLink);
    QCOMPARE(event->section, std::optional<QString>(u"Harbour"_s));
    QVERIFY(!event->icon);
}

void TestEventRecord::colors_data()
{
    QTest::addColumn<QByteArray>("background");
    QTest::addColumn<bool>("isDefault");
    QTest::addColumn<double>("red");
    QTest::addColumn<double>("green");
    QTest::addColumn<double>("blue");

    // 128 / 255 in single precision, widened: not the double quotient 0.50196078431372548.
    const double half = 0.501960813999176025390625;
    QTest::newRow("triple") << "[255, 128, 0]"_ba << false << 1.0 << half << 0.0;
    QTest::newRow("fractional components")
        << "[25.5, 0, 255]"_ba << false << static_cast<double>(25.5f / 255.0f) << 0.0 << 1.0;
    QTest::newRow("first of nested triples")
        << "[[10, 20, 30], [40, 50, 60]]"_ba << false << static_cast<double>(10.0f / 255.0f)
        << static_cast<double>(20.0f / 255.0f) << static_cast<double>(30.0f / 255.0f);
    QTest::newRow("unwrapped once only") << "[[[1, 2, 3]]]"_ba << true << 0.0 << 0.0 << 0.0;
    QTest::newRow("pair, first not an array") << "[1, 2]"_ba << true << 0.0 << 0.0 << 0.0;
    QTest::newRow("a string") << R"("red")"_ba << true << 0.0 << 0.0 << 0.0;
    QTest::newRow("empty array") << "[]"_ba << true << 0.0 << 0.0 << 0.0;
    QTest::newRow("non-number component") << R"([1, "2", 3])"_ba << true << 0.0 << 0.0 << 0.0;
    QTest::newRow("beyond single precision") << "[1e300, 0, 0]"_ba << true << 0.0 << 0.0 << 0.0;
    QTest::newRow("missing") << "null"_ba << true << 0.0 << 0.0 << 0.0;
}

void TestEventRecord::colors()
{
    QFETCH(QByteArray, background);
    QFETCH(bool, isDefault);
    QFETCH(double, red);
    QFETCH(double, green);
    QFETCH(double, blue);

    QByteArray record = R"({"name": "Ember Wyrm")"_ba;
    if (background != "null")
        record += R"(, "bg": )" + background;
    const auto event = parseEvent(object(record + '}'), u"Harbour"_s, nullptr);
    const EventColor &color = event->backgroundColor;
    QCOMPARE(color.isDefault(), isDefault);
    if (isDefault) {
        QCOMPARE(color, EventColor());
        return;
    }
    // Exact comparisons: the single-precision arithmetic is part of the contract.
    QVERIFY(color.red() == red);
    QVERIFY(color.green() == green);
    QVERIFY(color.blue() == blue);
    QVERIFY(color.alpha() == 0.8);
}

void TestEventRecord::cacheKeys_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<std::optional<QString>>("key");

    using Key = std::optional<QString>;
    QTest::newRow("usual icon URL") << iconUrl << Key(u"4F2A9C_517"_s);
    QTest::newRow("host does not matter")
        << u"https://other.example.test/a/file/4F2A9C/517.png"_s << Key(u"4F2A9C_517"_s);
    QTest::newRow("consecutive dots and slashes give no empty piece")
        << u"https://h.test//x//X/1..png"_s << Key(u"X_1"_s);
    QTest::newRow("text between the last two dots")
        << u"https://h.test/a/b.c/d.e/f.png"_s << Key(u"e_f"_s);
    QTest::newRow("dot inside a combined character does not split")
        << u"https://h.test/a/B/1.png.\u0301x"_s << Key(u"B_1"_s);
    QTest::newRow("slash inside a combined character does not split")
        << u"https://h.test/x/A/\u0338B.png"_s << Key(u"x_A/\u0338B"_s);
    QTest::newRow("one piece at dots") << u"https://h/x/y/zpng"_s << Key();
    QTest::newRow("one piece at slashes") << u"icon.png"_s << Key();
    QTest::newRow("empty") << QString() << Key();
}

void TestEventRecord::cacheKeys()
{
    QFETCH(QString, url);
    QFETCH(std::optional<QString>, key);
    QCOMPARE(iconCacheKey(url), key);
}

void TestEventRecord::iconIsFetchedOnceAndStoredAsTiff()
{
    MemoryStore store;
    FakeFetcher fetcher;
    fetcher.responses.insert(iconUrl, pngBytes(Qt::red, QSize(4, 3)));
    const QByteArray record = R"({"name": "Ember Wyrm", "icon": ")" + iconUrl.toUtf8() + R"("})";

    IconCache firstRun(store, fetcher);
    const auto first = parseEvent(object(record), u"Harbour"_s, &firstRun);
    QVERIFY(first->icon);
    QCOMPARE(first->icon->size(), QSize(4, 3));
    QCOMPARE(fetcher.requests, QStringList{iconUrl});
    const QByteArray stored = store.value(u"4F2A9C_517"_s).toByteArray();
    QVERIFY2(stored.startsWith("II*\0"_ba) || stored.startsWith("MM\0*"_ba), "not TIFF data");

    // A later start builds the icon from the store, without the network.
    IconCache secondRun(store, fetcher);
    QVERIFY(!secondRun.needsFetch(iconUrl));
    const auto second = parseEvent(object(record), u"Harbour"_s, &secondRun);
    QVERIFY(second->icon);
    QCOMPARE(second->icon->pixelColor(1, 1), QColor(Qt::red));
    QCOMPARE(fetcher.requests.size(), 1);
}

void TestEventRecord::failedFetchIsNotCachedAndRetried()
{
    MemoryStore store;
    FakeFetcher fetcher;
    fetcher.responses.insert(iconUrl, "<html>not an image</html>"_ba);
    IconCache cache(store, fetcher);

    QVERIFY(!cache.icon(iconUrl)); // undecodable body
    QCOMPARE(store.size(), 0);
    fetcher.responses.clear();
    QVERIFY(!cache.icon(iconUrl)); // failed fetch
    QCOMPARE(store.size(), 0);
    QVERIFY(cache.needsFetch(iconUrl));

    fetcher.responses.insert(iconUrl, pngBytes(Qt::blue));
    QVERIFY(cache.icon(iconUrl));
    QCOMPARE(fetcher.requests.size(), 3);
    QCOMPARE(store.size(), 1);
}

void TestEventRecord::undecodableStoredDataIsKeptAndGivesNoIcon_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::newRow("bytes that are no image") << QVariant("garbage"_ba);
    QTest::newRow("not data at all") << QVariant(42);
    QTest::newRow("text") << QVariant(u"II*"_s);
}

void TestEventRecord::undecodableStoredDataIsKeptAndGivesNoIcon()
{
    QFETCH(QVariant, stored);
    MemoryStore store;
    store.setValue(u"4F2A9C_517"_s, stored);
    FakeFetcher fetcher;
    fetcher.responses.insert(iconUrl, pngBytes(Qt::red));
    IconCache cache(store, fetcher);

    QVERIFY(!cache.icon(iconUrl));
    QVERIFY(fetcher.requests.isEmpty());
    QCOMPARE(store.value(u"4F2A9C_517"_s), stored);
}

void TestEventRecord::urlsSharingAKeyShareTheIcon()
{
    MemoryStore store;
    FakeFetcher fetcher;
    fetcher.responses.insert(u"https://h.test/a/X/1.png"_s, pngBytes(Qt::green));
    IconCache cache(store, fetcher);

    QVERIFY(cache.icon(u"https://h.test/a/X/1.png"_s));
    const std::optional<QImage> shared = cache.icon(u"https://h.test/b/X/1.png"_s);
    QVERIFY(shared);
    QCOMPARE(shared->pixelColor(0, 0), QColor(Qt::green));
    QCOMPARE(fetcher.requests.size(), 1);
}

void TestEventRecord::unusableIconTextsFetchNothing_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("too few pieces") << u"nothing-here"_s;
    QTest::newRow("not a URL") << u"http://exa mple.test/a/X/1.png"_s;
}

void TestEventRecord::unusableIconTextsFetchNothing()
{
    QFETCH(QString, url);
    MemoryStore store;
    FakeFetcher fetcher;
    IconCache cache(store, fetcher);
    QVERIFY(!cache.needsFetch(url));
    QVERIFY(!cache.icon(url));
    QVERIFY(fetcher.requests.isEmpty());
    QCOMPARE(store.size(), 0);
}

QTEST_GUILESS_MAIN(TestEventRecord)
#include "tst_eventrecord.moc"
