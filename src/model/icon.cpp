#include "model/icon.h"

#include <QBuffer>
#include <QImageReader>

namespace eventtimer {

Icon::Icon(QImage image)
    : m_shared(std::make_shared<Shared>(Shared{{}, image.size(), std::move(image)}))
{}

namespace {

// A PNG's size stands at a fixed place: the signature, then the IHDR chunk's length and type,
// then width and height as 32-bit big-endian numbers. Reading it there costs a start with many
// icons nothing; the pixels are Qt's to decode.
QSize pngSize(const QByteArray &bytes)
{
    static constexpr char header[] = "\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR";
    constexpr qsizetype headerLength = sizeof(header) - 1;
    if (bytes.size() < headerLength + 8 || !bytes.startsWith(QByteArrayView(header, headerLength)))
        return {};
    const auto number = [&](qsizetype at) {
        quint32 value = 0;
        for (qsizetype i = at; i < at + 4; ++i)
            value = (value << 8) | static_cast<quint8>(bytes.at(i));
        return value;
    };
    const quint32 width = number(headerLength);
    const quint32 height = number(headerLength + 4);
    if (width == 0 || height == 0 || width > 0x7fffffff || height > 0x7fffffff)
        return {};
    return QSize(static_cast<int>(width), static_cast<int>(height));
}

QSize bounded(QSize size)
{
    if (size.width() <= Icon::maxSide && size.height() <= Icon::maxSide)
        return size;
    return size.scaled(Icon::maxSide, Icon::maxSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

} // namespace

std::optional<Icon> Icon::fromBytes(QByteArray bytes)
{
    QSize size = pngSize(bytes);
    if (!size.isValid()) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QImageReader reader(&buffer);
        if (!reader.canRead())
            return std::nullopt;
        size = reader.size();
    }
    if (!size.isValid() || size.isEmpty())
        return std::nullopt;
    return Icon(std::make_shared<Shared>(Shared{std::move(bytes), bounded(size), std::nullopt}));
}

const QImage &Icon::image() const
{
    Shared &shared = *m_shared;
    if (!shared.image) {
        shared.image = decode(shared.bytes);
        shared.bytes.clear();
    }
    return *shared.image;
}

QImage Icon::decode(const QByteArray &bytes)
{
    QByteArray data = bytes;
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    // A PNG goes straight to Qt's own reader: asking every format plugin whether it can read
    // the bytes costs a start more than decoding its icons does.
    const bool png = pngSize(bytes).isValid();
    QImageReader reader(&buffer, png ? QByteArrayLiteral("png") : QByteArray());
    reader.setAutoDetectImageFormat(!png);
    const QSize size = reader.size();
    if (size.isValid() && size != bounded(size))
        reader.setScaledSize(bounded(size));
    return reader.read();
}

} // namespace eventtimer
