#pragma once

#include "model/result.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

class QNetworkAccessManager;

namespace eventtimer {

// Reads whole bodies of URLs, several at a time, without blocking the event loop. Only https is
// accepted, and plain http to this machine. Redirects are followed here, at most five hops,
// each checked like the first read. A read succeeds with a 2xx status and its whole body; every
// other outcome (an error status, a refused address, a certificate not trusted, a time-out, a
// body over the cap) fails, with the reason in plain words. A body is dropped the moment it
// passes its cap, so memory stays bounded by the reads in flight times their cap.
class UrlLoader final : public QObject
{
    Q_OBJECT

public:
    struct Limits
    {
        // For each read, and for a whole batch of reads together.
        std::chrono::milliseconds timeout{30000};
        qint64 maxBodyBytes = 32 * 1024 * 1024;
    };
    static constexpr int maxRedirects = 5;

    using Results = QList<Result<QByteArray>>;
    using Done = std::function<void(Results)>;
    using Progress = std::function<void(int finished, int total)>;

    UrlLoader();
    explicit UrlLoader(Limits limits);
    ~UrlLoader() override;

    // Starts reading urls, at most `concurrency` at a time, each body at most maxBodyBytes (the
    // loader's own limit when that is 0). Calls back from the event loop, with the results in
    // the order given; what is not in when the batch's time is up (the loader's time-out, or
    // a shorter one given) has failed. Progress is called after each read that ends.
    void readAll(const QList<QUrl> &urls, int concurrency, qint64 maxBodyBytes, Done done,
                 Progress progress = {}, std::chrono::milliseconds timeout = {});
    void read(const QUrl &url, std::function<void(Result<QByteArray>)> done);

    // Ends every read in flight at once; their callbacks are not called.
    void cancel();

    // Whether the loader talks to this address at all; the reason does not repeat the address,
    // which whoever says it names once.
    static Result<void> checkAddress(const QUrl &url);

    const Limits &limits() const { return m_limits; }

private:
    class Batch;

    // Made on first use: a start from the cache never pays for the network stack.
    QNetworkAccessManager &network(size_t index);
    void forget(Batch *batch);

    Limits m_limits;
    std::vector<std::unique_ptr<QNetworkAccessManager>> m_networks;
    std::vector<std::unique_ptr<Batch>> m_batches;
};

} // namespace eventtimer
