#include "localeventservice/loopbackhttpserver.h"

#include <QSslServer>
#include <QTcpSocket>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

QByteArray reasonPhrase(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 302:
        return "Found";
    case 404:
        return "Not Found";
    case 500:
        return "Internal Server Error";
    case 503:
        return "Service Unavailable";
    default:
        return "Status";
    }
}

} // namespace

LoopbackHttpServer::LoopbackHttpServer(Handler handler)
    : m_handler(std::move(handler))
    , m_server(std::make_unique<QTcpServer>())
{
    connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, this,
            &LoopbackHttpServer::onConnection);
}

LoopbackHttpServer::~LoopbackHttpServer() = default;

void LoopbackHttpServer::useTls(const QSslCertificate &certificate, const QSslKey &key)
{
    auto server = std::make_unique<QSslServer>();
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(certificate);
    configuration.setPrivateKey(key);
    server->setSslConfiguration(configuration);
    // Connections come out once their handshake is done; one that fails it goes away.
    connect(server.get(), &QTcpServer::pendingConnectionAvailable, this,
            &LoopbackHttpServer::onConnection);
    m_server = std::move(server);
    m_tls = true;
}

bool LoopbackHttpServer::listen(quint16 port)
{
    return m_server->listen(QHostAddress::LocalHost, port);
}

quint16 LoopbackHttpServer::port() const
{
    return m_server->serverPort();
}

QUrl LoopbackHttpServer::baseUrl() const
{
    return QUrl((m_tls ? u"https://127.0.0.1:"_s : u"http://127.0.0.1:"_s) +
                QString::number(port()));
}

void LoopbackHttpServer::writeHead(QTcpSocket *socket, int status, const QByteArray &type,
                                   std::optional<qint64> length, const QByteArray &location)
{
    QByteArray head = "HTTP/1.1 " + QByteArray::number(status) + ' ' + reasonPhrase(status) +
                      "\r\nContent-Type: " + type;
    if (!location.isEmpty())
        head += "\r\nLocation: " + location;
    if (length)
        head += "\r\nContent-Length: " + QByteArray::number(*length);
    socket->write(head + "\r\nConnection: close\r\n\r\n");
}

void LoopbackHttpServer::writeAnswer(QTcpSocket *socket, const Answer &answer,
                                     const QByteArray &location)
{
    writeHead(socket, answer.status, answer.type, answer.body.size(), location);
    socket->write(answer.body);
    socket->disconnectFromHost();
}

void LoopbackHttpServer::onConnection()
{
    while (QTcpSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            // One request per connection: wait for the end of the header, answer, close.
            if (socket->property("answered").toBool())
                return;
            QByteArray request = socket->property("request").toByteArray() + socket->readAll();
            socket->setProperty("request", request);
            if (!request.contains("\r\n\r\n"))
                return;
            socket->setProperty("answered", true);
            const QList<QByteArray> line = request.left(request.indexOf("\r\n")).split(' ');
            const QString path =
                line.size() >= 2 ? QUrl(QString::fromUtf8(line.at(1))).path() : QString();
            m_handler(socket, path);
        });
    }
}

} // namespace eventtimer
