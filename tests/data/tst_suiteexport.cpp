#include "data/settingsstore.h"
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
         {std::pair{u"Pearl Dive"_s, u"Lagoon"_s}, std::pair{u"Ferry"_s, u"Pier"_s}}) {
        auto event = std::make_shared<Event>();
        event->name = name;
        event->section = section;
        event->chatLink = u"[&"_s + name + u']';
        registerEvent(sequence, 3600, event);
    }
    return sequence;
}

// Notes every access to the suite, in order.
class RecordingStore final : public KeyValueStore
{
public:
    QVariant value(const QString &key) const override
    {
        accesses.append(u"read "_s + key);
        return {};
    }
    void setValue(const QString &key, const QVariant &) override
    {
        accesses.append(u"write "_s + key);
    }
    void remove(const QString &key) override { accesses.append(u"remove "_s + key); }

    mutable QStringList accesses;
};

} // namespace

class TestSuiteExport : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;

private Q_SLOTS:

    void initTestCase()
    {
        // Before the first QSettings of this process: Qt takes the folder once.
        qputenv("XDG_CONFIG_HOME", m_home.path().toUtf8());
    }

    void writesFourParallelArraysInOrder()
    {
        QVERIFY(exportToSharedSuite(twoAtOne()).ok());
        // Read from disk by another reader, the times as integers.
        const QSettings suite(m_home.filePath(u"tolmerkvarn.eventtimer.conf"_s),
                              SettingsStore::format());
        const QVariantList times = suite.value(suitekeys::times.toString()).toList();
        QCOMPARE(times, (QVariantList{qint64{3600}, qint64{3601}}));
        QCOMPARE(times.first().typeId(), QMetaType::LongLong);
        QCOMPARE(suite.value(suitekeys::sequence.toString()).toStringList(),
                 (QStringList{u"Pearl Dive"_s, u"Ferry"_s}));
        QCOMPARE(suite.value(suitekeys::sections.toString()).toStringList(),
                 (QStringList{u"Lagoon"_s, u"Pier"_s}));
        QCOMPARE(suite.value(suitekeys::chatLinks.toString()).toStringList(),
                 (QStringList{u"[&Pearl Dive]"_s, u"[&Ferry]"_s}));

        // A reader between two writes relies on their order alone; the suite is never read.
        RecordingStore recording;
        exportToSharedSuite(twoAtOne(), recording);
        QCOMPARE(recording.accesses, (QStringList{u"write varn_global_events_times"_s,
                                                  u"write varn_global_events_sequence"_s,
                                                  u"write varn_global_events_sections"_s,
                                                  u"write varn_global_events_chatlinks"_s}));
    }

    void replacesTheArraysAndKeepsTheRest()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"suite.conf"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[General]\nvarn_global_events_sequence=Old A, Old B, Old C\n"
                   "\n[companion]\ntheme=dark\n");
        file.close();
        {
            QSettings suite(path, SettingsStore::format());
            QVERIFY(exportToSharedSuite(GlobalSequence(), suite).ok());
        }
        const QSettings suite(path, SettingsStore::format());
        QCOMPARE(suite.value(suitekeys::sequence.toString()).toStringList(), QStringList());
        QCOMPARE(suite.value(u"companion/theme"_s).toString(), u"dark"_s);
    }

    void unusableSuiteIsLeftAlone_data()
    {
        QTest::addColumn<QString>("relativePath");

        // The first two hold for root too, unlike a file without permissions.
        QTest::newRow("its folder is a file") << u"file/suite.conf"_s;
        QTest::newRow("the suite is a folder") << u"folder"_s;
        // Rewriting it would keep only the four arrays and lose what companions wrote there.
        QTest::newRow("a text suite that does not parse") << u"broken.conf"_s;
    }

    void unusableSuiteIsLeftAlone()
    {
        QFETCH(QString, relativePath);

        QTemporaryDir folder;
        const QByteArray broken = "[companion\ntheme=dark\n";
        for (const auto &[name, content] :
             {std::pair{u"file"_s, QByteArray()}, std::pair{u"broken.conf"_s, broken}}) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(content);
        }
        QVERIFY(QDir(folder.path()).mkdir(u"folder"_s));

        QSettings suite(folder.filePath(relativePath), SettingsStore::format());
        const Status status = exportToSharedSuite(twoAtOne(), suite);
        QVERIFY(status.error().contains(folder.filePath(relativePath)));
        QFile file(folder.filePath(u"broken.conf"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), broken);
    }
};

QTEST_GUILESS_MAIN(TestSuiteExport)
#include "tst_suiteexport.moc"
