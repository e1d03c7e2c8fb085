#pragma once

#include "localeventservice/loopbackhttpserver.h"

#include <QByteArray>
#include <QHash>
#include <QString>

class QTcpSocket;

namespace eventtimer {

// How the local event service misbehaves for a path, as a broken or hostile service would:
// answer late, answer an error status, close the connection in the middle of the body, send a
// body larger than asked or one of its choosing, send it without a length or one byte at a
// time, or redirect through a chain first.
class FaultInjection
{
public:
    struct Behaviour
    {
        int delayMs = 0;
        int status = 200;
        bool closeMidBody = false;
        // When set, the body is this many bytes of padding instead of the real content.
        qint64 oversizeBytes = 0;
        // When set, the body instead of the real content.
        QByteArray body;
        // No Content-Length: the end of the body is where the connection closes.
        bool noLength = false;
        // The body one byte per this many milliseconds, after the headers at once.
        int dripMs = 0;
        // A chain of this many redirects (302, empty body, connection closed) through
        // /r/1, /r/2, … before the path's own answer.
        int redirects = 0;
    };

    // Behaviour for one path, or for every path without one of its own when path is "*".
    void setBehaviour(const QString &path, const Behaviour &behaviour);
    void clear();

    // What a request for a path gets: the next hop of its redirect chain when redirectTo is
    // set, else the answer of path, given with behaviour.
    struct Plan
    {
        QByteArray redirectTo;
        QString path;
        Behaviour behaviour;
    };
    Plan plan(const QString &requested) const;

    // Sends the answer as behaviour says, in place of or after the path's own.
    static void deliver(QTcpSocket *socket, LoopbackHttpServer::Answer answer,
                        const Behaviour &behaviour);

private:
    Behaviour behaviourFor(const QString &path) const;
    static void send(QTcpSocket *socket, const LoopbackHttpServer::Answer &answer,
                     const Behaviour &behaviour);

    QHash<QString, Behaviour> m_behaviours;
};

} // namespace eventtimer
