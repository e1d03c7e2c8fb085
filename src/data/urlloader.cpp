#include "data/urlloader.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

// Over HTTP/1.1 one network manager keeps at most six connections to a host, so reads are
// spread over as many managers as the concurrency needs.
constexpr int connectionsPerManager = 6;

bool isLoopbackHost(const QString &host)
{
    if (host.compare(u"localhost"_s, Qt::CaseInsensitive) == 0)
        return true;
    const QHostAddress address(host);
    return !address.isNull() && address.isLoopback();
}

QString sizeText(qint64 bytes)
{
    const qint64 mib = bytes / (1024 * 1024);
    if (mib > 0 && mib * 1024 * 1024 == bytes)
        return QString::number(mib) + u" MiB"_s;
    return QString::number(bytes) + u" bytes"_s;
}

QString timeoutText(std::chrono::milliseconds timeout)
{
    return u"timed out after "_s + QString::number(timeout.count() / 1000.0) + u" s"_s;
}

// One URL followed through its redirects: collects the body, enforces the cap, settles once.
class Transfer
{
public:
    using Done = std::function<void(Result<QByteArray>)>;

    Transfer(QNetworkAccessManager &network, qint64 maxBodyBytes, std::chrono::milliseconds timeout,
             Done done)
        : m_network(network)
        , m_maxBodyBytes(maxBodyBytes)
        , m_timeout(timeout)
        , m_done(std::move(done))
    {}
    ~Transfer() { drop(); }

    bool finished() const { return m_finished; }

    void start(const QUrl &url)
    {
        if (Result<void> allowed = UrlLoader::checkAddress(url); !allowed) {
            fail(allowed.error());
            return;
        }
        m_url = url;
        QNetworkRequest request(url);
        // Redirects are followed here, each hop a request of its own (see finish()).
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::ManualRedirectPolicy);
        request.setTransferTimeout(static_cast<int>(m_timeout.count()));
        drop();
        m_reply = m_network.get(request);
        QNetworkReply *reply = m_reply;
        reply->setReadBufferSize(256 * 1024);
        m_body.clear();
        QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, [this, reply] {
            const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
            if (length.isValid() && length.toLongLong() > m_maxBodyBytes)
                fail(u"body larger than "_s + sizeText(m_maxBodyBytes));
        });
        QObject::connect(reply, &QNetworkReply::readyRead, reply, [this, reply] {
            m_body += reply->readAll();
            if (m_body.size() > m_maxBodyBytes)
                fail(u"body larger than "_s + sizeText(m_maxBodyBytes));
        });
        QObject::connect(reply, &QNetworkReply::sslErrors, reply,
                         [this] { m_certificateRejected = true; });
        QObject::connect(reply, &QNetworkReply::finished, reply, [this, reply] { finish(reply); });
    }

    // Ends it with a reason, at once: the reply is aborted and what it brought is freed.
    void fail(const QString &reason)
    {
        if (m_finished)
            return;
        m_finished = true;
        drop();
        m_body = QByteArray();
        m_done(Error{reason});
    }

private:
    void finish(QNetworkReply *reply)
    {
        if (m_finished || reply != m_reply)
            return;
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        // Relative or not, as the service wrote it.
        const QUrl location = QUrl::fromEncoded(reply->rawHeader("Location"), QUrl::StrictMode);
        if (status >= 300 && status < 400 && location.isValid()) {
            if (++m_hops > UrlLoader::maxRedirects) {
                fail(u"more than "_s + QString::number(UrlLoader::maxRedirects) + u" redirects"_s);
                return;
            }
            const QUrl next = m_url.resolved(location);
            if (Result<void> allowed = UrlLoader::checkAddress(next); !allowed) {
                fail(u"redirected to "_s + next.toString() + u", which is refused: "_s +
                     allowed.error());
                return;
            }
            start(next);
            return;
        }
        if (reply->error() != QNetworkReply::NoError) {
            fail(reasonOf(reply, status));
            return;
        }
        // Qt reports no error for statuses that carry no document either (1xx, 3xx).
        if (status < 200 || status > 299) {
            fail(u"HTTP "_s + QString::number(status));
            return;
        }
        m_body += reply->readAll();
        if (m_body.size() > m_maxBodyBytes) {
            fail(u"body larger than "_s + sizeText(m_maxBodyBytes));
            return;
        }
        m_finished = true;
        drop();
        m_done(std::move(m_body));
    }

    QString reasonOf(QNetworkReply *reply, int status) const
    {
        switch (reply->error()) {
        case QNetworkReply::ConnectionRefusedError:
            return u"connection refused"_s;
        case QNetworkReply::HostNotFoundError:
            return u"host not found"_s;
        case QNetworkReply::RemoteHostClosedError:
            return u"the service closed the connection before the whole answer"_s;
        case QNetworkReply::TimeoutError:
        case QNetworkReply::OperationCanceledError:
            return timeoutText(m_timeout);
        case QNetworkReply::SslHandshakeFailedError:
            return m_certificateRejected ? u"certificate not trusted"_s : u"TLS handshake failed"_s;
        case QNetworkReply::NetworkSessionFailedError:
        case QNetworkReply::UnknownNetworkError:
            return u"no network"_s;
        default:
            if (status > 0)
                return u"HTTP "_s + QString::number(status);
            return reply->errorString();
        }
    }

    void drop()
    {
        if (!m_reply)
            return;
        QNetworkReply *reply = m_reply;
        m_reply = nullptr;
        reply->disconnect();
        reply->abort();
        reply->deleteLater();
    }

    QNetworkAccessManager &m_network;
    qint64 m_maxBodyBytes;
    std::chrono::milliseconds m_timeout;
    Done m_done;
    QUrl m_url;
    QPointer<QNetworkReply> m_reply;
    QByteArray m_body;
    int m_hops = 0;
    bool m_certificateRejected = false;
    bool m_finished = false;
};

} // namespace

// The reads of one readAll: a few at a time, under one deadline for all of them.
class UrlLoader::Batch
{
public:
    Batch(UrlLoader &loader, const QList<QUrl> &urls, int concurrency, qint64 maxBodyBytes,
          std::chrono::milliseconds timeout, Done done, Progress progress)
        : m_loader(loader)
        , m_urls(urls)
        , m_results(urls.size(), Error{u"not read"_s})
        , m_slots(std::max(concurrency, 1))
        , m_maxBodyBytes(maxBodyBytes)
        , m_done(std::move(done))
        , m_progress(std::move(progress))
    {
        m_deadline.setSingleShot(true);
        // A coarse timer may end the batch up to 5 % early, before the time it names.
        m_deadline.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_deadline, &QTimer::timeout, &m_deadline, [this, timeout] {
            // Nothing more starts; what runs ends now, and what waited ends unread.
            const qsizetype unstarted = m_started;
            m_started = m_urls.size();
            for (const auto &transfer : m_transfers)
                transfer->fail(timeoutText(timeout));
            for (qsizetype index = unstarted; index < m_urls.size(); ++index)
                settle(index, Error{timeoutText(timeout)});
        });
        m_deadline.start(timeout);
        startMore();
    }

    bool isDone() const { return m_finished == m_urls.size(); }

private:
    void startMore()
    {
        while (m_started < m_urls.size() && m_running < m_slots) {
            const qsizetype index = m_started++;
            ++m_running;
            const auto manager = static_cast<size_t>(index % m_slots / connectionsPerManager);
            auto transfer = std::make_unique<Transfer>(m_loader.network(manager), m_maxBodyBytes,
                                                       m_loader.m_limits.timeout,
                                                       [this, index](Result<QByteArray> result) {
                                                           --m_running;
                                                           settle(index, std::move(result));
                                                           startMore();
                                                       });
            Transfer *started = transfer.get();
            m_transfers.push_back(std::move(transfer));
            started->start(m_urls.at(index));
        }
    }

    void settle(qsizetype index, Result<QByteArray> result)
    {
        m_results[index] = std::move(result);
        ++m_finished;
        if (m_progress)
            m_progress(static_cast<int>(m_finished), static_cast<int>(m_urls.size()));
        if (isDone()) {
            m_deadline.stop();
            // Always from the event loop, never from inside readAll().
            QTimer::singleShot(0, &m_deadline, [this] {
                Done done = std::move(m_done);
                Results results = std::move(m_results);
                m_loader.forget(this);
                done(std::move(results));
            });
        }
    }

    UrlLoader &m_loader;
    QList<QUrl> m_urls;
    Results m_results;
    int m_slots;
    qint64 m_maxBodyBytes;
    Done m_done;
    Progress m_progress;
    QTimer m_deadline;
    std::vector<std::unique_ptr<Transfer>> m_transfers;
    qsizetype m_started = 0;
    qsizetype m_finished = 0;
    int m_running = 0;
};

UrlLoader::UrlLoader()
    : UrlLoader(Limits{})
{}

UrlLoader::UrlLoader(Limits limits)
    : m_limits(limits)
{}

UrlLoader::~UrlLoader()
{
    cancel();
}

QNetworkAccessManager &UrlLoader::network(size_t index)
{
    while (m_networks.size() <= index)
        m_networks.push_back(std::make_unique<QNetworkAccessManager>());
    return *m_networks[index];
}

Result<void> UrlLoader::checkAddress(const QUrl &url)
{
    if (!url.isValid() || url.host().isEmpty())
        return Error{u"not a valid address"_s};
    const QString scheme = url.scheme().toLower();
    if (scheme == u"https"_s)
        return {};
    if (scheme == u"http"_s) {
        if (isLoopbackHost(url.host()))
            return {};
        return Error{u"plain http is only accepted to this machine"_s};
    }
    return Error{u"only https is accepted"_s};
}

void UrlLoader::readAll(const QList<QUrl> &urls, int concurrency, qint64 maxBodyBytes, Done done,
                        Progress progress, std::chrono::milliseconds timeout)
{
    const qint64 cap =
        maxBodyBytes > 0 ? std::min(maxBodyBytes, m_limits.maxBodyBytes) : m_limits.maxBodyBytes;
    const std::chrono::milliseconds time =
        timeout.count() > 0 ? std::min(timeout, m_limits.timeout) : m_limits.timeout;
    m_batches.push_back(std::make_unique<Batch>(*this, urls, concurrency, cap, time,
                                                std::move(done), std::move(progress)));
}

void UrlLoader::read(const QUrl &url, std::function<void(Result<QByteArray>)> done)
{
    readAll({url}, 1, 0,
            [done = std::move(done)](Results results) { done(std::move(results.first())); });
}

void UrlLoader::cancel()
{
    m_batches.clear();
}

void UrlLoader::forget(Batch *batch)
{
    std::erase_if(m_batches, [batch](const auto &owned) { return owned.get() == batch; });
}

} // namespace eventtimer
