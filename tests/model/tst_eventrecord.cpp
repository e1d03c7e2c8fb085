#include "model/event.h"
#include "model/eventrecord.h"
#include "model/iconcachekey.h"

#include <QJsonDocument>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

class TestEventRecord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void records_data()
    {
        QTest::addColumn<QByteArray>("record");
        QTest::addColumn<QString>("expected"); // wiki|chat link|section|colour

        QTest::newRow("text fields")
            << R"({"name": "W", "link": "Ember", "chatlink": "[&A=]", "section": "X"})"_ba
            << u"Ember|[&A=]|Harbour|default"_s;
        // Values of other types count as missing; an empty chat link is a chat link.
        QTest::newRow("other types")
            << R"({"name": "W", "link": 5, "chatlink": 7})"_ba << u"W|-|Harbour|default"_s;
        QTest::newRow("empty chat link")
            << R"({"name": "W", "chatlink": ""})"_ba << u"W||Harbour|default"_s;
        // Exact, in the shortest text that reads back the same: single precision, widened, so
        // 128 / 255 is not the double 0.50196078431372548.
        QTest::newRow("triple") << R"({"name": "W", "bg": [255, 128, 0]})"_ba
                                << u"W|-|Harbour|1 0.501960813999176 0 0.8"_s;
        QTest::newRow("first of nested triples")
            << R"({"name": "W", "bg": [[0, 51, 255], [40, 50, 60]]})"_ba
            << u"W|-|Harbour|0 0.20000000298023224 1 0.8"_s;
        for (const char *bad :
             {"[[[1, 2, 3]]]", "[1, 2]", R"("red")", R"([1, "2", 3])", "[1e300, 0, 0]"})
            QTest::addRow("bg %s", bad)
                << R"({"name": "W", "bg": )" + QByteArray(bad) + '}' << u"W|-|Harbour|default"_s;
    }

    void records()
    {
        QFETCH(QByteArray, record);
        QFETCH(QString, expected);
        const auto event = parseEvent(QJsonDocument::fromJson(record).object(), u"Harbour"_s);
        const EventColor color = event->backgroundColor;
        QStringList rgba;
        for (const double component : {color.red(), color.green(), color.blue(), color.alpha()})
            rgba.append(QString::number(component, 'g', QLocale::FloatingPointShortest));
        QCOMPARE(QStringList({event->wiki, event->chatLink.value_or(u"-"_s),
                              event->section.value_or(u"-"_s),
                              color.isDefault() ? u"default"_s : rgba.join(u' ')})
                     .join(u'|'),
                 expected);
    }

    void cacheKeys_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("key"); // empty: none

        QTest::newRow("usual") << u"https://icons.example.test/file/4F2A9C/517.png"_s
                               << u"4F2A9C_517"_s;
        QTest::newRow("consecutive dots and slashes give no empty piece")
            << u"https://h.test//x//X/1..png"_s << u"X_1"_s;
        QTest::newRow("a dot inside a combined character does not split")
            << u"https://h.test/a/B/1.png.\u0301x"_s << u"B_1"_s;
        QTest::newRow("a slash inside a combined character does not split")
            << u"https://h.test/x/A/\u0338B.png"_s << u"x_A/\u0338B"_s;
        QTest::newRow("one piece at dots") << u"https://h/x/y/zpng"_s << QString();
    }

    void cacheKeys()
    {
        QFETCH(QString, url);
        QFETCH(QString, key);
        QCOMPARE(iconCacheKey(url).value_or(QString()), key);
    }
};

QTEST_GUILESS_MAIN(TestEventRecord)
#include "tst_eventrecord.moc"
