#include "model/wikipage.h"
#include "smallday.h"
#include "timetable/find.h"
#include "timetable/hourruler.h"

#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

namespace {

QList<EventBoxGeometry> smallDayBoxes()
{
    return TimetableLayout::build(SmallDay::sections(), QTimeZone::utc(), SmallDay::now(),
                                  [](const QString &) { return 17.0; })
        .eventBoxes;
}

} // namespace

class TestReadingAids : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The ruler reads the axis as the boxes' texts do: a box at minute m shows m + offset.
    void rulerMarksStandOverTheBoxesTimes_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("right");
        QTest::addColumn<qint64>("offset");
        QTest::addColumn<QStringList>("marks"); // "x label", a quarter without a label
        QTest::newRow("UTC, hours and quarters")
            << 12700.0 << 13200.0 << qint64(0)
            << QStringList{u"12750"_s, u"12900"_s, u"13050"_s, u"13200 22:00"_s};
        QTest::newRow("UTC+1: the box at 20:20 reads 21:20, under the ruler's 21:00 + 20")
            << 12000.0 << 12600.0 << qint64(60)
            << QStringList{u"12000 21:00"_s, u"12150"_s, u"12300"_s, u"12450"_s, u"12600 22:00"_s};
        QTest::newRow("UTC+5:30: hours at the half hour")
            << 0.0 << 400.0 << qint64(330) << QStringList{u"0"_s, u"150"_s, u"300 06:00"_s};
        QTest::newRow("past the day's end the hours go on")
            << 14390.0 << 14400.0 << qint64(0) << QStringList{u"14400 00:00"_s};
    }

    void rulerMarksStandOverTheBoxesTimes()
    {
        QFETCH(double, left);
        QFETCH(double, right);
        QFETCH(qint64, offset);
        QFETCH(QStringList, marks);
        QStringList got;
        for (const RulerMark &mark : rulerMarks(left, right, offset)) {
            QCOMPARE(mark.hour, !mark.label.isEmpty());
            got.append((QString::number(mark.x) + u' ' + mark.label).trimmed());
        }
        QCOMPARE(got, marks);
        QCOMPARE(pastVeil(1234.0, 80.0), QRectF(0, 0, 1234.0, 80.0));
    }

    void boxesTellTheirTimes_data()
    {
        QTest::addColumn<qint64>("length");
        QTest::addColumn<QString>("text");
        QTest::newRow("minutes") << qint64(15) << u"21:20\u201321:35, 15 min"_s;
        QTest::newRow("hours") << qint64(120) << u"21:20\u201323:20, 2 h"_s;
        QTest::newRow("past midnight") << qint64(190) << u"21:20\u201300:30, 3 h 10 min"_s;
    }

    void boxesTellTheirTimes()
    {
        QFETCH(qint64, length);
        QFETCH(QString, text);
        EventBoxGeometry box;
        box.item = std::make_shared<SequenceItem>(std::make_shared<Event>(), length, 0.0);
        box.startText = u"21:20"_s;
        QCOMPARE(box.timeSpanText(), text);
    }

    // Case and accents do not count; the walk goes by start and wraps at the ends.
    void findWalksTheMatchesFromTheMarker_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<double>("marker");
        QTest::addColumn<QStringList>("walk"); // from the first match on, one step past the end
        QTest::newRow("by name, from the marker, wrapping")
            << u"SIEGE"_s << 6000.0
            << QStringList{u"Siege 12:00"_s, u"Siege 00:00"_s, u"Siege 12:00"_s};
        QTest::newRow("by section too, top to bottom at one start")
            << u"R"_s << 5900.0
            << QStringList{u"Market 10:00"_s, u"Night 10:00"_s, u"Storm 10:30"_s,
                           u"Hunt 08:00"_s,   u"Tide 09:00"_s,  u"Market 10:00"_s};
        QTest::newRow("accents do not count")
            << u"H\u00e4rbour"_s << 0.0
            << QStringList{u"Tide 09:00"_s, u"Market 10:00"_s, u"Storm 10:30"_s, u"Tide 09:00"_s};
        QTest::newRow("nothing") << u"dragon"_s << 0.0 << QStringList();
        QTest::newRow("an empty query") << QString() << 0.0 << QStringList();
    }

    void findWalksTheMatchesFromTheMarker()
    {
        QFETCH(QString, query);
        QFETCH(double, marker);
        QFETCH(QStringList, walk);
        const QList<EventBoxGeometry> boxes = smallDayBoxes();
        const QList<qsizetype> matches = findMatches(boxes, query);
        std::optional<qsizetype> current = firstMatchFrom(boxes, matches, marker);
        QStringList got;
        for (qsizetype step = 0; current && step <= matches.size(); ++step) {
            got.append(labelOf(boxes.at(matches.at(*current))));
            current = stepMatch(*current, matches.size(), true);
        }
        QCOMPARE(got, walk);
        QCOMPARE(foldedForFind(u"\u00c9CLAIR"_s), u"eclair"_s);
    }

    void wikiPagesAreSafeAddresses_data()
    {
        QTest::addColumn<QString>("urlTemplate");
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("url"); // empty: none
        const QString wiki = u"https://wiki.example.org/w/{page}"_s;
        QTest::newRow("spaces") << wiki << u"Marsh Leviathan"_s
                                << u"https://wiki.example.org/w/Marsh%20Leviathan"_s;
        QTest::newRow("/ ? # stay in the name")
            << wiki << u"A/B?c=1#top"_s << u"https://wiki.example.org/w/A%2FB%3Fc%3D1%23top"_s;
        QTest::newRow("not ASCII")
            << wiki << u"Dr\u00e4che"_s << u"https://wiki.example.org/w/Dr%C3%A4che"_s;
        QTest::newRow("in a query")
            << u"https://wiki.example.org/index.php?title={page}"_s << u"Rift & Brine"_s
            << u"https://wiki.example.org/index.php?title=Rift%20%26%20Brine"_s;
        QTest::newRow("http") << u"http://wiki.example.org/{page}"_s << u"A"_s << QString();
        QTest::newRow("javascript") << u"javascript:alert('{page}')"_s << u"A"_s << QString();
        QTest::newRow("no {page}") << u"https://wiki.example.org/"_s << u"A"_s << QString();
        QTest::newRow("no page name") << wiki << u" "_s << QString();
    }

    void wikiPagesAreSafeAddresses()
    {
        QFETCH(QString, urlTemplate);
        QFETCH(QString, page);
        QFETCH(QString, url);
        const std::optional<QUrl> made = wikiPageUrl(urlTemplate, page);
        QCOMPARE(made ? made->toString(QUrl::FullyEncoded) : QString(), url);
    }
};

QTEST_GUILESS_MAIN(TestReadingAids)
#include "tst_readingaids.moc"
