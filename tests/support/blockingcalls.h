#pragma once

#include "data/iconcache.h"
#include "data/urlloader.h"
#include "model/result.h"

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <QUrl>

namespace eventtimer::testing {

// The loader's and the icon cache's asynchronous calls, waited for in a local event loop.
UrlLoader::Results readAllNow(UrlLoader &loader, const QList<QUrl> &urls, int concurrency,
                              qint64 maxBodyBytes = 0);
Result<QByteArray> readNow(UrlLoader &loader, const QUrl &url);
IconCache::Fetched fetchMissingNow(IconCache &cache, const QStringList &asked, UrlLoader &loader,
                                   int concurrency);

} // namespace eventtimer::testing
