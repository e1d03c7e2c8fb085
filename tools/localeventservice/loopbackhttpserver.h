#pragma once

#include <QByteArray>
#include <QObject>
#include <QSslCertificate>
#include <QSslKey>
#include <QTcpServer>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

class QTcpSocket;

namespace eventtimer {

// The local event service's connections: listens on 127.0.0.1, over plain HTTP or over HTTPS
// with a certificate it is given, reads one request per connection and hands its path on, and
// writes answers. What to answer is not its business.
class LoopbackHttpServer final : public QObject
{
    Q_OBJECT

public:
    // Called once per connection, with the requested path, when the request's header is in.
    using Handler = std::function<void(QTcpSocket *socket, const QString &path)>;

    struct Answer
    {
        int status = 404;
        QByteArray type;
        QByteArray body;
    };

    explicit LoopbackHttpServer(Handler handler);
    ~LoopbackHttpServer() override;

    // Serves HTTPS with this certificate from now on; call before listen().
    void useTls(const QSslCertificate &certificate, const QSslKey &key);
    // Listens on 127.0.0.1; port 0 picks a free one.
    bool listen(quint16 port = 0);
    quint16 port() const;
    QUrl baseUrl() const;

    // The status line and the headers. Without a length the body ends where the connection
    // closes.
    static void writeHead(QTcpSocket *socket, int status, const QByteArray &type,
                          std::optional<qint64> length, const QByteArray &location = {});
    // The whole answer, then the connection closes.
    static void writeAnswer(QTcpSocket *socket, const Answer &answer,
                            const QByteArray &location = {});

private:
    void onConnection();

    Handler m_handler;
    std::unique_ptr<QTcpServer> m_server;
    bool m_tls = false;
};

} // namespace eventtimer
