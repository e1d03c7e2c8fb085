#include "model/documentparser.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0), QTimeZone::utc());
const ParseContext context{ScheduleDay::containing(noon, QTimeZone::utc()), nullptr};

// A section with these segments whose pattern gives each reference an hour: its events and
// the event each hour reaches, "-" for a pause ("A,B|-,A,B"), or why it is left out.
QString probe(const QString &segments, const QList<int> &references)
{
    QStringList entries;
    for (int reference : references)
        entries.append(u"{\"d\": 60, \"r\": "_s + QString::number(reference) + u'}');
    const auto parsed = parseSection(
        QJsonDocument::fromJson((uR"({"category": "C", "name": "S", "link": 5, "segments": )"_s +
                                 segments + uR"(, "sequences": {"partial": [], "pattern": [)"_s +
                                 entries.join(u", ") + u"]}}"_s)
                                    .toUtf8())
            .object(),
        context);
    if (!parsed)
        return parsed.error();
    QStringList events;
    for (const auto &event : parsed.value()->events)
        events.append(event->name + (event->section == u"S"_s ? u""_s : u"?"_s));
    QStringList hours(references.size(), u"-"_s);
    for (const auto &item : parsed.value()->sequence) {
        const auto hour = static_cast<qsizetype>((item->time - context.day.start()) / 3600);
        if (hour < hours.size())
            hours[hour] = item->event->name;
    }
    return events.join(u',') + u'|' + hours.join(u',') + u'|' + parsed.value()->wiki;
}

} // namespace

class TestDocumentParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void segmentProbes_data()
    {
        QTest::addColumn<QString>("segments");
        QTest::addColumn<QList<int>>("references");
        QTest::addColumn<QString>("expected");

        QTest::newRow("numbered from 0") << uR"({"0": {"name": "A"}, "1": {"name": "B"}})"_s
                                         << QList<int>{0, 1} << u"A,B|A,B|S"_s;
        QTest::newRow("numbered from 1") << uR"({"1": {"name": "A"}, "2": {"name": "B"}})"_s
                                         << QList<int>{0, 1, 2} << u"A,B|-,A,B|S"_s;
        QTest::newRow("a pause under 0")
            << uR"({"0": {"name": ""}, "1": {"name": "A"}})"_s << QList<int>{0, 1} << u"A|-,A|S"_s;
        QTest::newRow("a key missing in the middle shifts every reference")
            << uR"({"0": {"name": "A"}, "2": {"name": "B"}})"_s << QList<int>{0, 1, 2}
            << u"A,B|-,A,B|S"_s;
        QTest::newRow("a key beyond the probes is never read")
            << uR"({"0": {"name": "A"}, "5": {"name": "B"}})"_s << QList<int>{0, 1} << u"A|-,A|S"_s;
        QTest::newRow("a segment that is no object counts as missing")
            << uR"({"0": "A", "1": {"name": "B", "section": "X"}})"_s << QList<int>{0, 1}
            << u"B|-,B|S"_s;
        QTest::newRow("empty segments: the one probe is not counted")
            << u"{}"_s << QList<int>{0}
            << u"\"S\": \"pattern\" entry 1: \"r\" = 0 points past the section's events (0 "
               u"events, 0 skipped segment keys)"_s;
    }

    void segmentProbes()
    {
        QFETCH(QString, segments);
        QFETCH(QList<int>, references);
        QFETCH(QString, expected);
        QCOMPARE(probe(segments, references), expected);
    }

    void boundsOfTheWholeDocument_data()
    {
        QTest::addColumn<int>("reference"); // 0: occurrences, -1: pauses
        QTest::addColumn<int>("kept");
        QTest::addColumn<QString>("reason");

        // A pass of 69 entries moves one minute: 99360 entries a day, each an occurrence or a
        // pause. The third section would pass 200000 occurrences, the eleventh 1000000 entries.
        QTest::newRow("occurrences") << 0 << 2
                                     << u"\"S\": the document would hold more than 200000 "
                                        u"occurrences"_s;
        QTest::newRow("entries") << -1 << 10
                                 << u"\"S\": the document's schedules need more than 1000000 "
                                    u"entries in all"_s;
    }

    void boundsOfTheWholeDocument()
    {
        QFETCH(int, reference);
        QFETCH(int, kept);
        QFETCH(QString, reason);
        const QByteArray entry = R"({"d": 0, "r": )" + QByteArray::number(reference) + "},";
        const QByteArray section =
            R"({"category": "C", "name": "S", "segments": {"0": {"name": "A"}},
                "sequences": {"partial": [], "pattern": [)" +
            entry.repeated(68) + R"({"d": 1, "r": )" + QByteArray::number(reference) + "}]}}";
        const ParsedDocument parsed = parseDocument(
            QJsonDocument::fromJson('[' + (section + ',').repeated(11) + section + ']').array(),
            context);
        QCOMPARE(parsed.sections.size(), kept);
        QCOMPARE(parsed.skipped.first().reason, reason);
    }

    void documents_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<int>("occurrences");

        // Each breaks its third section: see tests/fixtures/documents/README.md.
        QTest::newRow("element") << u"bad-element-not-object"_s
                                 << u"not an object (found an array)"_s << 181;
        QTest::newRow("category") << u"bad-category-missing"_s << u"\"category\" is missing"_s
                                  << 121;
        QTest::newRow("pattern") << u"bad-pattern-missing"_s
                                 << u"\"Ancient Dragons\", \"sequences\": \"pattern\" is missing"_s
                                 << 188;
        QTest::newRow("segment name")
            << u"bad-segment-name-missing"_s
            << u"\"Smugglers' Cove\", segment \"1\": \"name\" is missing"_s << 133;
        QTest::newRow("entry") << u"bad-entry-not-object"_s
                               << u"\"Guild Bounties\": \"pattern\" entry 3: not an object (found "
                                  u"an array)"_s
                               << 171;
        QTest::newRow("realistic") << u"realistic"_s << QString() << 626;
    }

    void documents()
    {
        QFETCH(QString, file);
        QFETCH(QString, reason);
        QFETCH(int, occurrences);

        QFile document(QStringLiteral(EVENTTIMER_FIXTURES_DIR "/documents/") + file + u".json"_s);
        QVERIFY(document.open(QIODevice::ReadOnly));
        const ParsedDocument parsed =
            parseDocument(QJsonDocument::fromJson(document.readAll()).array(), context);
        QStringList lines;
        for (const SkippedSection &skipped : parsed.skipped)
            lines.append(skipped.line());
        QCOMPARE(lines, reason.isEmpty() ? QStringList()
                                         : QStringList{u"[ERROR] Skipped section 3: "_s + reason});
        int count = 0;
        for (const auto &section : parsed.sections)
            count += static_cast<int>(section->sequence.size());
        QCOMPARE(count, occurrences);
        QCOMPARE(parsed.sections.size(), reason.isEmpty() ? 18 : 4);
    }
};

QTEST_GUILESS_MAIN(TestDocumentParser)
#include "tst_documentparser.moc"
