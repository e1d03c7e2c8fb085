#include "data/tiffcodec.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

// A picture with every pixel different, including partly transparent ones.
QImage pattern(int width, int height, QImage::Format format)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(
                x, y, qRgba(x * 37 % 256, y * 91 % 256, (x + y) * 13 % 256, (x * 7 + y * 3) % 256));
    return image.convertToFormat(format);
}

QByteArray writtenByQt(const QImage &image)
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "tiff");
    writer.write(image);
    return data;
}

void comparePixels(const QImage &actual, const QImage &expected)
{
    QCOMPARE(actual.size(), expected.size());
    const QImage a = actual.convertToFormat(QImage::Format_RGBA8888);
    const QImage e = expected.convertToFormat(QImage::Format_RGBA8888);
    for (int y = 0; y < e.height(); ++y)
        QVERIFY2(std::memcmp(a.constScanLine(y), e.constScanLine(y), e.width() * 4) == 0,
                 qPrintable(u"row "_s + QString::number(y) + u" differs"_s));
}

} // namespace

class TestTiffCodec : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase()
    {
        // The cross-checks need Qt's own TIFF reader and writer (qt6-image-formats-plugins).
        QVERIFY(QImageReader::supportedImageFormats().contains("tiff"));
        QVERIFY(QImageWriter::supportedImageFormats().contains("tiff"));
    }

    void roundTrip_data()
    {
        QTest::addColumn<QImage>("image");
        QTest::newRow("1x1") << pattern(1, 1, QImage::Format_ARGB32);
        QTest::newRow("odd size with alpha") << pattern(37, 5, QImage::Format_ARGB32);
        QTest::newRow("opaque RGB32") << pattern(16, 16, QImage::Format_RGB32);
        QTest::newRow("grayscale") << pattern(9, 4, QImage::Format_Grayscale8);
        QTest::newRow("indexed") << pattern(8, 8, QImage::Format_Indexed8);
        QTest::newRow("premultiplied") << pattern(12, 3, QImage::Format_ARGB32_Premultiplied);
    }

    void roundTrip()
    {
        QFETCH(QImage, image);
        const QByteArray data = TiffCodec::encode(image);
        QVERIFY(data.startsWith("II*\0"_ba));
        const std::optional<QImage> decoded = TiffCodec::decodeBaseline(data);
        QVERIFY(decoded);
        comparePixels(*decoded, image);
    }

    void qtReadsWhatWeWrite()
    {
        // Qt's reader hands back premultiplied pixels, so compare premultiplied.
        const QImage image = pattern(23, 11, QImage::Format_ARGB32);
        QByteArray data = TiffCodec::encode(image);
        QBuffer buffer(&data);
        QImageReader reader(&buffer, "tiff");
        const QImage decoded = reader.read();
        QVERIFY2(!decoded.isNull(), qPrintable(reader.errorString()));
        comparePixels(decoded.convertToFormat(QImage::Format_ARGB32_Premultiplied),
                      image.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    }

    void weReadWhatQtWrites()
    {
        // Qt writes its own layout (several strips); whatever the direct path does not take, the
        // fallback reads, and the pixels are the same.
        const QImage image = pattern(40, 70, QImage::Format_ARGB32);
        const std::optional<QImage> decoded = TiffCodec::decode(writtenByQt(image));
        QVERIFY(decoded);
        comparePixels(*decoded, image);
    }

    void damagedData_data()
    {
        QTest::addColumn<QByteArray>("data");
        const QByteArray good = TiffCodec::encode(pattern(4, 4, QImage::Format_ARGB32));

        QTest::newRow("empty") << QByteArray();
        QTest::newRow("big-endian header") << QByteArray("MM\0*\0\0\0\x08", 8);
        QTest::newRow("PNG") << [] {
            QByteArray png;
            QBuffer buffer(&png);
            buffer.open(QIODevice::WriteOnly);
            pattern(2, 2, QImage::Format_ARGB32).save(&buffer, "PNG");
            return png;
        }();
        QTest::newRow("directory past the end") << QByteArray("II*\0\xff\xff\xff\x7f", 8);
        QByteArray huge = good;
        huge[8 + 2 + 8] = '\xff'; // width's low bytes: 65535+ pixels wide
        huge[8 + 2 + 9] = '\xff';
        huge[8 + 2 + 10] = '\xff';
        QTest::newRow("huge width") << huge;
        QByteArray compressed = good;
        compressed[8 + 2 + 3 * 12 + 8] = 5; // LZW
        QTest::newRow("compressed") << compressed;
    }

    void damagedData()
    {
        QFETCH(QByteArray, data);
        QVERIFY(!TiffCodec::decodeBaseline(data));
    }

    void everyTruncationIsRefused()
    {
        const QByteArray good = TiffCodec::encode(pattern(5, 3, QImage::Format_ARGB32));
        for (qsizetype length = 0; length < good.size(); ++length)
            QVERIFY2(!TiffCodec::decodeBaseline(good.left(length)),
                     qPrintable(u"decoded from "_s + QString::number(length) + u" bytes"_s));
    }
};

QTEST_GUILESS_MAIN(TestTiffCodec)
#include "tst_tiffcodec.moc"
