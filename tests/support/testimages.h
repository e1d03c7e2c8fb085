#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QSize>

namespace eventtimer::testing {

// The bytes of a PNG picture of one colour, as an icon server would send them.
inline QByteArray pngBytes(QColor color, QSize size = QSize(8, 8))
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color);
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return data;
}

} // namespace eventtimer::testing
