#pragma once

#include "data/daydata.h"
#include "data/eventdatasource.h"
#include "data/iconcache.h"
#include "data/urlloader.h"
#include "model/result.h"

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <QUrl>

namespace eventtimer::testing {

// The loader's, the icon cache's and the data source's asynchronous calls, waited for in a
// local event loop.
UrlLoader::Results readAllNow(UrlLoader &loader, const QList<QUrl> &urls, int concurrency);
Result<QByteArray> readNow(UrlLoader &loader, const QUrl &url);
IconCache::Fetched fetchMissingNow(IconCache &cache, const QStringList &asked, UrlLoader &loader,
                                   int concurrency);
DayData loadDayNow(EventDataSource &source);

} // namespace eventtimer::testing
