#include "model/globalsequence.h"
#include "model/scheduleday.h"
#include "testday.h"

#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

namespace {

const QTimeZone plusTwo(7200);
// Local midnight at UTC+2: keys count from the start of the local day.
const double dayStart =
    ScheduleDay::containing(QDateTime(QDate(2026, 11, 22), QTime(12, 0), plusTwo), plusTwo).start();

std::shared_ptr<Section> section(const QString &category, const QList<Occurrence> &occurrences)
{
    return makeSection(category, category + u"/S"_s, dayStart, occurrences);
}

// "3600 A" per entry, in key order.
QStringList entries(const SectionList &sections)
{
    QStringList found;
    for (const auto &[key, event] : globalSequence(sections, plusTwo))
        found.append(QString::number(key) + u' ' + event->name);
    return found;
}

} // namespace

class TestGlobalSequence : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void registrations_data()
    {
        QTest::addColumn<SectionList>("sections");
        QTest::addColumn<QStringList>("expected");

        // The sections' list order decides the keys, not the timetable's grouping by category.
        QTest::newRow("list order with a recurring category")
            << SectionList{section(u"X"_s, {{u"A"_s, 60, 30}}), section(u"Y"_s, {{u"B"_s, 60, 30}}),
                           section(u"X"_s, {{u"C"_s, 60, 30}})}
            << QStringList{u"3600 A"_s, u"3601 B"_s, u"3602 C"_s};
        QTest::newRow("without a chat link, nothing is entered")
            << SectionList{section(u"X"_s, {{u"A"_s, 60, 30, std::nullopt}, {u"B"_s, 90, 30}})}
            << QStringList{u"5400 B"_s};
        QTest::newRow("00:00 and 23:59")
            << SectionList{section(u"X"_s, {{u"A"_s, 1439, 1}}),
                           section(u"Y"_s, {{u"B"_s, 0, 60}, {u"C"_s, 60, 60}})}
            << QStringList{u"0 B"_s, u"3600 C"_s, u"86340 A"_s};
        // The wrap-around rule: a section that starts and ends with the same event in the day's
        // first minute publishes that run once.
        QTest::newRow("same first and last event: the first is dropped")
            << SectionList{section(u"X"_s,
                                   {{u"A"_s, 0, 480}, {u"B"_s, 480, 900}, {u"A"_s, 1380, 60}})}
            << QStringList{u"28800 B"_s, u"82800 A"_s};
        QTest::newRow("a different last event keeps it")
            << SectionList{section(u"X"_s, {{u"A"_s, 0, 60}, {u"A"_s, 60, 60}, {u"B"_s, 120, 60}})}
            << QStringList{u"0 A"_s, u"3600 A"_s, u"7200 B"_s};
        QTest::newRow("the only occurrence at 00:00 is dropped")
            << SectionList{section(u"X"_s, {{u"A"_s, 0, 1440}})} << QStringList();
        QTest::newRow("a first one after minute 0 is kept")
            << SectionList{section(u"X"_s, {{u"A"_s, 1, 60}, {u"A"_s, 1380, 60}})}
            << QStringList{u"60 A"_s, u"82800 A"_s};
        QTest::newRow("occurrences without a link are not first or last")
            << SectionList{section(
                   u"X"_s, {{u"N"_s, 0, 30, std::nullopt}, {u"A"_s, 30, 60}, {u"A"_s, 90, 60}})}
            << QStringList{u"1800 A"_s, u"5400 A"_s};
        // Keys raised past minute 0 run into the next minutes: 61 events at 00:00 take 0 to 60,
        // and an event at 00:01 then takes 61. With 59 at 00:00, the wrap-around section's first
        // takes 59, still the day's first minute, and is dropped.
        for (const int crowd : {61, 59}) {
            QList<Occurrence> fillers;
            QStringList expected;
            for (int i = 0; i < crowd; ++i) {
                fillers.append({u"F"_s + QString::number(i), 0, 0});
                expected.append(QString::number(i) + u" F"_s + QString::number(i));
            }
            SectionList sections{section(u"Crowd"_s, fillers)};
            if (crowd == 61) {
                sections.append(section(u"Late"_s, {{u"L"_s, 1, 30}}));
                expected.append(u"61 L"_s);
            } else {
                sections.append(
                    section(u"Wrap"_s, {{u"A"_s, 0, 1}, {u"B"_s, 1, 1}, {u"A"_s, 2, 1}}));
                expected += QStringList{u"60 B"_s, u"120 A"_s};
            }
            QTest::addRow("%d at 00:00", crowd) << sections << expected;
        }
    }

    void registrations()
    {
        QFETCH(SectionList, sections);
        QFETCH(QStringList, expected);
        QCOMPARE(entries(sections), expected);
    }
};

QTEST_GUILESS_MAIN(TestGlobalSequence)
#include "tst_globalsequence.moc"
