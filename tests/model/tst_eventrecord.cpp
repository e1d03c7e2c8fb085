#include "model/event.h"
#include "model/eventrecord.h"
#include "model/iconlookup.h"

#include <QJsonDocument>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

// Notes what a record asks for, and answers with a picture.
class Lookup final : public IconLookup
{
public:
    std::optional<Icon> icon(const QString &url) override
    {
        asked.append(url);
        return Icon(QImage(2, 2, QImage::Format_ARGB32));
    }
    QStringList asked;
};

std::shared_ptr<Event> parse(const QByteArray &record, IconLookup *icons = nullptr)
{
    return parseEvent(QJsonDocument::fromJson(record).object(), u"Harbour"_s, icons);
}

} // namespace

class TestEventRecord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textFields()
    {
        Lookup icons;
        const auto event = parse(
            R"({"name": "Wyrm", "link": "Ember", "chatlink": "[&A=]", "icon": "u", "section": "X"})",
            &icons);
        QCOMPARE(event->wiki, u"Ember"_s);
        QCOMPARE(event->chatLink, std::optional<QString>(u"[&A=]"_s));
        QCOMPARE(event->section, std::optional<QString>(u"Harbour"_s));
        QCOMPARE(icons.asked, QStringList{u"u"_s});
        QVERIFY(event->icon);
        QVERIFY(!parse(R"({"name": "Wyrm", "icon": "u"})")->icon);

        // Values of other types count as missing; an empty chat link is a chat link.
        const auto other =
            parse(R"({"name": "Wyrm", "link": 5, "chatlink": 7, "icon": []})", &icons);
        QCOMPARE(other->wiki, u"Wyrm"_s);
        QVERIFY(!other->chatLink);
        QCOMPARE(icons.asked.size(), 1);
        QCOMPARE(parse(R"({"name": "Wyrm", "chatlink": ""})")->chatLink, std::optional(u""_s));
    }

    void colors_data()
    {
        QTest::addColumn<QByteArray>("background");
        QTest::addColumn<QList<double>>("rgb"); // empty: the default colour

        const auto unit = [](float component) {
            return static_cast<double>(component / 255.0f);
        };
        // 128 / 255 in single precision, widened: not the double 0.50196078431372548.
        QTest::newRow("triple") << "[255, 128, 0]"_ba
                                << QList<double>{1.0, 0.501960813999176025390625, 0.0};
        QTest::newRow("first of nested triples")
            << "[[10, 20, 30], [40, 50, 60]]"_ba << QList<double>{unit(10), unit(20), unit(30)};
        QTest::newRow("unwrapped once only") << "[[[1, 2, 3]]]"_ba << QList<double>();
        QTest::newRow("a pair whose first is no array") << "[1, 2]"_ba << QList<double>();
        QTest::newRow("a string") << R"("red")"_ba << QList<double>();
        QTest::newRow("a component that is no number") << R"([1, "2", 3])"_ba << QList<double>();
        QTest::newRow("beyond single precision") << "[1e300, 0, 0]"_ba << QList<double>();
    }

    void colors()
    {
        QFETCH(QByteArray, background);
        QFETCH(QList<double>, rgb);
        const EventColor color =
            parse(R"({"name": "W", "bg": )" + background + '}')->backgroundColor;
        QCOMPARE(color.isDefault(), rgb.isEmpty());
        // Exact: the single-precision arithmetic is part of the contract.
        if (!rgb.isEmpty())
            QCOMPARE(QList<double>({color.red(), color.green(), color.blue(), color.alpha()}),
                     rgb + QList<double>{0.8});
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
