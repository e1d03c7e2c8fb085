#pragma once

#include "result.h"

#include <QByteArray>
#include <QUrl>

namespace eventtimer {

// Fetches the bytes behind an image URL, synchronously, or says why it could not.
class ImageFetcher
{
public:
    virtual ~ImageFetcher() = default;

    virtual Result<QByteArray> fetch(const QUrl &url) = 0;
};

} // namespace eventtimer
