#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <memory>

namespace eventtimer {

// An event's icon: the image as the service sent it, decoded the first time its pixels are
// wanted. A timetable shows few of its icons at first, and a start should not wait for the
// rest. Copies share one decoding.
class Icon
{
public:
    // No icon is decoded larger than this on either side: a bigger picture is scaled down
    // while it is read, so that what the network sends cannot make a huge image.
    static constexpr int maxSide = 512;

    // An image already decoded.
    explicit Icon(QImage image);

    // An image in encoded bytes (PNG, JPEG, …) whose header says it can be read, with the size it
    // will be decoded at; absent when it cannot. Nothing else of it is decoded yet.
    static std::optional<Icon> fromBytes(QByteArray bytes);

    QSize size() const { return m_shared->size; }
    // The pixels, decoded on the first call; a null image when the data turns out broken.
    const QImage &image() const;
    bool isDecoded() const { return m_shared->image.has_value(); }

    // Encoded bytes decoded now, at most maxSide on either side; a null image when they are no
    // image.
    static QImage decode(const QByteArray &bytes);

private:
    struct Shared
    {
        QByteArray bytes;
        QSize size;
        std::optional<QImage> image;
    };

    explicit Icon(std::shared_ptr<Shared> shared)
        : m_shared(std::move(shared))
    {}

    std::shared_ptr<Shared> m_shared;
};

} // namespace eventtimer
