#include "ui/eventboxpainter.h"

#include <QTest>

using namespace eventtimer;

class TestEventBoxPainter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Light text goes on what a translucent fill makes dark over the window's colour.
    void textReadsOnEveryFill_data()
    {
        QTest::addColumn<QColor>("fill");
        QTest::addColumn<QColor>("background");
        QTest::addColumn<bool>("dark");
        const QColor light(0xf0, 0xf0, 0xf0);
        const QColor night(0x24, 0x24, 0x24);
        QTest::newRow("navy, light theme") << QColor(0, 0, 128) << light << true;
        QTest::newRow("yellow, dark theme") << QColor(255, 230, 0) << night << false;
        QTest::newRow("default grey, dark theme")
            << QColor::fromRgbF(0.6, 0.6, 0.6, 0.8) << night << false;
        QTest::newRow("faint sky, dark theme: the night shows through")
            << QColor::fromRgbF(0.7, 0.85, 1.0, 0.25) << night << true;
        QTest::newRow("faint navy, light theme")
            << QColor::fromRgbF(0, 0, 0.5, 0.25) << light << false;
    }

    void textReadsOnEveryFill()
    {
        QFETCH(QColor, fill);
        QFETCH(QColor, background);
        QFETCH(bool, dark);
        QCOMPARE(EventBoxPainter::isDark(fill, background), dark);
    }
};

QTEST_MAIN(TestEventBoxPainter)
#include "tst_eventboxpainter.moc"
