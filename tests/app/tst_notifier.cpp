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

namespace {

const auto serviceName = u"org.freedesktop.Notifications"_s;
const auto objectPath = u"/org/freedesktop/Notifications"_s;

struct ReceivedImage
{
    QString signature;
    int width = 0, height = 0, rowstride = 0;
    bool hasAlpha = false;
    int bitsPerSample = 0, channels = 0;
    QByteArray bytes;
};

struct Received
{
    QString appName, appIcon, summary, body;
    uint replacesId = 0;
    QStringList actions;
    QVariantMap hints;
    int expireTimeout = 0;
    std::optional<ReceivedImage> image;
    uint id = 0;
};

// What happens before the player acts. ServerLate: the bus starts the server on the first
// notification, after the notifier began to listen.
enum class Twist
{
    None,
    OthersId,
    Closed,
    ServerLate
};

} // namespace

// The desktop's notification service, as far as the notifier uses it.
class FakeNotificationServer : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    QList<Received> received;

public Q_SLOTS:
    uint Notify(const QString &appName, uint replacesId, const QString &appIcon,
                const QString &summary, const QString &body, const QStringList &actions,
                const QVariantMap &hints, int expireTimeout)
    {
        Received call{appName, appIcon, summary, body, replacesId, actions, hints, expireTimeout};
        if (hints.contains(u"image-data"_s)) {
            ReceivedImage image;
            const auto argument = hints.value(u"image-data"_s).value<QDBusArgument>();
            image.signature = argument.currentSignature();
            argument.beginStructure();
            argument >> image.width >> image.height >> image.rowstride >> image.hasAlpha >>
                image.bitsPerSample >> image.channels >> image.bytes;
            argument.endStructure();
            call.image = image;
        }
        // Not counting from 0 or 1, so that an index is not mistaken for an id.
        call.id = uint(received.size()) + 41;
        received.append(call);
        return call.id;
    }
    QStringList GetCapabilities() { return {u"actions"_s, u"body"_s, u"icon-static"_s}; }
    void CloseNotification(uint) {}
};

class TestNotifier : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_busDir;
    QProcess m_daemon;
    std::optional<QDBusConnection> m_serverBus, m_clientBus;
    FakeNotificationServer m_server;

    void emitSignal(const QString &name, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createSignal(objectPath, serviceName, name);
        message.setArguments(arguments);
        QVERIFY(m_serverBus->send(message));
    }

    // The id the server gave.
    uint send(Notifier &notifier, const Notification &notification)
    {
        const qsizetype before = m_server.received.size();
        notifier.notify(notification);
        [&] {
            QTRY_COMPARE(m_server.received.size(), before + 1);
        }();
        return m_server.received.last().id;
    }

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
        QVERIFY(m_daemon.waitForStarted());
        QTRY_VERIFY(m_daemon.canReadLine());
        const QString address = QString::fromUtf8(m_daemon.readLine().trimmed());
        m_serverBus = QDBusConnection::connectToBus(address, u"server"_s);
        m_clientBus = QDBusConnection::connectToBus(address, u"client"_s);
        QVERIFY(m_serverBus->isConnected() && m_clientBus->isConnected());
        QVERIFY(
            m_serverBus->registerObject(objectPath, &m_server, QDBusConnection::ExportAllSlots));
        QVERIFY(m_serverBus->registerService(serviceName));
    }

    void cleanupTestCase()
    {
        QDBusConnection::disconnectFromBus(u"server"_s);
        QDBusConnection::disconnectFromBus(u"client"_s);
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    void sendsTheNotification_data()
    {
        QTest::addColumn<std::optional<QString>>("link");
        QTest::addColumn<QSize>("iconSize");
        QTest::addColumn<QSize>("sentSize");
        const QSize none;
        QTest::newRow("link, wide icon")
            << std::optional(u"[&BDgAAAA=]"_s) << QSize(256, 128) << QSize(128, 64);
        QTest::newRow("empty link, tall icon")
            << std::optional(QString()) << QSize(100, 400) << QSize(32, 128);
        QTest::newRow("small icon kept")
            << std::optional<QString>() << QSize(48, 40) << QSize(48, 40);
        QTest::newRow("no link, no icon") << std::optional<QString>() << none << none;
    }

    void sendsTheNotification()
    {
        QFETCH(std::optional<QString>, link);
        QFETCH(QSize, iconSize);
        QFETCH(QSize, sentSize);
        QImage icon;
        if (iconSize.isValid()) {
            icon = QImage(iconSize, QImage::Format_ARGB32);
            icon.fill(QColor(10, 20, 30));
        }
        Notifier notifier(*m_clientBus);
        QSignalSpy undelivered(&notifier, &Notifier::undelivered);
        send(notifier, {u"Tequatl rises"_s, u"In 10 minutes at Sparkfly Fen"_s, icon, link});

        const Received &call = m_server.received.last();
        QCOMPARE(call.appName, u"Event Timer"_s);
        QCOMPARE(call.appIcon, u"org.tolmerkvarn.eventtimer"_s);
        QCOMPARE(call.summary, u"Tequatl rises"_s);
        QCOMPARE(call.body, u"In 10 minutes at Sparkfly Fen"_s);
        QCOMPARE(call.replacesId, 0u);
        QCOMPARE(call.expireTimeout, -1);
        QCOMPARE(call.actions, link ? QStringList({u"default"_s, u"Copy chat link"_s, u"copy"_s,
                                                   u"Copy chat link"_s})
                                    : QStringList());
        QCOMPARE(call.hints.value(u"desktop-entry"_s), QVariant(u"org.tolmerkvarn.eventtimer"_s));
        QCOMPARE(call.hints.value(u"urgency"_s).metaType(), QMetaType::fromType<uchar>());
        QCOMPARE(call.hints.value(u"urgency"_s).toInt(), 1);
        QCOMPARE(call.image.has_value(), sentSize.isValid());
        if (call.image) {
            QCOMPARE(call.image->signature, u"(iiibiiay)"_s);
            QCOMPARE(QSize(call.image->width, call.image->height), sentSize);
            QCOMPARE(call.image->bytes.size(), call.image->rowstride * sentSize.height());
            QCOMPARE(
                std::tuple(call.image->hasAlpha, call.image->bitsPerSample, call.image->channels),
                std::tuple(true, 8, 4));
            QCOMPARE(call.image->bytes.first(4), QByteArray::fromHex("0a141eff"));
        }
        QCOMPARE(undelivered.size(), 0);
    }

    void copiesTheLinkOfItsOwnNotifications_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("link");
        QTest::addColumn<Twist>("twist");
        QTest::addColumn<bool>("copies");
        const QString link = u"[&BDgAAAA=]"_s;
        QTest::newRow("copy button") << u"copy"_s << link << Twist::None << true;
        QTest::newRow("click") << u"default"_s << link << Twist::None << true;
        QTest::newRow("empty link") << u"copy"_s << QString() << Twist::None << true;
        QTest::newRow("other action") << u"dismiss"_s << link << Twist::None << false;
        QTest::newRow("another program's") << u"copy"_s << link << Twist::OthersId << false;
        QTest::newRow("closed") << u"copy"_s << link << Twist::Closed << false;
        QTest::newRow("server started later") << u"copy"_s << link << Twist::ServerLate << true;
    }

    void copiesTheLinkOfItsOwnNotifications()
    {
        QFETCH(QString, action);
        QFETCH(QString, link);
        QFETCH(Twist, twist);
        QFETCH(bool, copies);
        if (twist == Twist::ServerLate)
            QVERIFY(m_serverBus->unregisterService(serviceName));
        Notifier notifier(*m_clientBus);
        if (twist == Twist::ServerLate)
            QVERIFY(m_serverBus->registerService(serviceName));
        QSignalSpy copyRequested(&notifier, &Notifier::copyRequested);
        const uint id = send(notifier, {u"Tequatl"_s, {}, {}, link});
        const uint last = send(notifier, {u"Last"_s, {}, {}, u"last"_s});
        if (twist == Twist::Closed)
            emitSignal(u"NotificationClosed"_s, {id, 2u});
        emitSignal(u"ActionInvoked"_s, {twist == Twist::OthersId ? id + 1000 : id, action});
        // Signals arrive in order: once the last one's link is copied, the first was handled.
        emitSignal(u"ActionInvoked"_s, {last, u"copy"_s});
        const QStringList expected = copies ? QStringList{link, u"last"_s} : QStringList{u"last"_s};
        QTRY_COMPARE(copyRequested.size(), expected.size());
        QStringList copied;
        for (const QList<QVariant> &arguments : std::as_const(copyRequested))
            copied.append(arguments.at(0).toString());
        QCOMPARE(copied, expected);
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
