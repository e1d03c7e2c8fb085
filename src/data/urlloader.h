#pragma once

#include "model/result.h"

#include <QByteArray>
#include <QList>
#include <QUrl>

#include <chrono>
#include <memory>
#include <vector>

class QNetworkAccessManager;

namespace eventtimer {

// Reads whole bodies of URLs synchronously (a local event loop waits for the reply). Only
// https is accepted, and plain http to a loopback host. Every read is bounded in time and
// size, TLS certificates are verified, and any reply error — an HTTP error status, a
// redirect to a refused address, a time-out, a body over the cap — is a failed read.
class UrlLoader final
{
public:
    struct Limits
    {
        std::chrono::milliseconds timeout{30000};
        qint64 maxBodyBytes = 32 * 1024 * 1024;
    };

    UrlLoader();
    explicit UrlLoader(Limits limits);
    ~UrlLoader();

    Result<QByteArray> read(const QUrl &url);
    // Reads several URLs at once, at most `concurrency` at a time, each body at most
    // maxBodyBytes (the loader's own limit when that is 0); results in the order given. Over
    // HTTP/1.1 one network manager keeps at most six connections to a host, so reads are
    // spread over as many managers as the concurrency needs.
    QList<Result<QByteArray>> readAll(const QList<QUrl> &urls, int concurrency,
                                      qint64 maxBodyBytes = 0);

    // Whether the loader will talk to this address at all.
    static Result<void> checkAddress(const QUrl &url);

private:
    static constexpr int connectionsPerManager = 6;

    // Made on first use: a start from the cache never pays for the network stack.
    QNetworkAccessManager &network(size_t index);

    Limits m_limits;
    std::vector<std::unique_ptr<QNetworkAccessManager>> m_networks;
};

} // namespace eventtimer
