#include "localeventservice/faultinjection.h"

#include <QPointer>
#include <QStringList>
#include <QTcpSocket>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;

namespace eventtimer {

void FaultInjection::setBehaviour(const QString &path, const Behaviour &behaviour)
{
    m_behaviours.insert(path, behaviour);
}

void FaultInjection::clear()
{
    m_behaviours.clear();
}

FaultInjection::Behaviour FaultInjection::behaviourFor(const QString &path) const
{
    if (path.startsWith(u"/r/"_s))
        return {};
    return m_behaviours.value(path, m_behaviours.value(u"*"_s));
}

FaultInjection::Plan FaultInjection::plan(const QString &requested) const
{
    // A redirect chain: the path goes to /r/1, /r/k to /r/k+1, the last to the path's own
    // answer without misbehaviour, each hop a 302 on a connection that closes.
    if (requested.startsWith(u"/r/end/"_s))
        return {{}, requested.mid(6), {}};
    if (requested.startsWith(u"/r/"_s)) {
        const QStringList parts = requested.split(u'/');
        const int hop = parts.value(2).toInt();
        const QString target = u'/' + parts.mid(3).join(u'/');
        if (hop < behaviourFor(target).redirects)
            return {"/r/" + QByteArray::number(hop + 1) + target.toUtf8(), {}, {}};
        return {{}, target, {}};
    }
    const Behaviour behaviour = behaviourFor(requested);
    if (behaviour.redirects > 0)
        return {"/r/1" + requested.toUtf8(), {}, {}};
    return {{}, requested, behaviour};
}

void FaultInjection::deliver(QTcpSocket *socket, LoopbackHttpServer::Answer answer,
                             const Behaviour &behaviour)
{
    if (answer.status == 200 && behaviour.status != 200) {
        answer.status = behaviour.status;
        answer.body = "failure on purpose";
    }
    // A body of the behaviour's answers any path.
    if (behaviour.oversizeBytes > 0 || !behaviour.body.isNull()) {
        answer.status = 200;
        answer.body = behaviour.body;
    }
    if (behaviour.delayMs > 0)
        QTimer::singleShot(behaviour.delayMs, socket,
                           [socket, answer, behaviour] { send(socket, answer, behaviour); });
    else
        send(socket, answer, behaviour);
}

void FaultInjection::send(QTcpSocket *socket, const LoopbackHttpServer::Answer &answer,
                          const Behaviour &behaviour)
{
    const qint64 length =
        behaviour.oversizeBytes > 0 ? behaviour.oversizeBytes : answer.body.size();
    LoopbackHttpServer::writeHead(socket, answer.status, answer.type,
                                  behaviour.noLength ? std::nullopt : std::optional(length));
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
        QObject::connect(socket, &QTcpSocket::bytesWritten, socket, more);
        more();
        return;
    }
    if (behaviour.closeMidBody) {
        socket->write(answer.body.left(answer.body.size() / 2));
        socket->flush();
        socket->abort();
        return;
    }
    if (behaviour.dripMs > 0) {
        // One byte at a time, for as long as the body lasts or the reader stays.
        QPointer<QTcpSocket> guarded(socket);
        auto *drip = new QTimer(socket);
        auto sent = std::make_shared<qsizetype>(0);
        const QByteArray body = answer.body;
        QObject::connect(drip, &QTimer::timeout, socket, [guarded, drip, body, sent] {
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
    socket->write(answer.body);
    socket->disconnectFromHost();
}

} // namespace eventtimer
