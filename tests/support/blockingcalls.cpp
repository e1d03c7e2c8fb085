#include "blockingcalls.h"

#include "waitfor.h"

namespace eventtimer::testing {

UrlLoader::Results readAllNow(UrlLoader &loader, const QList<QUrl> &urls, int concurrency,
                              qint64 maxBodyBytes)
{
    return waitFor<UrlLoader::Results>(
        [&](auto done) { loader.readAll(urls, concurrency, maxBodyBytes, std::move(done)); });
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

DayData loadDayNow(EventDataSource &source, bool download)
{
    QMetaObject::Connection connection;
    DayData day = waitFor<DayData>([&](auto done) {
        connection =
            QObject::connect(&source, &EventDataSource::finished, &source, std::move(done));
        source.load(download);
    });
    QObject::disconnect(connection);
    return day;
}

} // namespace eventtimer::testing
