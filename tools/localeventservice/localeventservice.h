#pragma once

#include "localeventservice/faultinjection.h"
#include "localeventservice/loopbackhttpserver.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QUrl>

namespace eventtimer {

// A small event service for the demo and the tests: serves an event document at
// /api/events/sequence and the files of a folder (icons) under their paths, over plain HTTP on
// loopback, or over HTTPS with a certificate it is given. "{service}" in the document stands for
// the service's own address. It counts requests per path and can be told to misbehave for a path
// (FaultInjection says how).
class LocalEventService
{
public:
    static constexpr QStringView documentPath = u"/api/events/sequence";
    // Replaced in the served document by the service's own base address, so that a document
    // can point its icons at the service: "{service}/icons/a.png".
    static constexpr QByteArrayView serviceToken = "{service}";

    using Behaviour = FaultInjection::Behaviour;

    LocalEventService();

    // Serves HTTPS with this certificate from now on; call before listen().
    void useTls(const QSslCertificate &certificate, const QSslKey &key);
    // Listens on 127.0.0.1; port 0 picks a free one.
    bool listen(quint16 port = 0);
    quint16 port() const;
    QUrl baseUrl() const;

    void setDocument(const QByteArray &bytes);
    void setDocumentFile(const QString &path);
    void setFilesFolder(const QString &folder);

    // Behaviour for one path, or for every path without one of its own when path is "*".
    void setBehaviour(const QString &path, const Behaviour &behaviour);
    void clearBehaviours();

    int requestCount(const QString &path) const;
    int totalRequests() const;

private:
    void answer(QTcpSocket *socket, const QString &path);
    // The path's own answer: the document, a file of the folder, or 404.
    LoopbackHttpServer::Answer route(const QString &path) const;

    LoopbackHttpServer m_server;
    FaultInjection m_faults;
    QByteArray m_document;
    QString m_documentFile;
    QString m_filesFolder;
    QHash<QString, int> m_counts;
};

} // namespace eventtimer
