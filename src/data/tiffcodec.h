#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

namespace eventtimer {

// Icons are kept as TIFF data. Writing and reading the one layout this program writes
// (baseline, uncompressed, 8-bit RGBA) is done here directly: Qt's TIFF plugin costs about
// ten milliseconds to load, which a start from the cache should not pay.
class TiffCodec
{
public:
    // Baseline little-endian TIFF: one strip of uncompressed RGBA, unassociated alpha.
    static QByteArray encode(const QImage &image);

    // Decodes TIFF data of the kind encode() writes (several strips and associated alpha are
    // accepted too). Anything else — another layout, another format, damaged data — goes to
    // Qt's image readers.
    static std::optional<QImage> decode(const QByteArray &data);

    // The direct path alone: absent when the data is not of the layout it reads.
    static std::optional<QImage> decodeBaseline(const QByteArray &data);

    // Larger images are refused rather than allocated.
    static constexpr qint64 maxPixels = 16 * 1024 * 1024;
};

} // namespace eventtimer
