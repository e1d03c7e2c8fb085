#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSslCertificate>
#include <QSslKey>
#include <QTcpServer>
#include <QUrl>

#include <memory>

namespace eventtimer {

// A small event service for the demo and the tests: serves an event document at
// /api/events/sequence and the files of a folder (icons) under their paths, over plain HTTP on
// loopback, or over HTTPS with a certificate it is given. "{service}" in the document stands for
// the service's own address. It counts requests per path and can be told to misbehave for a path
// as a broken or hostile service would: answer late, answer an error status, close the
// connection in the middle of the body, send a body larger than asked or one of its choosing,
// send it without a length or one byte at a time, or redirect through a chain first.
class EventService : public QObject
{
    Q_OBJECT

public:
    static constexpr QStringView documentPath = u"/api/events/sequence";
    // Replaced in the served document by the service's own base address, so that a document
    // can point its icons at the service: "{service}/icons/a.png".
    static constexpr QByteArrayView serviceToken = "{service}";

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

    explicit EventService(QObject *parent = nullptr);
    ~EventService() override;

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
    void onConnection();
    void respond(QTcpSocket *socket, const QString &path);
    void respondWith(QTcpSocket *socket, const QString &path, const Behaviour &behaviour);
    void send(QTcpSocket *socket, int status, const QByteArray &type, const QByteArray &body,
              const Behaviour &behaviour, const QByteArray &location = {});
    Behaviour behaviourFor(const QString &path) const;

    std::unique_ptr<QTcpServer> m_server;
    bool m_tls = false;
    QByteArray m_document;
    QString m_documentFile;
    QString m_filesFolder;
    QHash<QString, Behaviour> m_behaviours;
    QHash<QString, int> m_counts;
};

} // namespace eventtimer
