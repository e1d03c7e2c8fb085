#include "data/tiffcodec.h"

#include <QtEndian>

#include <cstring>
#include <vector>

namespace eventtimer {

namespace {

enum Tag : quint16
{
    ImageWidth = 256,
    ImageLength = 257,
    BitsPerSample = 258,
    Compression = 259,
    Photometric = 262,
    StripOffsets = 273,
    SamplesPerPixel = 277,
    RowsPerStrip = 278,
    StripByteCounts = 279,
    PlanarConfiguration = 284,
    ExtraSamples = 338,
};

enum Type : quint16
{
    Short = 3,
    Long = 4
};

constexpr quint16 associatedAlpha = 1;
constexpr quint16 unassociatedAlpha = 2;

void put16(QByteArray &out, quint16 value)
{
    char bytes[2];
    qToLittleEndian(value, bytes);
    out.append(bytes, 2);
}

void put32(QByteArray &out, quint32 value)
{
    char bytes[4];
    qToLittleEndian(value, bytes);
    out.append(bytes, 4);
}

void putEntry(QByteArray &out, quint16 tag, quint16 type, quint32 count, quint32 value)
{
    put16(out, tag);
    put16(out, type);
    put32(out, count);
    if (type == Short && count == 1) {
        put16(out, static_cast<quint16>(value)); // short values sit left-justified
        put16(out, 0);
    } else {
        put32(out, value);
    }
}

// Bounds-checked little-endian reads over the data.
class Reader
{
public:
    explicit Reader(const QByteArray &data)
        : m_data(data)
    {}

    bool has(quint64 offset, quint64 length) const
    {
        return offset <= static_cast<quint64>(m_data.size()) &&
               length <= static_cast<quint64>(m_data.size()) - offset;
    }
    quint16 u16(quint64 offset) const
    {
        return qFromLittleEndian<quint16>(m_data.constData() + offset);
    }
    quint32 u32(quint64 offset) const
    {
        return qFromLittleEndian<quint32>(m_data.constData() + offset);
    }
    const char *at(quint64 offset) const { return m_data.constData() + offset; }

private:
    const QByteArray &m_data;
};

struct Entry
{
    quint16 type = 0;
    quint32 count = 0;
    quint64 valueOffset = 0; // where the values are: inside the entry or elsewhere
};

// The values of an entry of SHORT or LONG type; empty when it does not fit the data.
std::vector<quint32> values(const Reader &reader, const Entry &entry)
{
    const quint64 size = entry.type == Short ? 2 : 4;
    if ((entry.type != Short && entry.type != Long) || entry.count == 0 || entry.count > 1u << 20 ||
        !reader.has(entry.valueOffset, size * entry.count))
        return {};
    std::vector<quint32> result(entry.count);
    for (quint32 i = 0; i < entry.count; ++i)
        result[i] = size == 2 ? reader.u16(entry.valueOffset + 2 * i)
                              : reader.u32(entry.valueOffset + 4 * i);
    return result;
}

} // namespace

QByteArray TiffCodec::encode(const QImage &image)
{
    if (image.isNull())
        return {};
    const QImage rgba = image.convertToFormat(QImage::Format_RGBA8888);
    const auto width = static_cast<quint32>(rgba.width());
    const auto height = static_cast<quint32>(rgba.height());
    const quint32 rowBytes = width * 4;

    constexpr quint16 entryCount = 11;
    constexpr quint32 ifdOffset = 8;
    constexpr quint32 bitsOffset = ifdOffset + 2 + entryCount * 12 + 4;
    constexpr quint32 pixelOffset = bitsOffset + 4 * 2;

    QByteArray out;
    out.reserve(static_cast<qsizetype>(pixelOffset + rowBytes * height));
    out.append("II", 2);
    put16(out, 42);
    put32(out, ifdOffset);

    put16(out, entryCount);
    putEntry(out, ImageWidth, Long, 1, width);
    putEntry(out, ImageLength, Long, 1, height);
    putEntry(out, BitsPerSample, Short, 4, bitsOffset);
    putEntry(out, Compression, Short, 1, 1);
    putEntry(out, Photometric, Short, 1, 2); // RGB
    putEntry(out, StripOffsets, Long, 1, pixelOffset);
    putEntry(out, SamplesPerPixel, Short, 1, 4);
    putEntry(out, RowsPerStrip, Long, 1, height);
    putEntry(out, StripByteCounts, Long, 1, rowBytes * height);
    putEntry(out, PlanarConfiguration, Short, 1, 1);
    putEntry(out, ExtraSamples, Short, 1, unassociatedAlpha);
    put32(out, 0); // no further image

    for (int i = 0; i < 4; ++i)
        put16(out, 8);
    for (int y = 0; y < rgba.height(); ++y)
        out.append(reinterpret_cast<const char *>(rgba.constScanLine(y)), rowBytes);
    return out;
}

std::optional<QImage> TiffCodec::decode(const QByteArray &data)
{
    if (std::optional<QImage> image = decodeBaseline(data))
        return image;
    QImage image = QImage::fromData(data);
    if (image.isNull())
        return std::nullopt;
    return image;
}

std::optional<QImage> TiffCodec::decodeBaseline(const QByteArray &data)
{
    const Reader reader(data);
    if (!reader.has(0, 8) || std::memcmp(data.constData(), "II*\0", 4) != 0)
        return std::nullopt;
    const quint64 ifd = reader.u32(4);
    if (!reader.has(ifd, 2))
        return std::nullopt;
    const quint16 count = reader.u16(ifd);
    if (!reader.has(ifd + 2, quint64{count} * 12))
        return std::nullopt;

    Entry entries[ExtraSamples + 1 - ImageWidth];
    for (quint16 i = 0; i < count; ++i) {
        const quint64 at = ifd + 2 + quint64{i} * 12;
        const quint16 tag = reader.u16(at);
        if (tag < ImageWidth || tag > ExtraSamples)
            continue;
        Entry entry{reader.u16(at + 2), reader.u32(at + 4), at + 8};
        const quint64 size = entry.type == Short ? 2 : 4;
        if (size * entry.count > 4)
            entry.valueOffset = reader.u32(at + 8);
        entries[tag - ImageWidth] = entry;
    }
    const auto single = [&](quint16 tag, quint32 missing) -> std::optional<quint32> {
        const Entry &entry = entries[tag - ImageWidth];
        if (entry.count == 0)
            return missing;
        const std::vector<quint32> list = values(reader, entry);
        if (list.size() != 1)
            return std::nullopt;
        return list.front();
    };

    const auto width = single(ImageWidth, 0);
    const auto height = single(ImageLength, 0);
    const auto compression = single(Compression, 1);
    const auto photometric = single(Photometric, 0);
    const auto samples = single(SamplesPerPixel, 1);
    const auto planar = single(PlanarConfiguration, 1);
    const auto extra = single(ExtraSamples, 0);
    const auto rowsPerStrip = single(RowsPerStrip, 0xffffffffu);
    if (!width || !height || !compression || !photometric || !samples || !planar || !extra ||
        !rowsPerStrip)
        return std::nullopt;
    if (*width == 0 || *height == 0 || quint64{*width} * *height > maxPixels || *compression != 1 ||
        *photometric != 2 || *samples != 4 || *planar != 1 ||
        (*extra != associatedAlpha && *extra != unassociatedAlpha) || *rowsPerStrip == 0)
        return std::nullopt;
    const std::vector<quint32> bits = values(reader, entries[BitsPerSample - ImageWidth]);
    if (bits != std::vector<quint32>{8, 8, 8, 8})
        return std::nullopt;

    const std::vector<quint32> offsets = values(reader, entries[StripOffsets - ImageWidth]);
    const std::vector<quint32> lengths = values(reader, entries[StripByteCounts - ImageWidth]);
    const quint64 rowBytes = quint64{*width} * 4;
    const quint64 strips = (quint64{*height} + *rowsPerStrip - 1) / *rowsPerStrip;
    if (offsets.size() != strips || lengths.size() != strips)
        return std::nullopt;

    QImage image(static_cast<int>(*width), static_cast<int>(*height),
                 *extra == associatedAlpha ? QImage::Format_RGBA8888_Premultiplied
                                           : QImage::Format_RGBA8888);
    if (image.isNull())
        return std::nullopt;
    quint32 row = 0;
    for (quint64 strip = 0; strip < strips; ++strip) {
        const quint32 rows = std::min<quint32>(*rowsPerStrip, *height - row);
        if (lengths[strip] < rowBytes * rows || !reader.has(offsets[strip], rowBytes * rows))
            return std::nullopt;
        for (quint32 r = 0; r < rows; ++r)
            std::memcpy(image.scanLine(static_cast<int>(row + r)),
                        reader.at(offsets[strip] + r * rowBytes), rowBytes);
        row += rows;
    }
    return image;
}

} // namespace eventtimer
