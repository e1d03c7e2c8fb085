#include "data/suiteexport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

// Two chat-link occurrences in the same minute, as the timetable registers them.
GlobalSequence twoAtOne()
{
    GlobalSequence sequence;
    for (const auto &[name, section] :
         {std::pair{u"Pearl Dive"_s, u"Lagoon"_s}, std::pair{u"Ferry \"2\""_s, u"Pier"_s}}) {
        auto event = std::make_shared<Event>();
        event->name = name;
        event->section = section;
        event->chatLink = u"[&"_s + section + u']';
        registerEvent(sequence, 3600, event);
    }
    return sequence;
}

// 01:30 here, on the 23rd, is 23:30 UTC on the 22nd.
const QDateTime now(QDate(2026, 11, 23), QTime(1, 30), QTimeZone(7200));

} // namespace

class TestSuiteExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSuiteAsAReaderFindsIt()
    {
        // The arrays in the order they are written, then the axis's UTC day and the moment.
        QCOMPARE(suiteText(sharedSuite(twoAtOne(), now)),
                 "{\n"
                 "    \"varn_global_events_times\": [3600,3601],\n"
                 "    \"varn_global_events_sequence\": [\"Pearl Dive\",\"Ferry \\\"2\\\"\"],\n"
                 "    \"varn_global_events_sections\": [\"Lagoon\",\"Pier\"],\n"
                 "    \"varn_global_events_chatlinks\": [\"[&Lagoon]\",\"[&Pier]\"],\n"
                 "    \"axis_day_start\": \"2026-11-22T00:00:00Z\",\n"
                 "    \"written_at\": \"2026-11-22T23:30:00Z\"\n"
                 "}\n"_ba);

        // Written whole over what was there, with nothing left beside it.
        QTemporaryDir home;
        const QString path = home.filePath(u"tolmerkvarn.eventtimer/suite.json"_s);
        QVERIFY(exportToSharedSuite(twoAtOne(), now, path).ok());
        QVERIFY(exportToSharedSuite(GlobalSequence(), now, path).ok());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), suiteText(sharedSuite(GlobalSequence(), now)));
        QCOMPARE(QDir(QFileInfo(path).path()).entryList(QDir::Files), QStringList{u"suite.json"_s});

        // A place under a file, and a place that is a folder, fail with the place named (also
        // for root, unlike a file without permissions).
        for (const QString &place : {path + u"/suite.json"_s, QFileInfo(path).path()})
            QVERIFY(exportToSharedSuite(twoAtOne(), now, place).error().contains(place));
    }
};

QTEST_GUILESS_MAIN(TestSuiteExport)
#include "tst_suiteexport.moc"
