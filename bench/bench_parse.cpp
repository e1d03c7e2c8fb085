#include "benchsupport.h"
#include "model/documentparser.h"
#include "model/scheduleday.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;
using namespace eventtimer::bench;

namespace {

qsizetype occurrencesOf(const SectionList &sections)
{
    qsizetype count = 0;
    for (const auto &section : sections)
        count += section->sequence.size();
    return count;
}

// A fixed day, so that every run expands the same schedule.
const ParseContext context{
    ScheduleDay::containing(QDateTime(QDate(2026, 3, 14), QTime(12, 0), QTimeZone::utc()),
                            QTimeZone::utc()),
    nullptr};

} // namespace

class BenchParse : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void decode_data() { documents(); }
    void decode();
    void parse_data() { documents(); }
    void parse();
    void decodeAndParse_data() { documents(); }
    void decodeAndParse();

private:
    void documents();

    QByteArray m_realistic;
    QByteArray m_stress;
    qsizetype m_realisticOccurrences = 0;
};

void BenchParse::initTestCase()
{
    m_realistic = readDocument(u"realistic.json"_s);
    QJsonParseError error;
    const QJsonDocument decoded = QJsonDocument::fromJson(m_realistic, &error);
    QVERIFY2(decoded.isArray(), qPrintable(error.errorString()));
    // Compact, as a service sends it; indented text would be three times as long and measure
    // mostly whitespace.
    m_stress =
        QJsonDocument(replicated(decoded.array(), stressCopies)).toJson(QJsonDocument::Compact);

    // The benches measure the ordinary road: every section is kept.
    const ParsedDocument parsed = parseDocument(decoded.array(), context);
    QVERIFY(parsed.skipped.isEmpty());
    QCOMPARE(parsed.sections.size(), decoded.array().size());
    m_realisticOccurrences = occurrencesOf(parsed.sections);
    qInfo().nospace() << "realistic.json: " << parsed.sections.size() << " sections, "
                      << m_realisticOccurrences
                      << " occurrences; stress: " << parsed.sections.size() * stressCopies
                      << " sections, " << m_realisticOccurrences * stressCopies << " occurrences";
}

void BenchParse::documents()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("occurrences");
    QTest::newRow("realistic") << m_realistic << qint64{m_realisticOccurrences};
    QTest::newRow("stress") << m_stress << qint64{m_realisticOccurrences * stressCopies};
}

// JSON decoding alone, to tell its share from the parser's.
void BenchParse::decode()
{
    QFETCH(QByteArray, text);
    qsizetype elements = 0;
    QBENCHMARK
    {
        elements = QJsonDocument::fromJson(text).array().size();
    }
    QVERIFY(elements > 0);
}

// Sections, events and the expanded day from an already decoded array.
void BenchParse::parse()
{
    QFETCH(QByteArray, text);
    QFETCH(qint64, occurrences);
    const QJsonArray document = QJsonDocument::fromJson(text).array();
    qsizetype made = 0;
    QBENCHMARK
    {
        made = occurrencesOf(parseDocument(document, context).sections);
    }
    QCOMPARE(made, occurrences);
}

// What a launch does with the document's bytes: decode, parse, expand.
void BenchParse::decodeAndParse()
{
    QFETCH(QByteArray, text);
    QFETCH(qint64, occurrences);
    qsizetype made = 0;
    QBENCHMARK
    {
        made =
            occurrencesOf(parseDocument(QJsonDocument::fromJson(text).array(), context).sections);
    }
    QCOMPARE(made, occurrences);
}

QTEST_GUILESS_MAIN(BenchParse)
#include "bench_parse.moc"
