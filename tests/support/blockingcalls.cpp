#include "blockingcalls.h"

#include <QEventLoop>

#include <optional>
#include <utility>

namespace eventtimer::testing {

namespace {

// start(done) begins the call, which hands its answer to done, at once or from the event loop.
template <typename Answer, typename Start> Answer waitFor(Start start)
{
    QEventLoop loop;
    std::optional<Answer> answer;
    start([&](Answer value) {
        answer = std::move(value);
        loop.quit();
    });
    if (!answer)
        loop.exec();
    return std::move(*answer);
}

} // namespace

UrlLoader::Results readAllNow(UrlLoader &loader, const QList<QUrl> &urls, int concurrency)
{
    return waitFor<UrlLoader::Results>(
        [&](auto done) { loader.readAll(urls, concurrency, 0, std::move(done)); });
}

Result<QByteArray> readNow(UrlLoader &loader, const QUrl &url)
{
    return waitFor<Result<QByteArray>>([&](auto done) { loader.read(url, std::move(done)); });
}

IconCache::Fetched fetchMissingNow(IconCache &cache, const QStringList &asked, UrlLoader &loader,
                                   int concurrency)
{
    return waitFor<IconCache::Fetched>(
        [&](auto done) { cache.fetchMissing(asked, loader, concurrency, std::move(done)); });
}

DayData loadDayNow(EventDataSource &source)
{
    QMetaObject::Connection connection;
    DayData day = waitFor<DayData>([&](auto done) {
        connection =
            QObject::connect(&source, &EventDataSource::finished, &source, std::move(done));
        source.load();
    });
    QObject::disconnect(connection);
    return day;
}

} // namespace eventtimer::testing
