#include "documentparser.h"

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

// A section record with the given segments whose pattern gives each reference an hour, so the
// expansion shows which event each reference reaches.
QString sectionWithSegments(const QString &segments, const QList<int> &references)
{
    QStringList entries;
    for (int reference : references)
        entries.append(u"{\"d\": 60, \"r\": "_s + QString::number(reference) + u'}');
    return uR"({"category": "Coast", "name": "Harbour", "segments": )"_s + segments +
           uR"(, "sequences": {"partial": [], "pattern": [)"_s + entries.join(u", ") + u"]}}"_s;
}

QString eventNames(const Section &section)
{
    QStringList names;
    for (const auto &event : section.events)
        names.append(event->name);
    return names.join(u',');
}

// The event each hour of the first pass reaches, "-" for a pause.
QString hours(const Section &section, qsizetype count)
{
    QStringList names(count, u"-"_s);
    for (const auto &item : section.sequence) {
        const auto hour = static_cast<qsizetype>((item->time - context.day.start()) / 3600);
        if (hour < count)
            names[hour] = item->event->name;
    }
    return names.join(u',');
}

} // namespace

class TestDocumentParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void segmentProbes_data();
    void segmentProbes();
    void sectionFields_data();
    void sectionFields();
    void invalidSections_data();
    void invalidSections();
    void documentKeepsOrderAndSkipsBadRecords();
    void emptyDocument();
};

void TestDocumentParser::segmentProbes_data()
{
    QTest::addColumn<QString>("segments");
    QTest::addColumn<QList<int>>("references");
    QTest::addColumn<QString>("events");
    QTest::addColumn<QString>("reached");

    QTest::newRow("numbered from 0") << uR"({"0": {"name": "A"}, "1": {"name": "B"}})"_s
                                     << QList<int>{0, 1} << u"A,B"_s << u"A,B"_s;
    QTest::newRow("numbered from 1") << uR"({"1": {"name": "A"}, "2": {"name": "B"}})"_s
                                     << QList<int>{0, 1, 2} << u"A,B"_s << u"-,A,B"_s;
    QTest::newRow("pause under 0") << uR"({"0": {"name": ""}, "1": {"name": "A"}})"_s
                                   << QList<int>{0, 1} << u"A"_s << u"-,A"_s;
    QTest::newRow("skipped key in the middle shifts every reference")
        << uR"({"0": {"name": "A"}, "2": {"name": "B"}})"_s << QList<int>{0, 1, 2} << u"A,B"_s
        << u"-,A,B"_s;
    QTest::newRow("key beyond the probes is never read")
        << uR"({"0": {"name": "A"}, "5": {"name": "B"}})"_s << QList<int>{0, 1} << u"A"_s
        << u"-,A"_s;
    QTest::newRow("non-object segment counts as missing")
        << uR"({"0": "A", "1": {"name": "B"}, "2": 7})"_s << QList<int>{0, 1, 2} << u"B"_s
        << u"-,-,B"_s;
    QTest::newRow("leading zeros are not keys") << uR"({"00": {"name": "A"}, "1": {"name": "B"}})"_s
                                                << QList<int>{0, 1} << u"B"_s << u"-,B"_s;
    QTest::newRow("all names empty: no events, no occurrences")
        << uR"({"0": {"name": ""}, "1": {"name": ""}})"_s << QList<int>{0, 1} << QString()
        << u"-,-"_s;
}

void TestDocumentParser::segmentProbes()
{
    QFETCH(QString, segments);
    QFETCH(QList<int>, references);
    QFETCH(QString, events);
    QFETCH(QString, reached);

    const auto parsed =
        parseSection(json(sectionWithSegments(segments, references)).toObject(), context);
    QVERIFY2(parsed, qPrintable(parsed.ok() ? QString() : parsed.error()));
    QCOMPARE(eventNames(*parsed.value()), events);
    QCOMPARE(hours(*parsed.value(), references.size()), reached);
}

void TestDocumentParser::sectionFields_data()
{
    QTest::addColumn<QString>("extra");
    QTest::addColumn<QString>("wiki");

    QTest::newRow("link") << uR"x("link": "Harbour_(zone)",)x"_s << u"Harbour_(zone)"_s;
    QTest::newRow("no link") << QString() << u"Harbour"_s;
    QTest::newRow("link a number") << uR"("link": 5,)"_s << u"Harbour"_s;
    QTest::newRow("keys are case-sensitive") << uR"("Link": "Other",)"_s << u"Harbour"_s;
}

void TestDocumentParser::sectionFields()
{
    QFETCH(QString, extra);
    QFETCH(QString, wiki);

    const QString record = u"{"_s + extra + uR"("category": "Coast", "name": "Harbour",
                              "segments": {"0": {"name": "Tide Raid", "section": "Else"}},
                              "sequences": {"partial": [], "pattern": [{"d": 1440, "r": 0}]}})"_s;
    const auto parsed = parseSection(json(record).toObject(), context);
    QVERIFY(parsed);
    const Section &section = *parsed.value();
    QCOMPARE(section.category, u"Coast"_s);
    QCOMPARE(section.name, u"Harbour"_s);
    QCOMPARE(section.wiki, wiki);
    QCOMPARE(section.events.size(), 1);
    QCOMPARE(section.events.first()->section, std::optional<QString>(u"Harbour"_s));
    QCOMPARE(section.sequence.size(), 1);
}

void TestDocumentParser::invalidSections_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("reason");

    const QString sequences = uR"("sequences": {"partial": [], "pattern": [{"d": 60, "r": 0}]})"_s;
    const QString segments = uR"("segments": {"0": {"name": "A"}})"_s;
    const QString named = uR"("category": "Coast", "name": "Harbour")"_s;

    QTest::newRow("not an object") << u"[1, 2]"_s << u"not an object (found an array)"_s;
    QTest::newRow("a string") << u"\"Harbour\""_s << u"not an object (found \"Harbour\")"_s;
    QTest::newRow("category missing")
        << u"{\"name\": \"Harbour\", "_s + segments + u", "_s + sequences + u'}'
        << u"\"category\" is missing"_s;
    QTest::newRow("Category in another case")
        << u"{\"Category\": \"Coast\", \"name\": \"Harbour\", "_s + segments + u", "_s + sequences +
               u'}'
        << u"\"category\" is missing"_s;
    QTest::newRow("name a number")
        << u"{\"category\": \"Coast\", \"name\": 3, "_s + segments + u", "_s + sequences + u'}'
        << u"\"name\" is not a string (found 3)"_s;
    QTest::newRow("segments an array")
        << u"{"_s + named + u", \"segments\": [], "_s + sequences + u'}'
        << u"\"Harbour\": \"segments\" is not an object (found an array)"_s;
    QTest::newRow("sequences missing")
        << u"{"_s + named + u", "_s + segments + u'}' << u"\"Harbour\": \"sequences\" is missing"_s;
    QTest::newRow("pattern missing")
        << u"{"_s + named + u", "_s + segments + u", \"sequences\": {\"partial\": []}}"_s
        << u"\"Harbour\", \"sequences\": \"pattern\" is missing"_s;
    QTest::newRow("partial an object")
        << u"{"_s + named + u", "_s + segments +
               u", \"sequences\": {\"partial\": {}, \"pattern\": []}}"_s
        << u"\"Harbour\", \"sequences\": \"partial\" is not an array (found an object)"_s;
    QTest::newRow("segment without a name string")
        << u"{"_s + named +
               u", \"segments\": {\"0\": {\"name\": \"A\"}, \"1\": {\"link\": \"x\"}}, "_s +
               sequences + u'}'
        << u"\"Harbour\", segment \"1\": \"name\" is missing"_s;
    QTest::newRow("schedule entry broken")
        << u"{"_s + named + u", "_s + segments +
               u", \"sequences\": {\"partial\": [{\"d\": 30.5, \"r\": 0}], \"pattern\": []}}"_s
        << u"\"Harbour\": \"partial\" entry 1: \"d\" is not an integer (found 30.5)"_s;
    QTest::newRow("reference beyond the events")
        << u"{"_s + named + u", "_s + segments +
               u", \"sequences\": {\"partial\": [], \"pattern\": [{\"d\": 60, \"r\": 1}]}}"_s
        << u"\"Harbour\": \"pattern\" entry 1: \"r\" = 1 points past the section's events (1 event, 0 skipped segment keys)"_s;
    QTest::newRow("empty segments: the one probe is not counted")
        << u"{"_s + named +
               u", \"segments\": {}, \"sequences\": {\"partial\": [], \"pattern\": [{\"d\": 60, \"r\": 0}]}}"_s
        << u"\"Harbour\": \"pattern\" entry 1: \"r\" = 0 points past the section's events (0 events, 0 skipped segment keys)"_s;
}

void TestDocumentParser::invalidSections()
{
    QFETCH(QString, element);
    QFETCH(QString, reason);

    SectionList sections;
    const Status status = appendSection(json(element), sections, context);
    QVERIFY(!status);
    QCOMPARE(status.error(), reason);
    QVERIFY(sections.isEmpty());
}

void TestDocumentParser::documentKeepsOrderAndSkipsBadRecords()
{
    const QByteArray document = R"([
        {"category": "Coast", "name": "Harbour", "segments": {"0": {"name": "A"}},
         "sequences": {"partial": [], "pattern": [{"d": 720, "r": 0}]}},
        {"category": "Coast", "name": "Broken", "segments": {"0": {"name": "B"}},
         "sequences": {"partial": [], "pattern": []}},
        17,
        {"category": "Peaks", "name": "Summit", "segments": {"1": {"name": "C"}},
         "sequences": {"partial": [], "pattern": [{"d": 360, "r": 1}]}},
        {"category": "Coast", "name": "Harbour", "segments": {"0": {"name": "D"}},
         "sequences": {"partial": [], "pattern": [{"d": 1440, "r": 0}]}}
    ])";
    const ParsedDocument parsed = parseDocument(QJsonDocument::fromJson(document).array(), context);

    QStringList names;
    for (const auto &section : parsed.sections)
        names.append(section->category + u'/' + section->name + u':' +
                     QString::number(section->sequence.size()));
    QCOMPARE(names, (QStringList{u"Coast/Harbour:2"_s, u"Peaks/Summit:4"_s, u"Coast/Harbour:1"_s}));
    QCOMPARE(parsed.skipped.size(), 2);
    QCOMPARE(
        parsed.skipped.at(0).line(),
        u"[ERROR] Skipped section 2: \"Broken\": \"pattern\" is empty, so the day never fills"_s);
    QCOMPARE(parsed.skipped.at(1).line(), u"[ERROR] Skipped section 3: not an object (found 17)"_s);
}

void TestDocumentParser::emptyDocument()
{
    const ParsedDocument parsed = parseDocument(QJsonArray(), context);
    QVERIFY(parsed.sections.isEmpty());
    QVERIFY(parsed.skipped.isEmpty());
}

QTEST_GUILESS_MAIN(TestDocumentParser)
#include "tst_documentparser.moc"
