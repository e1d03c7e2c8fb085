#include "app/notifier.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QMetaObject>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

const auto service = u"org.freedesktop.Notifications"_s;
const auto path = u"/org/freedesktop/Notifications"_s;
const auto interface = u"org.freedesktop.Notifications"_s;
const auto desktopEntry = u"org.tolmerkvarn.eventtimer"_s;
const auto copyAction = u"copy"_s;
// Clicking the notification itself.
const auto defaultAction = u"default"_s;

// Larger icons only make the message bigger: servers show them at a few dozen pixels.
constexpr int maxIconSide = 128;
// A server that never reports closed notifications must not make us grow forever.
constexpr qsizetype maxRemembered = 100;

// The "image-data" hint: (width, height, rowstride, has_alpha, bits_per_sample, channels,
// bytes), the bytes being non-premultiplied RGBA rows.
QDBusArgument imageData(const QImage &icon)
{
    QImage image =
        icon.width() > maxIconSide || icon.height() > maxIconSide
            ? icon.scaled(maxIconSide, maxIconSide, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            : icon;
    image.convertTo(QImage::Format_RGBA8888);
    QDBusArgument argument;
    argument.beginStructure();
    argument << image.width() << image.height() << static_cast<int>(image.bytesPerLine()) << true
             << 8 << 4
             << QByteArray(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes());
    argument.endStructure();
    return argument;
}

// The body as markup that reads as the text: only these three mean something there.
QString markupEscaped(const QString &text)
{
    QString escaped = text;
    escaped.replace(u'&', u"&amp;"_s).replace(u'<', u"&lt;"_s).replace(u'>', u"&gt;"_s);
    return escaped;
}

} // namespace

Notifier::Notifier(QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    // Without a bus these fail quietly; notify() then hands everything back.
    m_bus.connect(service, path, interface, u"ActionInvoked"_s, this,
                  SLOT(onActionInvoked(uint, QString)));
    m_bus.connect(service, path, interface, u"NotificationClosed"_s, this,
                  SLOT(onNotificationClosed(uint, uint)));
}

Notifier::~Notifier() = default;

void Notifier::notify(const Notification &notification)
{
    if (!m_bus.isConnected()) {
        // From the event loop, as an error reply would come, so callers see one order.
        QMetaObject::invokeMethod(
            this, [this, notification] { Q_EMIT undelivered(notification); }, Qt::QueuedConnection);
        return;
    }
    m_waiting.append(notification);
    if (m_capabilities) {
        send(m_waiting.takeFirst());
        return;
    }
    if (m_waiting.size() > 1)
        return; // asked already
    const QDBusMessage ask =
        QDBusMessage::createMethodCall(service, path, interface, u"GetCapabilities"_s);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(ask), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                const QDBusPendingReply<QStringList> reply = *finished;
                // Without an answer they go as plain text, and most likely come back; the
                // next notification asks again.
                if (!reply.isError())
                    m_capabilities = reply.value();
                const QList<Notification> waiting = std::exchange(m_waiting, {});
                for (const Notification &next : waiting)
                    send(next);
            });
}

void Notifier::send(const Notification &notification)
{
    const QStringList actions =
        notification.chatLink
            ? QStringList{defaultAction, u"Copy chat link"_s, copyAction, u"Copy chat link"_s}
            : QStringList{};
    QVariantMap hints{{u"desktop-entry"_s, desktopEntry},
                      {u"urgency"_s, QVariant::fromValue(uchar{1})}};
    if (!notification.image.isNull())
        hints.insert(u"image-data"_s, QVariant::fromValue(imageData(notification.image)));

    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, u"Notify"_s);
    const bool markup = m_capabilities && m_capabilities->contains(u"body-markup"_s);
    call << u"Event Timer"_s << uint{0} << desktopEntry << notification.summary
         << (markup ? markupEscaped(notification.body) : notification.body) << actions << hints
         << -1;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, notification](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                const QDBusPendingReply<uint> reply = *finished;
                if (reply.isError()) {
                    Q_EMIT undelivered(notification);
                    return;
                }
                if (notification.chatLink)
                    remember(reply.value(), *notification.chatLink);
            });
}

void Notifier::onActionInvoked(uint id, const QString &actionKey)
{
    // The service tells every listener about every program's notifications.
    const auto link = m_links.constFind(id);
    if (link == m_links.cend() || (actionKey != copyAction && actionKey != defaultAction))
        return;
    Q_EMIT copyRequested(*link);
}

void Notifier::onNotificationClosed(uint id, uint reason)
{
    Q_UNUSED(reason);
    forget(id);
}

void Notifier::remember(uint id, const QString &link)
{
    // A service may hand out an id again once its notification is gone.
    forget(id);
    m_links.insert(id, link);
    m_order.append(id);
    if (m_order.size() > maxRemembered)
        m_links.remove(m_order.takeFirst());
}

void Notifier::forget(uint id)
{
    if (m_links.remove(id))
        m_order.removeOne(id);
}

} // namespace eventtimer
