#include "model/scheduleday.h"
#include "model/soontext.h"
#include "model/viewchoices.h"
#include "model/wikipage.h"
#include "smallday.h"
#include "timetable/boxindex.h"
#include "timetable/boxtexts.h"
#include "timetable/find.h"
#include "timetable/hourruler.h"
#include "timetable/nextup.h"
#include "timetable/pastveil.h"
#include "timetable/revealscroll.h"
#include "timetable/timelinenavigation.h"

#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

namespace {

const QList<EventBoxGeometry> boxes =
    TimetableLayout::build(SmallDay::sections(), QTimeZone::utc(), SmallDay::now(),
                           [](const QString &) { return 17.0; })
        .eventBoxes;

} // namespace

class TestReadingAids : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The ruler reads the axis as the boxes' texts do, on any day in any zone.
    void rulerMarksStandOverTheBoxesTimes_data()
    {
        QTest::addColumn<QTimeZone>("timeZone");
        QTest::addColumn<QString>("builtAt");
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("right");
        QTest::addColumn<QStringList>("marks"); // "x label", a quarter without a label
        const QString november = u"2026-11-22T12:00:00Z"_s;
        const QTimeZone berlin("Europe/Berlin");
        QTest::newRow("UTC, from the next quarter, past the day's end")
            << QTimeZone::utc() << november << 14230.0 << 14400.0
            << QStringList{u"14250"_s, u"14400 00:00"_s};
        QTest::newRow("UTC+2: local midnight reads 02:00")
            << QTimeZone(7200) << november << 0.0 << 150.0 << QStringList{u"0 02:00"_s, u"150"_s};
        // Berlin's change days, with the offset of the moment the timetable was built.
        QTest::newRow("spring, built before the change: no 02:00")
            << berlin << u"2026-03-29T00:30:00Z"_s << 0.0 << 600.0
            << QStringList{u"0 01:00"_s, u"150"_s, u"300"_s, u"450"_s, u"600 03:00"_s};
        QTest::newRow("autumn: 02:00 twice")
            << berlin << u"2026-10-25T12:00:00Z"_s << 600.0 << 1200.0
            << QStringList{u"600 02:00"_s, u"750"_s, u"900"_s, u"1050"_s, u"1200 02:00"_s};
        QTest::newRow("autumn: the 25-hour day's end, then the next local midnight")
            << berlin << u"2026-10-25T12:00:00Z"_s << 14250.0 << 14400.0
            << QStringList{u"14250"_s, u"14400 01:00"_s};
    }

    void rulerMarksStandOverTheBoxesTimes()
    {
        QFETCH(QTimeZone, timeZone);
        QFETCH(QString, builtAt);
        QFETCH(double, left);
        QFETCH(double, right);
        const QDateTime built = QDateTime::fromString(builtAt, Qt::ISODate);
        const QList<RulerMark> marks = rulerMarks(timeZone, built, 0);
        QStringList got;
        QList<Occurrence> days[2]; // under each hour mark a box of the day or of the next
        for (const RulerMark &mark : marksBetween(marks, left, right)) {
            got.append(QString::number(mark.x) + (mark.hour ? u' ' + mark.label : QString()));
            if (mark.hour)
                days[mark.x >= 14400].append({got.last(), static_cast<int>(mark.x) / 10 % 1440, 1});
        }
        QTEST(got, "marks");
        // Each box stands under its mark and shows the mark's time.
        const QDate day = built.toTimeZone(timeZone).date();
        const auto section = [&](int d) {
            return makeSection(u"C"_s, u"S"_s, ScheduleDay::of(day.addDays(d), timeZone).start(),
                               days[d]);
        };
        for (const EventBoxGeometry &box :
             TimetableLayout::build({section(0)}, timeZone, built,
                                    [](const QString &) { return 17.0; }, {section(1)})
                 .eventBoxes)
            QCOMPARE(QString::number(box.rect.left()) + u' ' + box.startText, box.event().name);
    }

    // The tooltip and what screen readers hear, from the box's numbers.
    void boxesTellTheirTimes()
    {
        QCOMPARE(boxtexts::details(boxes.at(boxNamed(boxes, u"Tide 09:00"_s))),
                 u"Tide\nHarbour\n09:00\u201310:00, 1 h\n[&BAAAAA=]"_s);
        QCOMPARE(boxtexts::details(boxes.at(boxNamed(boxes, u"Market 10:00"_s))),
                 u"Market\nHarbour\n10:00\u201310:30, 30 min"_s);
        EventBoxGeometry watch = boxes.at(boxNamed(boxes, u"Watch 12:30"_s));
        watch.tomorrow = true;
        QCOMPARE(boxtexts::details(watch),
                 u"Watch\nKeep\n12:30\u201300:00, 11 h 30 min, tomorrow"_s);
        QCOMPARE(boxtexts::description(watch, true), u"12:30, Keep, tomorrow, reminder set"_s);

        // At 10:15 the veil covers the axis up to the marker but for the boxes on now (Storm
        // 10:30 has not begun; Night and Watch run), whose names and times stay clear.
        const QRegion veil = pastVeil(6150, 400, boxes);
        for (const auto &[box, veiled] : {std::pair{u"Tide 09:00"_s, true},
                                          {u"Market 10:00"_s, false},
                                          {u"Night 10:00"_s, false},
                                          {u"Watch 00:30"_s, false}})
            QCOMPARE(veil.contains(boxes.at(boxNamed(boxes, box)).rect.topLeft().toPoint() +
                                   QPoint(2, 2)),
                     veiled);
        QVERIFY(veil.contains(QPoint(6149, 0)) && !veil.contains(QPoint(6151, 0)));
    }

    // Case and accents do not count; the walk goes by start and wraps at the ends.
    void findWalksTheMatchesFromTheMarker_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<double>("marker");
        QTest::addColumn<QStringList>("walk"); // from the first match on, one step past the end
        QTest::newRow("by section too, top to bottom at one start")
            << u"R"_s << 5900.0
            << QStringList{u"Market 10:00"_s, u"Night 10:00"_s, u"Storm 10:30"_s,
                           u"Hunt 08:00"_s,   u"Tide 09:00"_s,  u"Market 10:00"_s};
        QTest::newRow("accents do not count")
            << u"H\u00e4rbour"_s << 0.0
            << QStringList{u"Tide 09:00"_s, u"Market 10:00"_s, u"Storm 10:30"_s, u"Tide 09:00"_s};
        QTest::newRow("an empty query") << QString() << 0.0 << QStringList();
    }

    void findWalksTheMatchesFromTheMarker()
    {
        QFETCH(QString, query);
        QFETCH(double, marker);
        const QList<qsizetype> matches = findMatches(boxes, query);
        std::optional<qsizetype> current = firstMatchFrom(boxes, matches, marker);
        QStringList got;
        for (qsizetype step = 0; current && step <= matches.size(); ++step) {
            got.append(labelOf(boxes.at(matches.at(*current))));
            current = stepMatch(*current, matches.size(), true);
        }
        QTEST(got, "walk");
    }

    // A repaint asks the index for the boxes in the exposed part, across its hour columns.
    void boxIndexFindsTheExposedBoxes()
    {
        const BoxIndex index(boxes);
        for (const auto &[left, right, expected] :
             {std::tuple{6100.0, 6200.0,
                         QStringList{u"Market 10:00"_s, u"Night 10:00"_s, u"Watch 00:30"_s}},
              {7150.0, 7250.0,
               QStringList{u"Storm 10:30"_s, u"Night 10:00"_s, u"Watch 00:30"_s, u"Siege 12:00"_s}},
              {0.0, 100.0, QStringList{u"Siege 00:00"_s}},
              {20000.0, 21000.0, QStringList()}}) {
            QStringList found;
            for (const qsizetype box : index.boxesIn(boxes, QRectF(left, 0, right - left, 1000)))
                found.append(labelOf(boxes.at(box)));
            QCOMPARE(found, expected);
        }
    }

    // Next up: from the present on by start, ties in the document's order of sections, the
    // next day's first hours after the day's end, counted down as the panel feed counts.
    void nextUpOrdersAndCountsDown_data()
    {
        QTest::addColumn<QTime>("now");
        QTest::addColumn<QStringList>("marked"); // only these, when given
        QTest::addColumn<QStringList>("rows");   // the first few
        QTest::newRow("running boxes first, a tie in the document's order")
            << QTime(10, 0) << QStringList()
            << QStringList{u"Watch 00:30 now"_s, u"Market 10:00 now"_s, u"Night 10:00 now"_s,
                           u"Storm 10:30 in 30 min"_s, u"Siege 12:00 in 2 h 0 min"_s};
        QTest::newRow("a part of a minute is a whole one; a box ending now is gone")
            << QTime(9, 59, 30) << QStringList()
            << QStringList{u"Watch 00:30 now"_s, u"Hunt 08:00 now"_s, u"Tide 09:00 now"_s,
                           u"Market 10:00 in 1 min"_s, u"Night 10:00 in 1 min"_s};
        QTest::newRow("the day's end, then the next day's hours")
            << QTime(23, 50) << QStringList()
            << QStringList{u"Watch 12:30 now"_s, u"Siege 00:00 in 10 min"_s};
        QTest::newRow("only marked")
            << QTime(10, 0) << QStringList{u"Storm"_s, u"Siege"_s}
            << QStringList{u"Storm 10:30 in 30 min"_s, u"Siege 12:00 in 2 h 0 min"_s,
                           u"Siege 00:00 in 14 h 0 min"_s};
    }

    void nextUpOrdersAndCountsDown()
    {
        QFETCH(QTime, now);
        QFETCH(QStringList, marked);
        const SectionList sections = SmallDay::sections();
        const double tomorrow =
            SmallDay::now().date().addDays(1).startOfDay(QTimeZone::utc()).toSecsSinceEpoch();
        const QList<EventBoxGeometry> day =
            TimetableLayout::build(
                sections, QTimeZone::utc(), SmallDay::now(), [](const QString &) { return 17.0; },
                {makeSection(u"Raids"_s, u"Keep"_s, tomorrow, {{u"Siege"_s, 0, 30}})})
                .eventBoxes;
        const QSet<QString> only(marked.cbegin(), marked.cend());
        QStringList got;
        for (const NextUpRow &row :
             nextUp(day, sections, QDateTime(SmallDay::now().date(), now, QTimeZone::utc()),
                    marked.isEmpty() ? nullptr : &only))
            got.append(labelOf(day.at(row.box)) + u' ' + soonText(row.secondsAhead));
        QTEST(got.mid(0, 5), "rows");
    }

    // What the player hides takes no row, and find counts what it holds; names that no longer
    // exist (a section renamed next week) hide nothing and are kept.
    void hidingLeavesRows_data()
    {
        QTest::addColumn<QStringList>("sections");
        QTest::addColumn<QStringList>("categories");
        QTest::addColumn<QStringList>("markedOnly"); // the marks, when only marked is on
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<int>("hiddenMatches"); // of find's "i"
        QTest::addColumn<QString>("why");       // the empty view's first words
        const QStringList all{u"Harbour"_s, u"Forest"_s, u"Vault"_s, u"Keep"_s};
        QTest::newRow("nothing") << QStringList() << QStringList() << QStringList() << all << 0
                                 << QString();
        QTest::newRow("a section")
            << QStringList{u"Forest"_s} << QStringList() << QStringList()
            << QStringList{u"Harbour"_s, u"Vault"_s, u"Keep"_s} << 1 << QString();
        QTest::newRow("a category, and an unknown name")
            << QStringList{u"Old Forest"_s} << QStringList{u"Raids"_s} << QStringList()
            << QStringList{u"Harbour"_s, u"Forest"_s} << 2 << QString();
        QTest::newRow("everything")
            << QStringList{u"Harbour"_s, u"Forest"_s} << QStringList{u"Raids"_s} << QStringList()
            << QStringList() << 4 << u"Every section is hidden"_s;
        QTest::newRow("only marked") << QStringList() << QStringList() << QStringList{u"Siege"_s}
                                     << QStringList{u"Keep"_s} << 2 << QString();
        QTest::newRow("only marked, none marked")
            << QStringList() << QStringList() << QStringList{QString()} << QStringList() << 4
            << u"No section holds a marked event"_s;
        QTest::newRow("only marked, the marked one's section hidden")
            << QStringList{u"Keep"_s} << QStringList() << QStringList{u"Siege"_s} << QStringList()
            << 4 << u"The sections of the marked events are hidden"_s;
    }

    void hidingLeavesRows()
    {
        QFETCH(QStringList, sections);
        QFETCH(QStringList, categories);
        QFETCH(QStringList, markedOnly);
        const ViewChoices choices{sections, categories, !markedOnly.isEmpty()};
        const QSet<QString> marked(markedOnly.cbegin(), markedOnly.cend());
        QStringList rows;
        for (const auto &section : choices.shown(SmallDay::sections(), marked))
            rows.append(section->name);
        QTEST(rows, "rows");
        QTEST(static_cast<int>(countMatches(choices.hidden(SmallDay::sections(), marked), u"i"_s)),
              "hiddenMatches");
        QFETCH(QString, why);
        const QString said = choices.whyNoRows(SmallDay::sections(), marked);
        QVERIFY2(why.isEmpty() ? said.isEmpty() : said.startsWith(why), qPrintable(said));
    }

    // The focus ring from box to box: see TimelineNavigation.
    void navigationKeys_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("to");

        QTest::newRow("left stops at the row's start, up at the first row")
            << u"Market 10:00"_s << QList<int>{Qt::Key_Left, Qt::Key_Left, Qt::Key_Up}
            << u"Tide 09:00"_s;
        QTest::newRow("right stops at the row's end")
            << u"Market 10:00"_s << QList<int>{Qt::Key_Right, Qt::Key_Right} << u"Storm 10:30"_s;
        QTest::newRow("home and end")
            << u"Watch 00:30"_s << QList<int>{Qt::Key_End, Qt::Key_Home} << u"Siege 00:00"_s;
        // Up and down go to the box spanning the middle of the current one, past empty rows.
        QTest::newRow("down from an earlier box")
            << u"Tide 09:00"_s << QList<int>{Qt::Key_Down} << u"Hunt 08:00"_s;
        QTest::newRow("down passes a row without boxes, stops at the last")
            << u"Night 10:00"_s << QList<int>{Qt::Key_Down, Qt::Key_Down} << u"Watch 00:30"_s;
        // Nothing spans the middle: the nearest box, after or before.
        QTest::newRow("up past the row's end")
            << u"Watch 12:30"_s << QList<int>{Qt::Key_Up} << u"Night 10:00"_s;
        QTest::newRow("up before the row's start")
            << u"Siege 00:00"_s << QList<int>{Qt::Key_Up} << u"Hunt 08:00"_s;
        QTest::newRow("a key that does not move")
            << u"Tide 09:00"_s << QList<int>{Qt::Key_A} << QString();
    }

    void navigationKeys()
    {
        QFETCH(QString, from);
        QFETCH(QList<int>, keys);

        TimelineNavigation navigation;
        navigation.setBoxes(boxes);
        std::optional<qsizetype> current = boxNamed(boxes, from);
        for (const int key : keys)
            current = navigation.target(*current, key);
        QTEST(current ? labelOf(boxes.at(*current)) : QString(), "to");
    }

    void navigationEntry_data()
    {
        QTest::addColumn<double>("top");
        QTest::addColumn<double>("bottom");
        QTest::addColumn<QString>("box");

        // At 10:00 the marker stands where Market starts, and inside the first Watch. (The top
        // in view: see tst_timelinewidget.)
        QTest::newRow("the last row in view") << 300.0 << 500.0 << u"Watch 00:30"_s;
        QTest::newRow("nothing in view: the first row") << 5000.0 << 5100.0 << u"Market 10:00"_s;
    }

    void navigationEntry()
    {
        QFETCH(double, top);
        QFETCH(double, bottom);

        TimelineNavigation navigation;
        navigation.setBoxes(boxes);
        QTEST(labelOf(boxes.at(*navigation.entryBox(top, bottom, 6000.0))), "box");
        navigation.setBoxes({});
        QVERIFY(!navigation.entryBox(top, bottom, 6000.0));
    }

    // The least scroll that shows the box, 8 points from the edge, within the bar's range: here
    // a view 700 long at 900 of 13500, both ways.
    void revealScrollsTheLeast_data()
    {
        QTest::addColumn<QRectF>("box");
        QTest::addColumn<int>("sideways");
        QTest::addColumn<int>("upright");
        QTest::newRow("after, below") << QRectF(2000, 1600, 100, 50) << 1408 << 958;
        QTest::newRow("before, above") << QRectF(500, 850, 100, 50) << 492 << 842;
        QTest::newRow("partly out, odd height") << QRectF(1550, 1580, 100, 45) << 958 << 934;
        QTest::newRow("long, seen in its middle; in view")
            << QRectF(0, 1000, 5000, 50) << 900 << 900;
        QTest::newRow("longer than the view: its start")
            << QRectF(3000, 1000, 1000, 50) << 2992 << 900;
        QTest::newRow("at the end") << QRectF(14300, 14300, 100, 50) << 13500 << 13500;
    }

    void revealScrollsTheLeast()
    {
        QFETCH(QRectF, box);
        const RevealScroll::Axis bar{900, 700, 13500};
        QTEST(RevealScroll::sideways(box, bar), "sideways");
        QTEST(RevealScroll::upright(static_cast<int>(box.top()), box.height(), bar), "upright");
    }

    void wikiPagesAreSafeAddresses_data()
    {
        QTest::addColumn<QString>("urlTemplate");
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("url"); // empty: none
        const QString wiki = u"https://wiki.example.org/w/{page}"_s;
        // Spaces, / ? # and what is not ASCII stay in the name.
        QTest::newRow("one piece")
            << wiki << u"Dr\u00e4che A/B?c=1#top"_s
            << u"https://wiki.example.org/w/Dr%C3%A4che%20A%2FB%3Fc%3D1%23top"_s;
        QTest::newRow("in a query")
            << u"https://wiki.example.org/index.php?title={page}"_s << u"Rift & Brine"_s
            << u"https://wiki.example.org/index.php?title=Rift%20%26%20Brine"_s;
        QTest::newRow("http") << u"http://wiki.example.org/{page}"_s << u"A"_s << QString();
        QTest::newRow("no {page}") << u"https://wiki.example.org/"_s << u"A"_s << QString();
        QTest::newRow("no page name") << wiki << u" "_s << QString();
        // A link that is a whole https address already opens as it is, with or without a template.
        QTest::newRow("a whole address") << wiki << u"https://wiki.example.test/Shadow_Behemoth"_s
                                         << u"https://wiki.example.test/Shadow_Behemoth"_s;
        QTest::newRow("a whole address, no template")
            << QString() << u"https://w.example.test/A"_s << u"https://w.example.test/A"_s;
        QTest::newRow("a name, no template") << QString() << u"A"_s << QString();
    }

    void wikiPagesAreSafeAddresses()
    {
        QFETCH(QString, urlTemplate);
        QFETCH(QString, page);
        const std::optional<QUrl> made = wikiPageUrl(urlTemplate, page);
        QTEST(made ? made->toString(QUrl::FullyEncoded) : QString(), "url");
    }
};

QTEST_GUILESS_MAIN(TestReadingAids)
#include "tst_readingaids.moc"
