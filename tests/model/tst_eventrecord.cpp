#include "model/event.h"
#include "model/eventrecord.h"
#include "model/iconlookup.h"

#include <QJsonDocument>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

// Notes what the record asks for and answers with a 2 × 2 picture.
class Lookup final : public IconLookup
{
public:
    std::optional<QImage> icon(const QString &url) override
    {
        asked.append(url);
        return QImage(2, 2, QImage::Format_ARGB32);
    }
    QStringList asked;
};

// A segment record and the event fields it gives.
struct Fields
{
    QByteArray record;
    QString wiki = u"Wyrm"_s;
    std::optional<QString> chatLink;
    QStringList iconsAsked;
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
    void textFields_data();
    void textFields();
    void colors_data();
    void colors();
    void cacheKeys_data();
    void cacheKeys();
};

void TestEventRecord::textFields_data()
{
    QTest::addColumn<Fields>("fields");
    QTest::newRow("all strings") << Fields{
        R"({"name": "Wyrm", "link": "Ember_Wyrm", "chatlink": "[&AbC=]", "icon": "u"})",
        u"Ember_Wyrm"_s,
        u"[&AbC=]"_s,
        {u"u"_s}};
    QTest::newRow("no link: the wiki is the name") << Fields{R"({"name": "Wyrm"})"};
    QTest::newRow("values of other types count as missing")
        << Fields{R"({"name": "Wyrm", "link": 5, "chatlink": 7, "icon": ["u"]})"};
    QTest::newRow("an empty chat link is kept")
        << Fields{R"({"name": "Wyrm", "chatlink": ""})", u"Wyrm"_s, u""_s};
    QTest::newRow("the record's own section key is not read")
        << Fields{R"({"name": "Wyrm", "section": "Elsewhere"})"};
}

void TestEventRecord::textFields()
{
    QFETCH(Fields, fields);
    Lookup icons;
    const auto event = parse(fields.record, &icons);
    QCOMPARE(event->name, u"Wyrm"_s);
    QCOMPARE(event->wiki, fields.wiki);
    QCOMPARE(event->chatLink, fields.chatLink);
    QCOMPARE(event->section, std::optional<QString>(u"Harbour"_s));
    QCOMPARE(icons.asked, fields.iconsAsked);
    QCOMPARE(event->icon.has_value(), !fields.iconsAsked.isEmpty());
    QVERIFY(!parse(fields.record)->icon);
}

void TestEventRecord::colors_data()
{
    QTest::addColumn<QByteArray>("background");
    QTest::addColumn<std::optional<QList<double>>>("rgb");

    using Rgb = std::optional<QList<double>>;
    const auto unit = [](float component) {
        return static_cast<double>(component / 255.0f);
    };
    // 128 / 255 in single precision, widened: not the double quotient 0.50196078431372548.
    QTest::newRow("triple") << "[255, 128, 0]"_ba << Rgb({1.0, 0.501960813999176025390625, 0.0});
    QTest::newRow("fractional") << "[25.5, 0, 255]"_ba << Rgb({unit(25.5f), 0.0, 1.0});
    QTest::newRow("first of nested triples")
        << "[[10, 20, 30], [40, 50, 60]]"_ba << Rgb({unit(10), unit(20), unit(30)});
    QTest::newRow("unwrapped once only") << "[[[1, 2, 3]]]"_ba << Rgb();
    QTest::newRow("a pair whose first is no array") << "[1, 2]"_ba << Rgb();
    QTest::newRow("a string") << R"("red")"_ba << Rgb();
    QTest::newRow("empty") << "[]"_ba << Rgb();
    QTest::newRow("a component that is no number") << R"([1, "2", 3])"_ba << Rgb();
    QTest::newRow("beyond single precision") << "[1e300, 0, 0]"_ba << Rgb();
}

void TestEventRecord::colors()
{
    QFETCH(QByteArray, background);
    QFETCH(std::optional<QList<double>>, rgb);

    const EventColor color =
        parse(R"({"name": "Wyrm", "bg": )" + background + '}')->backgroundColor;
    if (!rgb) {
        QCOMPARE(color, EventColor());
        QVERIFY(color.isDefault());
        return;
    }
    // Exact: the single-precision arithmetic is part of the contract.
    QVERIFY(!color.isDefault());
    QCOMPARE(QList<double>({color.red(), color.green(), color.blue(), color.alpha()}),
             *rgb + QList<double>{0.8});
}

void TestEventRecord::cacheKeys_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<std::optional<QString>>("key");

    using Key = std::optional<QString>;
    QTest::newRow("usual") << u"https://icons.example.test/file/4F2A9C/517.png"_s
                           << Key(u"4F2A9C_517"_s);
    QTest::newRow("consecutive dots and slashes give no empty piece")
        << u"https://h.test//x//X/1..png"_s << Key(u"X_1"_s);
    QTest::newRow("the text between the last two dots")
        << u"https://h.test/a/b.c/d.e/f.png"_s << Key(u"e_f"_s);
    QTest::newRow("a dot inside a combined character does not split")
        << u"https://h.test/a/B/1.png.\u0301x"_s << Key(u"B_1"_s);
    QTest::newRow("a slash inside a combined character does not split")
        << u"https://h.test/x/A/\u0338B.png"_s << Key(u"x_A/\u0338B"_s);
    QTest::newRow("one piece at dots") << u"https://h/x/y/zpng"_s << Key();
    QTest::newRow("one piece at slashes") << u"icon.png"_s << Key();
}

void TestEventRecord::cacheKeys()
{
    QFETCH(QString, url);
    QFETCH(std::optional<QString>, key);
    QCOMPARE(iconCacheKey(url), key);
}

QTEST_GUILESS_MAIN(TestEventRecord)
#include "tst_eventrecord.moc"
