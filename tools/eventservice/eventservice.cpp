#include "eventservice/eventservice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QSslServer>
#include <QTcpSocket>
#include <QTimer>

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

QByteArray contentType(const QString &path)
{
    if (path.endsWith(u".png"_s))
        return "image/png";
    if (path.endsWith(u".json"_s) || path == EventService::documentPath)
        return "application/json";
    return "application/octet-stream";
}

} // namespace

EventService::EventService(QObject *parent)
    : QObject(parent)
    , m_server(std::make_unique<QTcpServer>())
{
    connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, this,
            &EventService::onConnection);
}

EventService::~EventService() = default;

void EventService::useTls(const QSslCertificate &certificate, const QSslKey &key)
{
    auto server = std::make_unique<QSslServer>();
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(certificate);
    configuration.setPrivateKey(key);
    server->setSslConfiguration(configuration);
    // Connections come out once their handshake is done; one that fails it goes away.
    connect(server.get(), &QTcpServer::pendingConnectionAvailable, this,
            &EventService::onConnection);
    m_server = std::move(server);
    m_tls = true;
}

bool EventService::listen(quint16 port)
{
    return m_server->listen(QHostAddress::LocalHost, port);
}

quint16 EventService::port() const
{
    return m_server->serverPort();
}

QUrl EventService::baseUrl() const
{
    return QUrl((m_tls ? u"https://127.0.0.1:"_s : u"http://127.0.0.1:"_s) +
                QString::number(port()));
}

void EventService::setDocument(const QByteArray &bytes)
{
    m_document = bytes;
    m_documentFile.clear();
}

void EventService::setDocumentFile(const QString &path)
{
    m_documentFile = path;
}

void EventService::setFilesFolder(const QString &folder)
{
    m_filesFolder = folder;
}

void EventService::setBehaviour(const QString &path, const Behaviour &behaviour)
{
    m_behaviours.insert(path, behaviour);
}

void EventService::clearBehaviours()
{
    m_behaviours.clear();
}

int EventService::requestCount(const QString &path) const
{
    return m_counts.value(path);
}

int EventService::totalRequests() const
{
    int total = 0;
    for (int count : m_counts)
        total += count;
    return total;
}

EventService::Behaviour EventService::behaviourFor(const QString &path) const
{
    if (path.startsWith(u"/r/"_s))
        return {};
    return m_behaviours.value(path, m_behaviours.value(u"*"_s));
}

void EventService::onConnection()
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
            m_counts[path] += 1;
            respond(socket, path);
        });
    }
}

void EventService::respond(QTcpSocket *socket, const QString &path)
{
    // A redirect chain: the path goes to /r/1, /r/k to /r/k+1, the last back to the path's own
    // answer, each hop a 302 on a connection that closes.
    const auto redirect = [this, socket](const QByteArray &to) {
        send(socket, 302, "text/plain", {}, {}, to);
    };
    if (path.startsWith(u"/r/"_s) && !path.startsWith(u"/r/end/"_s)) {
        const QStringList parts = path.split(u'/');
        const int hop = parts.value(2).toInt();
        const QString target = u'/' + parts.mid(3).join(u'/');
        if (hop < behaviourFor(target).redirects)
            redirect("/r/" + QByteArray::number(hop + 1) + target.toUtf8());
        else
            respond(socket, u"/r/end"_s + target);
        return;
    }
    const bool chainEnd = path.startsWith(u"/r/end/"_s);
    const QString own = chainEnd ? path.mid(6) : path;
    const Behaviour behaviour = chainEnd ? Behaviour{} : behaviourFor(own);
    if (behaviour.redirects > 0) {
        redirect("/r/1" + own.toUtf8());
        return;
    }
    respondWith(socket, own, behaviour);
}

void EventService::respondWith(QTcpSocket *socket, const QString &path, const Behaviour &behaviour)
{
    QByteArray body;
    int status = 404;
    if (path == documentPath) {
        status = 200;
        body = m_document;
        if (!m_documentFile.isEmpty()) {
            QFile file(m_documentFile);
            status = file.open(QIODevice::ReadOnly) ? 200 : 404;
            body = file.readAll();
        }
        // Documents name their icons relative to wherever the service happens to listen.
        body.replace(serviceToken, baseUrl().toString().toUtf8());
    } else if (!m_filesFolder.isEmpty() && !path.contains(u".."_s)) {
        QFile file(QDir(m_filesFolder).filePath(path.mid(1)));
        if (QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly)) {
            status = 200;
            body = file.readAll();
        }
    }
    if (status == 200 && behaviour.status != 200) {
        status = behaviour.status;
        body = "failure on purpose";
    }
    // A body of the behaviour's answers any path.
    if (behaviour.oversizeBytes > 0 || !behaviour.body.isNull()) {
        status = 200;
        body = behaviour.body;
    }

    QPointer<QTcpSocket> guarded(socket);
    const QByteArray type = contentType(path);
    const auto answer = [this, guarded, status, type, body, behaviour] {
        if (guarded)
            send(guarded, status, type, body, behaviour);
    };
    if (behaviour.delayMs > 0)
        QTimer::singleShot(behaviour.delayMs, this, answer);
    else
        answer();
}

void EventService::send(QTcpSocket *socket, int status, const QByteArray &type,
                        const QByteArray &body, const Behaviour &behaviour,
                        const QByteArray &location)
{
    QByteArray head = "HTTP/1.1 " + QByteArray::number(status) + ' ' + reasonPhrase(status) +
                      "\r\nContent-Type: " + type;
    if (!location.isEmpty())
        head += "\r\nLocation: " + location;
    const qint64 length = behaviour.oversizeBytes > 0 ? behaviour.oversizeBytes : body.size();
    if (!behaviour.noLength)
        head += "\r\nContent-Length: " + QByteArray::number(length);
    socket->write(head + "\r\nConnection: close\r\n\r\n");
    if (behaviour.oversizeBytes > 0) {
        // Padding, a piece at a time as the reader takes it: a service that sends gigabytes
        // stays small here, and a reader that stops reading stops it.
        static constexpr qint64 piece = 64 * 1024;
        auto left = std::make_shared<qint64>(length);
        const auto more = [socket, left] {
            if (*left <= 0 || socket->bytesToWrite() > piece)
                return;
            const qint64 now = std::min(piece, *left);
            *left -= now;
            socket->write(QByteArray(now, ' '));
            if (*left <= 0)
                socket->disconnectFromHost();
        };
        connect(socket, &QTcpSocket::bytesWritten, socket, more);
        more();
        return;
    }
    if (behaviour.closeMidBody) {
        socket->write(body.left(body.size() / 2));
        socket->flush();
        socket->abort();
        return;
    }
    if (behaviour.dripMs > 0) {
        // One byte at a time, for as long as the body lasts or the reader stays.
        QPointer<QTcpSocket> guarded(socket);
        auto *drip = new QTimer(socket);
        auto sent = std::make_shared<qsizetype>(0);
        connect(drip, &QTimer::timeout, socket, [guarded, drip, body, sent] {
            if (!guarded || *sent >= body.size()) {
                if (guarded)
                    guarded->disconnectFromHost();
                drip->stop();
                return;
            }
            guarded->write(body.mid((*sent)++, 1));
        });
        drip->start(behaviour.dripMs);
        return;
    }
    socket->write(body);
    socket->disconnectFromHost();
}

} // namespace eventtimer
