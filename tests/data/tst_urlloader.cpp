#include "blockingcalls.h"
#include "data/urlloader.h"
#include "localeventservice/localeventservice.h"

#include <QFile>
#include <QSslConfiguration>
#include <QSslKey>
#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

class TestUrlLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data()
    {
        QTest::addColumn<LocalEventService::Behaviour>("behaviour");
        QTest::addColumn<QString>("failure"); // empty when the body is read

        QTest::newRow("200") << LocalEventService::Behaviour{} << QString();
        QTest::newRow("HTTP 500") << LocalEventService::Behaviour{.status = 500} << u"HTTP 500"_s;
        QTest::newRow("closed in the middle of the body")
            << LocalEventService::Behaviour{.closeMidBody = true} << u"closed the connection"_s;
        QTest::newRow("slower than the time-out")
            << LocalEventService::Behaviour{.delayMs = 3000} << u"timed out after 1 s"_s;
        QTest::newRow("five redirects over closing connections")
            << LocalEventService::Behaviour{.redirects = 5} << QString();
        QTest::newRow("six redirects")
            << LocalEventService::Behaviour{.redirects = 6} << u"more than 5 redirects"_s;
        QTest::newRow("a body over the cap, without a length")
            << LocalEventService::Behaviour{.oversizeBytes = 300 * 1024, .noLength = true}
            << u"larger than 262144"_s;
    }

    void reads()
    {
        QFETCH(LocalEventService::Behaviour, behaviour);
        QFETCH(QString, failure);

        LocalEventService service;
        QVERIFY(service.listen());
        service.setDocument("[1]");
        service.setBehaviour(LocalEventService::documentPath.toString(), behaviour);
        UrlLoader loader({std::chrono::milliseconds(1000), 256 * 1024});
        // Beside a refused address, which fails at once: the results keep the order asked for.
        const UrlLoader::Results bodies = readAllNow(
            loader,
            {QUrl(service.baseUrl().toString() + LocalEventService::documentPath.toString()),
             QUrl(u"http://example.test/x"_s)},
            2);
        // The reason does not repeat the address: whoever says it names it once.
        QCOMPARE(bodies.at(1).error(), u"plain http is only accepted to this machine"_s);
        const Result<QByteArray> &body = bodies.at(0);
        const QString got = body ? QString::fromLatin1(body.value()) : body.error();
        QVERIFY2(failure.isEmpty() ? got == u"[1]"_s : got.contains(failure), qPrintable(got));
    }

    void certificatesAreVerified()
    {
        const QString tls = QStringLiteral(EVENTTIMER_FIXTURES_DIR "/tls/");
        QFile key(tls + u"server.key"_s);
        QVERIFY(key.open(QIODevice::ReadOnly));
        LocalEventService service;
        service.useTls(QSslCertificate::fromPath(tls + u"server.pem"_s).value(0),
                       QSslKey(&key, QSsl::Ec));
        QVERIFY(service.listen());
        service.setDocument("[3]");
        const QUrl url(service.baseUrl().toString() + LocalEventService::documentPath.toString());
        UrlLoader untrusting;
        QCOMPARE(readNow(untrusting, url).error(), u"certificate not trusted"_s);

        // Trusted the way the system's own authorities are, through the process's defaults.
        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration trusting = before;
        trusting.addCaCertificates(tls + u"ca.pem"_s);
        QSslConfiguration::setDefaultConfiguration(trusting);
        UrlLoader trustingLoader;
        const Result<QByteArray> body = readNow(trustingLoader, url);
        QSslConfiguration::setDefaultConfiguration(before);
        QCOMPARE(body.value(), "[3]"_ba);
    }

    void addressRule_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("allowed");

        QTest::newRow("https") << u"https://events.example.test/x"_s << true;
        QTest::newRow("http to 127.5.0.9") << u"http://127.5.0.9/x"_s << true;
        QTest::newRow("http to ::1") << u"http://[::1]:8080/x"_s << true;
        QTest::newRow("http to localhost") << u"http://LocalHost/x"_s << true;
        QTest::newRow("http to a private address") << u"http://192.168.1.4/x"_s << false;
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
