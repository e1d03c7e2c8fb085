#pragma once

#include <QDBusConnection>
#include <QHash>
#include <QImage>
#include <QList>
#include <QObject>
#include <QString>

#include <optional>

namespace eventtimer {

// One desktop notification of a reminder, as the player sees it.
struct Notification
{
    QString summary;
    QString body;
    // The event's icon; none when null.
    QImage image;
    // Offered as the action "Copy chat link" when present (an empty link is a link).
    std::optional<QString> chatLink;
};

// Sends notifications to the desktop's notification service (org.freedesktop.Notifications)
// on the bus it is given, and hears which of its own the player acted on. It never waits for
// the bus: a call is made asynchronously, and a notification that no service took (no bus, no
// service, an error or no answer) is handed back through undelivered().
//
// Names come from the network: where the service reads the body as markup (it says so among its
// capabilities, asked once before the first notification), the body is escaped, so that a name
// shows as it is and adds no formatting or links. The summary is never markup.
class Notifier : public QObject
{
    Q_OBJECT

public:
    explicit Notifier(QDBusConnection bus, QObject *parent = nullptr);
    ~Notifier() override;

    void notify(const Notification &notification);

Q_SIGNALS:
    // The player chose "Copy chat link" (or clicked the notification) on one of ours.
    void copyRequested(const QString &link);
    void undelivered(const eventtimer::Notification &notification);

private Q_SLOTS:
    void onActionInvoked(uint id, const QString &actionKey);
    void onNotificationClosed(uint id, uint reason);

private:
    void send(const Notification &notification);
    void remember(uint id, const QString &link);
    void forget(uint id);

    QDBusConnection m_bus;
    // The service's capabilities once it told them; what waits for them meanwhile.
    std::optional<QStringList> m_capabilities;
    QList<Notification> m_waiting;
    // The chat links of our notifications still on screen, by the service's id.
    QHash<uint, QString> m_links;
    // The same ids, oldest first.
    QList<uint> m_order;
};

} // namespace eventtimer
