#include "data/urlloader.h"
#include "eventservice/eventservice.h"

#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

class TestUrlLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void reads_data()
    {
        QTest::addColumn<EventService::Behaviour>("behaviour");
        QTest::addColumn<bool>("succeeds");

        QTest::newRow("200") << EventService::Behaviour{} << true;
        QTest::newRow("HTTP 500") << EventService::Behaviour{.status = 500} << false;
        QTest::newRow("HTTP 404") << EventService::Behaviour{.status = 404} << false;
        QTest::newRow("closed in the middle of the body")
            << EventService::Behaviour{.closeMidBody = true} << false;
        QTest::newRow("slower than the time-out")
            << EventService::Behaviour{.delayMs = 3000} << false;
        QTest::newRow("a redirect chain over closing connections")
            << EventService::Behaviour{.redirects = 2} << true;
        QTest::newRow("a chain of more than five redirects")
            << EventService::Behaviour{.redirects = 6} << false;
        QTest::newRow("a body over the cap")
            << EventService::Behaviour{.oversizeBytes = 300 * 1024} << false;
    }

    void reads()
    {
        QFETCH(EventService::Behaviour, behaviour);
        QFETCH(bool, succeeds);

        EventService service;
        QVERIFY(service.listen());
        service.setDocument("[1]");
        service.setBehaviour(EventService::documentPath.toString(), behaviour);
        UrlLoader loader({std::chrono::milliseconds(1000), 256 * 1024});
        const Result<QByteArray> body = loader.readNow(
            QUrl(service.baseUrl().toString() + EventService::documentPath.toString()));
        QVERIFY2(body.ok() == succeeds, qPrintable(body.ok() ? QString() : body.error()));
        if (succeeds)
            QCOMPARE(body.value(), "[1]"_ba);
    }

    void readsSeveralInOrder()
    {
        EventService service;
        QVERIFY(service.listen());
        service.setDocument("[2]");
        const QString base = service.baseUrl().toString();
        UrlLoader loader;
        const QList<Result<QByteArray>> bodies =
            loader.readAllNow({QUrl(base + u"/missing"_s), QUrl(base + u"/api/events/sequence"_s),
                               QUrl(u"http://example.test/x"_s)},
                              2);
        QCOMPARE(bodies.size(), 3);
        QVERIFY(!bodies.at(0));
        QCOMPARE(bodies.at(1).value(), "[2]"_ba);
        QVERIFY(!bodies.at(2));
        QCOMPARE(service.totalRequests(), 2);
    }

    void addressRule_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("allowed");

        QTest::newRow("https") << u"https://events.example.test/x"_s << true;
        QTest::newRow("http to 127.5.0.9") << u"http://127.5.0.9/x"_s << true;
        QTest::newRow("http to ::1") << u"http://[::1]:8080/x"_s << true;
        QTest::newRow("http to localhost") << u"http://LocalHost/x"_s << true;
        QTest::newRow("http elsewhere") << u"http://events.example.test/x"_s << false;
        QTest::newRow("http to a private address") << u"http://192.168.1.4/x"_s << false;
        QTest::newRow("ftp") << u"ftp://127.0.0.1/x"_s << false;
        QTest::newRow("file") << u"file:///etc/passwd"_s << false;
    }

    void addressRule()
    {
        QFETCH(QString, url);
        QFETCH(bool, allowed);
        QCOMPARE(UrlLoader::checkAddress(QUrl(url)).ok(), allowed);
    }
};

QTEST_GUILESS_MAIN(TestUrlLoader)
#include "tst_urlloader.moc"
