#include "data/urlloader.h"

#include <QEventLoop>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

bool isLoopbackHost(const QString &host)
{
    if (host.compare(u"localhost"_s, Qt::CaseInsensitive) == 0)
        return true;
    const QHostAddress address(host);
    return !address.isNull() && address.isLoopback();
}

QString bodyTooLarge(const UrlLoader::Limits &limits)
{
    const qint64 mib = limits.maxBodyBytes / (1024 * 1024);
    return u"body larger than "_s + (mib > 0 && mib * 1024 * 1024 == limits.maxBodyBytes
                                         ? QString::number(mib) + u" MiB"_s
                                         : QString::number(limits.maxBodyBytes) + u" bytes"_s);
}

// One reply in flight: collects its body, enforces the limits, and settles once.
class Transfer
{
public:
    Transfer(QNetworkAccessManager &network, const QUrl &url, const UrlLoader::Limits &limits,
             QObject *context)
    {
        if (Result<void> allowed = UrlLoader::checkAddress(url); !allowed) {
            m_result = Error{allowed.error()};
            m_done = true;
            return;
        }
        QNetworkRequest request(url);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::UserVerifiedRedirectPolicy);
        request.setTransferTimeout(static_cast<int>(limits.timeout.count()));
        m_reply.reset(network.get(request));
        QNetworkReply *reply = m_reply.get();

        QObject::connect(reply, &QNetworkReply::redirected, context, [this, reply](const QUrl &to) {
            if (Result<void> allowed = UrlLoader::checkAddress(to); !allowed)
                fail(u"redirected to a refused address: "_s + allowed.error());
            else
                Q_EMIT reply->redirectAllowed();
        });
        QObject::connect(reply, &QNetworkReply::metaDataChanged, context, [this, reply, limits] {
            const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
            if (length.isValid() && length.toLongLong() > limits.maxBodyBytes)
                fail(bodyTooLarge(limits));
        });
        QObject::connect(reply, &QNetworkReply::readyRead, context, [this, reply, limits] {
            m_body += reply->readAll();
            if (m_body.size() > limits.maxBodyBytes)
                fail(bodyTooLarge(limits));
        });
        QObject::connect(reply, &QNetworkReply::finished, context, [this, reply] {
            if (m_done)
                return;
            m_done = true;
            if (reply->error() != QNetworkReply::NoError) {
                m_result = Error{reply->errorString()};
                return;
            }
            m_body += reply->readAll();
            m_result = std::move(m_body);
        });
        // The transfer time-out only notices silence; this bounds a server that trickles.
        m_deadline.setSingleShot(true);
        m_deadline.setInterval(limits.timeout);
        QObject::connect(&m_deadline, &QTimer::timeout, context,
                         [this] { fail(u"no complete answer within the time-out"_s); });
        m_deadline.start();
    }

    bool done() const { return m_done; }
    const Result<QByteArray> &result() const { return m_result; }

private:
    void fail(const QString &why)
    {
        if (m_done)
            return;
        m_done = true;
        m_result = Error{why};
        if (m_reply)
            m_reply->abort();
    }

    struct LaterDeleter
    {
        void operator()(QNetworkReply *reply) const { reply->deleteLater(); }
    };

    std::unique_ptr<QNetworkReply, LaterDeleter> m_reply;
    QTimer m_deadline;
    QByteArray m_body;
    Result<QByteArray> m_result = Error{u"not finished"_s};
    bool m_done = false;
};

} // namespace

UrlLoader::UrlLoader()
    : UrlLoader(Limits{})
{}

UrlLoader::UrlLoader(Limits limits)
    : m_limits(limits)
{}

UrlLoader::~UrlLoader() = default;

QNetworkAccessManager &UrlLoader::network(size_t index)
{
    while (m_networks.size() <= index)
        m_networks.push_back(std::make_unique<QNetworkAccessManager>());
    return *m_networks[index];
}

Result<void> UrlLoader::checkAddress(const QUrl &url)
{
    if (!url.isValid())
        return Error{u"not a valid URL: "_s + url.toString()};
    const QString scheme = url.scheme().toLower();
    if (scheme == u"https"_s)
        return {};
    if (scheme == u"http"_s && isLoopbackHost(url.host()))
        return {};
    return Error{u"only https addresses are used (plain http only on this machine): "_s +
                 url.toString()};
}

Result<QByteArray> UrlLoader::read(const QUrl &url)
{
    return readAll({url}, 1).first();
}

QList<Result<QByteArray>> UrlLoader::readAll(const QList<QUrl> &urls, int concurrency,
                                             qint64 maxBodyBytes)
{
    Limits limits = m_limits;
    if (maxBodyBytes > 0)
        limits.maxBodyBytes = std::min(maxBodyBytes, m_limits.maxBodyBytes);
    QObject context;
    QEventLoop loop;
    std::vector<std::unique_ptr<Transfer>> transfers;
    transfers.reserve(static_cast<size_t>(urls.size()));

    qsizetype started = 0;
    const auto running = [&] {
        qsizetype count = 0;
        for (const auto &transfer : transfers)
            count += transfer->done() ? 0 : 1;
        return count;
    };
    const int slots = std::max(concurrency, 1);
    const auto startMore = [&] {
        while (started < urls.size() && running() < slots) {
            const auto manager = static_cast<size_t>(started % slots / connectionsPerManager);
            transfers.push_back(
                std::make_unique<Transfer>(network(manager), urls.at(started), limits, &context));
            ++started;
        }
    };
    startMore();
    while (started < urls.size() || running() > 0) {
        loop.processEvents(QEventLoop::WaitForMoreEvents);
        startMore();
    }

    QList<Result<QByteArray>> results;
    results.reserve(urls.size());
    for (const auto &transfer : transfers)
        results.append(transfer->result());
    return results;
}

} // namespace eventtimer
