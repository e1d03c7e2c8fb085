#include "model/documentparser.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc());
const ParseContext context{ScheduleDay::containing(noon, QTimeZone::utc()), nullptr};

QJsonValue json(const QString &text)
{
    // Wrapped so that any value, not only arrays and objects, can be written in a test row.
    return QJsonDocument::fromJson((u'[' + text + u']').toUtf8()).array().first();
}

// The events of a section with these segments, and the event each hour of its first pattern
// pass reaches ("-" for a pause): "A,B|-,A,B".
QString probe(const QString &segments, const QList<int> &references)
{
    QStringList entries;
    for (int reference : references)
        entries.append(u"{\"d\": 60, \"r\": "_s + QString::number(reference) + u'}');
    const auto parsed = parseSection(
        json(uR"({"category": "C", "name": "S", "segments": )"_s + segments +
             uR"(, "sequences": {"partial": [], "pattern": [)"_s + entries.join(u", ") + u"]}}"_s)
            .toObject(),
        context);
    if (!parsed)
        return parsed.error();
    QStringList events;
    for (const auto &event : parsed.value()->events)
        events.append(event->name);
    QStringList hours(references.size(), u"-"_s);
    for (const auto &item : parsed.value()->sequence) {
        const auto hour = static_cast<qsizetype>((item->time - context.day.start()) / 3600);
        if (hour < hours.size())
            hours[hour] = item->event->name;
    }
    return events.join(u',') + u'|' + hours.join(u',');
}

} // namespace

class TestDocumentParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void segmentProbes_data();
    void segmentProbes();
    void sectionFields();
    void documents_data();
    void documents();
};

void TestDocumentParser::segmentProbes_data()
{
    QTest::addColumn<QString>("segments");
    QTest::addColumn<QList<int>>("references");
    QTest::addColumn<QString>("expected");

    QTest::newRow("numbered from 0")
        << uR"({"0": {"name": "A"}, "1": {"name": "B"}})"_s << QList<int>{0, 1} << u"A,B|A,B"_s;
    QTest::newRow("numbered from 1") << uR"({"1": {"name": "A"}, "2": {"name": "B"}})"_s
                                     << QList<int>{0, 1, 2} << u"A,B|-,A,B"_s;
    QTest::newRow("pause under 0")
        << uR"({"0": {"name": ""}, "1": {"name": "A"}})"_s << QList<int>{0, 1} << u"A|-,A"_s;
    QTest::newRow("a key missing in the middle shifts every reference")
        << uR"({"0": {"name": "A"}, "2": {"name": "B"}})"_s << QList<int>{0, 1, 2}
        << u"A,B|-,A,B"_s;
    QTest::newRow("a key beyond the probes is never read")
        << uR"({"0": {"name": "A"}, "5": {"name": "B"}})"_s << QList<int>{0, 1} << u"A|-,A"_s;
    QTest::newRow("a segment that is no object counts as missing")
        << uR"({"0": "A", "1": {"name": "B"}, "2": 7})"_s << QList<int>{0, 1, 2} << u"B|-,-,B"_s;
    QTest::newRow("leading zeros are no keys")
        << uR"({"00": {"name": "A"}, "1": {"name": "B"}})"_s << QList<int>{0, 1} << u"B|-,B"_s;
    QTest::newRow("empty segments: the one probe is not counted")
        << uR"({})"_s << QList<int>{0}
        << u"\"S\": \"pattern\" entry 1: \"r\" = 0 points past the section's events (0 events, 0 "
           u"skipped segment keys)"_s;
}

void TestDocumentParser::segmentProbes()
{
    QFETCH(QString, segments);
    QFETCH(QList<int>, references);
    QFETCH(QString, expected);
    QCOMPARE(probe(segments, references), expected);
}

void TestDocumentParser::sectionFields()
{
    const auto parse = [](const QString &link) {
        return parseSection(json(uR"({"category": "Coast", "name": "Harbour", )"_s + link +
                                 uR"("segments": {"0": {"name": "Tide", "section": "Else"}},
                                 "sequences": {"partial": [], "pattern": [{"d": 1440, "r": 0}]}})"_s)
                                .toObject(),
                            context)
            .value();
    };
    const auto section = parse(uR"x("link": "Harbour_(zone)",)x"_s);
    QCOMPARE(section->category, u"Coast"_s);
    QCOMPARE(section->wiki, u"Harbour_(zone)"_s);
    QCOMPARE(section->events.first()->section, std::optional<QString>(u"Harbour"_s));
    QCOMPARE(parse(uR"("link": 5,)"_s)->wiki, u"Harbour"_s);
    QCOMPARE(parse(uR"("Link": "Other",)"_s)->wiki, u"Harbour"_s);
}

void TestDocumentParser::documents_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("occurrences");

    // Each breaks its third section; see tests/fixtures/documents/README.md. (The reasons of
    // schedule entries are the expansion's; the parser puts the section's name before them.)
    const auto row = [](const char *file, const QString &reason, int occurrences) {
        QTest::newRow(file) << QString::fromLatin1(file)
                            << u"[ERROR] Skipped section 3: "_s + reason << occurrences;
    };
    row("bad-element-not-object", u"not an object (found an array)"_s, 181);
    row("bad-category-missing", u"\"category\" is missing"_s, 121);
    row("bad-name-number", u"\"name\" is not a string (found 6)"_s, 202);
    row("bad-segments-not-object",
        u"\"Abyssal Warden\": \"segments\" is not an object (found an array)"_s, 122);
    row("bad-pattern-missing", u"\"Ancient Dragons\", \"sequences\": \"pattern\" is missing"_s,
        188);
    row("bad-segment-name-missing", u"\"Smugglers' Cove\", segment \"1\": \"name\" is missing"_s,
        133);
    row("bad-entry-not-object",
        u"\"Guild Bounties\": \"pattern\" entry 3: not an object (found an array)"_s, 171);
    QTest::newRow("realistic") << u"realistic"_s << QString() << 626;
}

void TestDocumentParser::documents()
{
    QFETCH(QString, file);
    QFETCH(QString, line);
    QFETCH(int, occurrences);

    QFile document(QStringLiteral(EVENTTIMER_FIXTURES_DIR "/documents/") + file + u".json"_s);
    QVERIFY(document.open(QIODevice::ReadOnly));
    const ParsedDocument parsed =
        parseDocument(QJsonDocument::fromJson(document.readAll()).array(), context);
    QStringList lines;
    for (const SkippedSection &skipped : parsed.skipped)
        lines.append(skipped.line());
    QCOMPARE(lines, line.isEmpty() ? QStringList() : QStringList{line});
    int count = 0;
    for (const auto &section : parsed.sections)
        count += static_cast<int>(section->sequence.size());
    QCOMPARE(count, occurrences);
    QCOMPARE(parsed.sections.size(), line.isEmpty() ? 18 : 4);
}

QTEST_GUILESS_MAIN(TestDocumentParser)
#include "tst_documentparser.moc"
