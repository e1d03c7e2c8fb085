#include "localeventservice/localeventservice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

QByteArray contentType(const QString &path)
{
    if (path.endsWith(u".png"_s))
        return "image/png";
    if (path.endsWith(u".json"_s) || path == LocalEventService::documentPath)
        return "application/json";
    return "application/octet-stream";
}

} // namespace

LocalEventService::LocalEventService()
    : m_server([this](QTcpSocket *socket, const QString &path) { answer(socket, path); })
{}

void LocalEventService::useTls(const QSslCertificate &certificate, const QSslKey &key)
{
    m_server.useTls(certificate, key);
}

bool LocalEventService::listen(quint16 port)
{
    return m_server.listen(port);
}

quint16 LocalEventService::port() const
{
    return m_server.port();
}

QUrl LocalEventService::baseUrl() const
{
    return m_server.baseUrl();
}

void LocalEventService::setDocument(const QByteArray &bytes)
{
    m_document = bytes;
    m_documentFile.clear();
}

void LocalEventService::setDocumentFile(const QString &path)
{
    m_documentFile = path;
}

void LocalEventService::setFilesFolder(const QString &folder)
{
    m_filesFolder = folder;
}

void LocalEventService::setBehaviour(const QString &path, const Behaviour &behaviour)
{
    m_faults.setBehaviour(path, behaviour);
}

void LocalEventService::clearBehaviours()
{
    m_faults.clear();
}

int LocalEventService::requestCount(const QString &path) const
{
    return m_counts.value(path);
}

int LocalEventService::totalRequests() const
{
    int total = 0;
    for (int count : m_counts)
        total += count;
    return total;
}

void LocalEventService::answer(QTcpSocket *socket, const QString &path)
{
    m_counts[path] += 1;
    const FaultInjection::Plan plan = m_faults.plan(path);
    if (!plan.redirectTo.isEmpty())
        LoopbackHttpServer::writeAnswer(socket, {302, "text/plain", {}}, plan.redirectTo);
    else
        FaultInjection::deliver(socket, route(plan.path), plan.behaviour);
}

LoopbackHttpServer::Answer LocalEventService::route(const QString &path) const
{
    LoopbackHttpServer::Answer answer{404, contentType(path), {}};
    if (path == documentPath) {
        answer.status = 200;
        answer.body = m_document;
        if (!m_documentFile.isEmpty()) {
            QFile file(m_documentFile);
            answer.status = file.open(QIODevice::ReadOnly) ? 200 : 404;
            answer.body = file.readAll();
        }
        // Documents name their icons relative to wherever the service happens to listen.
        answer.body.replace(serviceToken, baseUrl().toString().toUtf8());
    } else if (!m_filesFolder.isEmpty() && !path.contains(u".."_s)) {
        QFile file(QDir(m_filesFolder).filePath(path.mid(1)));
        if (QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly)) {
            answer.status = 200;
            answer.body = file.readAll();
        }
    }
    return answer;
}

} // namespace eventtimer
