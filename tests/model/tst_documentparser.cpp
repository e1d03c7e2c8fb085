#include "model/documentparser.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

const QTimeZone utc = QTimeZone::utc();
const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0), utc);

// A section "S": its entries as "d:r d:r", or JSON when they start with "[", and its segments.
struct Record
{
    QString partial;
    QString pattern;
    QString expected; // "E1@00:00/30 E2@00:30/60": event, local start, minutes; or why not
    QString segments = uR"({"0": {"name": "E0"}, "1": {"name": "E1"}, "2": {"name": "E2"}})"_s;
    QString now = u"2026-11-22T12:00:00Z"_s;
    QByteArray zone = "UTC";
};

QJsonArray entries(const QString &text)
{
    if (text.startsWith(u'['))
        return QJsonDocument::fromJson(text.toUtf8()).array();
    QJsonArray array;
    for (const QString &entry : text.split(u' ', Qt::SkipEmptyParts))
        array.append(QJsonObject{{u"d"_s, entry.section(u':', 0, 0).toLongLong()},
                                 {u"r"_s, entry.section(u':', 1, 1).toLongLong()}});
    return array;
}

} // namespace

class TestDocumentParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sections_data()
    {
        QTest::addColumn<Record>("record");
        const auto row = [](const char *name, const Record &record) {
            QTest::newRow(name) << record;
        };
        // Segment keys: probes "0" to "n" for n keys, and every probe but the last that yields
        // no event shifts the references by one.
        row("keys numbered from 1: r = 0 is a pause",
            {u"60:0 60:1 60:2"_s, u"1440:-1"_s, u"A@01:00/60 B@02:00/60"_s,
             uR"({"1": {"name": "A"}, "2": {"name": "B"}})"_s});
        row("an empty name under 0 is a pause", {u"60:0 60:1"_s, u"1440:-1"_s, u"A@01:00/60"_s,
                                                 uR"({"0": {"name": ""}, "1": {"name": "A"}})"_s});
        row("a key beyond the probes is never read",
            {u"60:0 60:1 60:2"_s, u"1440:-1"_s,
             u"\"partial\" entry 3: \"r\" = 2 points past the section's events (1 event, 1 "
             u"skipped segment key)"_s,
             uR"({"0": {"name": "A"}, "5": {"name": "B"}})"_s});
        row("a segment that is no object counts as missing",
            {u"60:0 60:1"_s, u"1440:-1"_s, u"B@01:00/60"_s,
             uR"({"0": "A", "1": {"name": "B", "section": "X"}})"_s});
        row("empty segments: the one probe is not counted",
            {u"60:0"_s, u"1440:-1"_s,
             u"\"partial\" entry 1: \"r\" = 0 points past the section's events (0 events, 0 "
             u"skipped segment keys)"_s,
             u"{}"_s});

        row("an entry at 23:59 is added, one at the day's end is not",
            {u"1439:-1 1:0 60:1"_s, u"60:0"_s, u"E0@23:59/1"_s});
        row("partial longer than the day: the rest is not read",
            {uR"([{"d": 1000, "r": 0}, {"d": 1000, "r": 1}, "broken", {"d": 1.5}])"_s,
             uR"([{"r": 99}])"_s, u"E0@00:00/1000 E1@16:40/1000"_s});
        // 23:30 UTC is already the next day at UTC+2. Berlin's clocks go forward on 2026-03-29,
        // and that day fills 86400 s all the same.
        row("UTC+2, from its own midnight, the pattern repeated",
            {.pattern = u"480:0 240:1"_s,
             .expected = u"E0@00:00/480 E1@08:00/240 E0@12:00/480 E1@20:00/240"_s,
             .now = u"2026-11-22T23:30:00Z"_s,
             .zone = "UTC+02:00"});
        row("a 23-hour day runs into the next", {.pattern = u"720:0 720:1"_s,
                                                 .expected = u"E0@00:00/720 E1@13:00/720"_s,
                                                 .now = u"2026-03-29T12:00:00Z"_s,
                                                 .zone = "Europe/Berlin"});

        row("d fractional", {u""_s, uR"([{"d": 60, "r": 0}, {"d": 30.5, "r": 0}])"_s,
                             u"\"pattern\" entry 2: \"d\" is not an integer (found 30.5)"_s});
        row("d times 60 overflows",
            {u"9223372036854775807:-1"_s, u"60:0"_s,
             u"\"partial\" entry 1: \"d\" = 9223372036854775807 minutes is beyond the "
             u"64-bit integer range in seconds"_s});
        row("empty pattern", {u"60:0"_s, u""_s, u"\"pattern\" is empty, so the day never fills"_s});
        row("a pattern moving backwards",
            {u""_s, u"30:-1 -45:-1"_s,
             u"one pass over \"pattern\" moves time by -15 minutes, so the day never fills"_s});
        row("an occurrence before the day",
            {u"-10:-1 20:0"_s, u"60:0"_s,
             u"\"partial\" entry 2: the occurrence would start before the day begins "
             u"(negative \"d\" before it)"_s});
        row("endless zero-minute occurrences",
            {u""_s, u"0:0 "_s.repeated(1000) + u"1:0"_s,
             u"the schedule needs more than 100000 entries to fill the day"_s});
    }

    void sections()
    {
        QFETCH(Record, record);
        const QTimeZone zone(record.zone);
        const auto parsed = parseSection(
            QJsonObject{{u"category"_s, u"C"_s},
                        {u"name"_s, u"S"_s},
                        {u"link"_s, 5},
                        {u"segments"_s, QJsonDocument::fromJson(record.segments.toUtf8()).object()},
                        {u"sequences"_s, QJsonObject{{u"partial"_s, entries(record.partial)},
                                                     {u"pattern"_s, entries(record.pattern)}}}},
            {ScheduleDay::containing(QDateTime::fromString(record.now, Qt::ISODate), zone)});
        if (!parsed) {
            QCOMPARE(parsed.error(), u"\"S\": "_s + record.expected);
            return;
        }
        QStringList found; // "?" for "@": the event names another section
        for (const auto &item : parsed.value()->sequence)
            found.append(item->event->name + (item->event->section == u"S"_s ? u"@"_s : u"?"_s) +
                         dateTimeFromSeconds(item->time, zone).toString(u"HH:mm") + u'/' +
                         QString::number(item->duration));
        QCOMPARE(found.join(u' '), record.expected);
        QCOMPARE(parsed.value()->wiki, u"S"_s); // its "link" is no string
    }

    void documents_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("skipped"); // the first section left out: "3: why"
        QTest::addColumn<int>("kept");
        QTest::addColumn<int>("occurrences");

        // Each breaks its third section: see tests/fixtures/documents/README.md.
        const auto fixture = [](const char *name) {
            QFile file(QStringLiteral(EVENTTIMER_FIXTURES_DIR "/documents/") +
                       QLatin1StringView(name) + u".json"_s);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        QTest::newRow("element") << fixture("bad-element-not-object")
                                 << u"3: not an object (found an array)"_s << 4 << 181;
        QTest::newRow("category") << fixture("bad-category-missing")
                                  << u"3: \"category\" is missing"_s << 4 << 121;
        QTest::newRow("pattern")
            << fixture("bad-pattern-missing")
            << u"3: \"Ancient Dragons\", \"sequences\": \"pattern\" is missing"_s << 4 << 188;
        QTest::newRow("segment name")
            << fixture("bad-segment-name-missing")
            << u"3: \"Smugglers' Cove\", segment \"1\": \"name\" is missing"_s << 4 << 133;
        QTest::newRow("entry") << fixture("bad-entry-not-object")
                               << u"3: \"Guild Bounties\": \"pattern\" entry 3: not an object "
                                  u"(found an array)"_s
                               << 4 << 171;
        QTest::newRow("realistic") << fixture("realistic") << QString() << 18 << 626;

        // A pass of 69 entries moves one minute: 99360 entries a day, each an occurrence (r = 0)
        // or a pause (r = -1). The third section would pass 200000 occurrences, the eleventh
        // 1000000 entries.
        const auto crowded = [](const QByteArray &r) {
            const QByteArray section =
                R"({"category": "C", "name": "S", "segments": {"0": {"name": "A"}},
                    "sequences": {"partial": [], "pattern": [)" +
                (R"({"d": 0, "r": )" + r + "},").repeated(68) + R"({"d": 1, "r": )" + r + "}]}}";
            return '[' + (section + ',').repeated(11) + section + ']';
        };
        QTest::newRow("occurrences")
            << crowded("0") << u"3: \"S\": the document would hold more than 200000 occurrences"_s
            << 2 << 198720;
        QTest::newRow("entries")
            << crowded("-1")
            << u"11: \"S\": the document's schedules need more than 1000000 entries in all"_s << 10
            << 0;
    }

    void documents()
    {
        QFETCH(QByteArray, document);
        QFETCH(QString, skipped);
        QFETCH(int, kept);
        QFETCH(int, occurrences);
        const ParsedDocument parsed = parseDocument(QJsonDocument::fromJson(document).array(),
                                                    {ScheduleDay::containing(noon, utc), nullptr});
        QCOMPARE(parsed.skipped.isEmpty() ? QString() : parsed.skipped.first().line(),
                 skipped.isEmpty() ? QString() : u"[ERROR] Skipped section "_s + skipped);
        qsizetype count = 0;
        for (const auto &section : parsed.sections)
            count += section->sequence.size();
        QCOMPARE(parsed.sections.size(), kept);
        QCOMPARE(count, occurrences);
    }
};

QTEST_GUILESS_MAIN(TestDocumentParser)
#include "tst_documentparser.moc"
