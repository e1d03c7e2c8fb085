#include "app/singleinstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

QString runtimeFolder()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    return folder;
}

} // namespace

SingleInstance::SingleInstance(const QString &name, QObject *parent)
    : QObject(parent)
    , m_socketPath(runtimeFolder() + u'/' + name + u".socket"_s)
    , m_lock(runtimeFolder() + u'/' + name + u".lock"_s)
{
    // A lock is stale only when its program is gone, never by its age.
    m_lock.setStaleLockTime(0);
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::claim()
{
    if (!m_lock.tryLock(0))
        return false;
    // A socket left by a program that crashed would refuse to be listened on.
    QLocalServer::removeServer(m_socketPath);
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            Q_EMIT activationRequested();
        }
    });
    m_server->listen(m_socketPath);
    return true;
}

bool SingleInstance::activateFirst()
{
    // The first program may be starting still: it listens a moment after it locks.
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 3000) {
        QLocalSocket socket;
        socket.connectToServer(m_socketPath);
        if (socket.waitForConnected(500)) {
            socket.write("show\n");
            socket.waitForBytesWritten(500);
            socket.disconnectFromServer();
            return true;
        }
        QThread::msleep(100);
    }
    return false;
}

} // namespace eventtimer
