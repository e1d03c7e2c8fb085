#include "app/notifier.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

const auto serviceName = u"org.freedesktop.Notifications"_s;
const auto objectPath = u"/org/freedesktop/Notifications"_s;

// The test stands in for the desktop's notification service, as far as the notifier uses it.
class TestNotifier : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public Q_SLOTS:
    QStringList GetCapabilities()
    {
        ++m_asked;
        return m_capabilities;
    }

    uint Notify(const QString &, uint, const QString &, const QString &, const QString &,
                const QStringList &, const QVariantMap &hints, int, const QDBusMessage &message)
    {
        QImage image;
        const auto argument = hints.value(u"image-data"_s).value<QDBusArgument>();
        if (argument.currentSignature() == u"(iiibiiay)"_s) {
            int width = 0, height = 0, rowstride = 0, bits = 0, channels = 0;
            bool alpha = false;
            QByteArray bytes;
            argument.beginStructure();
            argument >> width >> height >> rowstride >> alpha >> bits >> channels >> bytes;
            argument.endStructure();
            if (alpha && bits == 8 && channels == 4 && bytes.size() == rowstride * height)
                image = QImage(reinterpret_cast<const uchar *>(bytes.constData()), width, height,
                               rowstride, QImage::Format_RGBA8888)
                            .copy();
        }
        QVariantList arguments = message.arguments();
        arguments[6] = hints;
        m_received.append({arguments, image});
        // 41, 42, ...: not counting from 0 or 1, so that an index is not mistaken for an id.
        return uint(m_received.size()) + 40;
    }

private:
    QTemporaryDir m_busDir;
    QProcess m_daemon;
    std::optional<QDBusConnection> m_serverBus, m_clientBus;
    // Each call's arguments, the hints as a map, and the image-data hint read back: null when
    // it is missing or not laid out as (iiibiiay) with 8-bit RGBA rows.
    QList<std::pair<QVariantList, QImage>> m_received;
    QStringList m_capabilities{u"body"_s, u"actions"_s};
    int m_asked = 0;

private Q_SLOTS:
    void initTestCase()
    {
        // A bus of our own without service files: the machine's would start a real server (dunst).
        const QString config = m_busDir.filePath(u"bus.conf"_s);
        QFile file(config);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(
            "<busconfig><type>session</type><listen>unix:tmpdir=" + m_busDir.path().toUtf8() +
            "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
            "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>");
        file.close();
        m_daemon.start(u"/usr/bin/dbus-daemon"_s,
                       {u"--config-file="_s + config, u"--nofork"_s, u"--print-address=1"_s});
        QTRY_VERIFY(m_daemon.canReadLine());
        const QString address = QString::fromUtf8(m_daemon.readLine().trimmed());
        m_serverBus = QDBusConnection::connectToBus(address, u"server"_s);
        m_clientBus = QDBusConnection::connectToBus(address, u"client"_s);
        QVERIFY(m_serverBus->isConnected() && m_clientBus->isConnected());
        QVERIFY(m_serverBus->registerObject(objectPath, this, QDBusConnection::ExportAllSlots));
        QVERIFY(m_serverBus->registerService(serviceName));
    }

    void cleanupTestCase()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    void notifiesAndCopiesTheLinkOfItsOwn_data()
    {
        QTest::addColumn<std::optional<QString>>("link");
        QTest::addColumn<QSize>("iconSize");
        QTest::addColumn<QSize>("sentSize");
        QTest::addColumn<QString>("action");
        // What happens before the player acts: the id is another program's, the notification was
        // closed, or the bus starts the server late, on the first notification.
        QTest::addColumn<QString>("twist");
        QTest::addColumn<bool>("copies");
        const std::optional<QString> link = u"[&BDgAAAA=]"_s, empty = QString(), none;
        const QSize no(0, 0);
        QTest::newRow("wide icon, copy button")
            << link << QSize(256, 128) << QSize(128, 64) << u"copy"_s << QString() << true;
        QTest::newRow("tall icon, empty link, click")
            << empty << QSize(100, 400) << QSize(32, 128) << u"default"_s << QString() << true;
        QTest::newRow("small icon kept, other action")
            << link << QSize(48, 40) << QSize(48, 40) << u"dismiss"_s << QString() << false;
        QTest::newRow("no link") << none << no << no << u"copy"_s << QString() << false;
        QTest::newRow("another program's") << link << no << no << u"copy"_s << u"theirs"_s << false;
        QTest::newRow("closed") << link << no << no << u"copy"_s << u"closed"_s << false;
        QTest::newRow("server late") << link << no << no << u"copy"_s << u"late"_s << true;
    }

    void notifiesAndCopiesTheLinkOfItsOwn()
    {
        QFETCH(std::optional<QString>, link);
        QFETCH(QSize, iconSize);
        QFETCH(QSize, sentSize);
        QFETCH(QString, action);
        QFETCH(QString, twist);
        QFETCH(bool, copies);
        QImage icon(iconSize, QImage::Format_ARGB32);
        icon.fill(QColor(10, 20, 30));
        if (twist == u"late"_s)
            QVERIFY(m_serverBus->unregisterService(serviceName));
        Notifier notifier(*m_clientBus);
        if (twist == u"late"_s)
            QVERIFY(m_serverBus->registerService(serviceName));
        QStringList copied;
        connect(&notifier, &Notifier::copyRequested, this,
                [&](const QString &copy) { copied.append(copy); });
        m_received.clear();
        notifier.notify({u"Tequatl rises"_s, u"In 10 minutes at Sparkfly Fen"_s, icon, link});
        notifier.notify({u"Last"_s, {}, {}, u"last"_s});
        QTRY_COMPARE(m_received.size(), 2);

        const auto [call, image] = m_received.first();
        const QStringList actions =
            link ? QStringList{u"default"_s, u"Copy chat link"_s, u"copy"_s, u"Copy chat link"_s}
                 : QStringList();
        QCOMPARE(
            call.mid(0, 6) << call.at(7),
            (QVariantList{u"Event Timer"_s, 0u, u"org.tolmerkvarn.eventtimer"_s, u"Tequatl rises"_s,
                          u"In 10 minutes at Sparkfly Fen"_s, actions, -1}));
        QVariantMap hints = call.at(6).toMap();
        QCOMPARE(hints.remove(u"image-data"_s), iconSize.isEmpty() ? 0 : 1);
        QCOMPARE(hints, (QVariantMap{{u"desktop-entry"_s, u"org.tolmerkvarn.eventtimer"_s},
                                     {u"urgency"_s, QVariant::fromValue(uchar{1})}}));
        // A byte (y) on the bus: servers ignore an urgency of another type.
        QCOMPARE(hints.value(u"urgency"_s).metaType(), QMetaType::fromType<uchar>());
        QCOMPARE(image.size(), sentSize);
        QVERIFY(image.isNull() || image.pixel(0, 0) == qRgba(10, 20, 30, 255));

        const uint id = 41, last = 42;
        const auto emitSignal = [&](const QString &name, uint to, const QVariant &argument) {
            QVERIFY(m_serverBus->send(QDBusMessage::createSignal(objectPath, serviceName, name)
                                      << to << argument));
        };
        if (twist == u"closed"_s)
            emitSignal(u"NotificationClosed"_s, id, 2u);
        emitSignal(u"ActionInvoked"_s, twist == u"theirs"_s ? id + 1000 : id, action);
        // Signals arrive in order: once the last one's link is copied, the first was handled.
        emitSignal(u"ActionInvoked"_s, last, u"copy"_s);
        QTRY_COMPARE(copied, (copies ? QStringList{*link, u"last"_s} : QStringList{u"last"_s}));
    }

    // A name reaches a server that reads markup as the text it is.
    void bodyIsMarkupOnlyWhereTheServerReadsIt_data()
    {
        QTest::addColumn<QStringList>("capabilities");
        QTest::addColumn<QString>("body");
        QTest::newRow("plain") << QStringList{u"body"_s} << u"Tide & Reef <b>x</b>, 12:05"_s;
        QTest::newRow("markup") << QStringList{u"body"_s, u"body-markup"_s}
                                << u"Tide &amp; Reef &lt;b&gt;x&lt;/b&gt;, 12:05"_s;
    }

    void bodyIsMarkupOnlyWhereTheServerReadsIt()
    {
        QFETCH(QStringList, capabilities);
        QFETCH(QString, body);
        m_capabilities = capabilities;
        m_received.clear();
        m_asked = 0;
        Notifier notifier(*m_clientBus);
        const QString summary = u"A & <i>B</i> in 5 min"_s;
        notifier.notify({summary, u"Tide & Reef <b>x</b>, 12:05"_s, {}, std::nullopt});
        notifier.notify({summary, u"Tide & Reef <b>x</b>, 12:05"_s, {}, std::nullopt});
        QTRY_COMPARE(m_received.size(), 2);
        for (const auto &[call, image] : std::as_const(m_received))
            QCOMPARE(call.mid(3, 2), (QVariantList{summary, body}));
        QCOMPARE(m_asked, 1);
        m_capabilities = {u"body"_s};
    }

    void handsBackWhatNoServiceTook_data()
    {
        QTest::addColumn<bool>("connected");
        QTest::newRow("no service on the bus") << true;
        QTest::newRow("never connected") << false;
    }

    void handsBackWhatNoServiceTook()
    {
        QFETCH(bool, connected);
        QVERIFY(m_serverBus->unregisterService(serviceName));
        const auto reregister = qScopeGuard([&] { m_serverBus->registerService(serviceName); });
        Notifier notifier(connected ? *m_clientBus : QDBusConnection(u"none"_s));
        QSignalSpy undelivered(&notifier, &Notifier::undelivered);
        notifier.notify({u"Tequatl rises"_s, {}, {}, u"link"_s});
        QCOMPARE(undelivered.size(), 0);
        QTRY_COMPARE(undelivered.size(), 1);
        QCOMPARE(undelivered.at(0).at(0).value<Notification>().summary, u"Tequatl rises"_s);
    }
};

QTEST_GUILESS_MAIN(TestNotifier)
#include "tst_notifier.moc"
