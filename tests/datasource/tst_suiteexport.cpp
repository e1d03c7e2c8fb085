#include "settingsstore.h"
#include "suiteexport.h"
#include "timetablelayout.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

// One chat-link occurrence as the timetable registers it while building its boxes.
struct Registration
{
    qint64 seconds = 0;
    QString name;
    QString section;
    QString chatLink;
};

using Registrations = QList<Registration>;

// The day's chat-link occurrences, registered in build order the way the timetable does.
GlobalSequence registered(const Registrations &registrations)
{
    GlobalSequence sequence;
    for (const Registration &registration : registrations) {
        auto event = std::make_shared<Event>();
        event->name = registration.name;
        event->section = registration.section;
        event->chatLink = registration.chatLink;
        TimetableLayout::registerEvent(sequence, registration.seconds, event);
    }
    return sequence;
}

const QString timesKey = suitekeys::times.toString();
const QString sequenceKey = suitekeys::sequence.toString();
const QString sectionsKey = suitekeys::sections.toString();
const QString chatLinksKey = suitekeys::chatLinks.toString();

// The start times as a reader finds them. problem names the first that is not an integer
// (Qt's text format, for one, hands them back as strings), or stays empty.
QList<qint64> timesIn(const QVariant &value, QString *problem)
{
    if (value.typeId() != QMetaType::QVariantList)
        *problem = u"not a list of numbers but "_s + QString::fromUtf8(value.typeName());
    QList<qint64> times;
    for (const QVariant &time : value.toList()) {
        const int type = time.typeId();
        if (problem->isEmpty() && type != QMetaType::LongLong && type != QMetaType::Int)
            *problem = time.toString() + u" is a "_s + QString::fromUtf8(time.typeName());
        times.append(time.toLongLong());
    }
    return times;
}

// Stands in for the suite and notes every access, in order.
class RecordingStore final : public KeyValueStore
{
public:
    QVariant value(const QString &key) const override
    {
        m_accesses.append(u"read "_s + key);
        return {};
    }
    void setValue(const QString &key, const QVariant &) override
    {
        m_accesses.append(u"write "_s + key);
    }
    void remove(const QString &key) override { m_accesses.append(u"remove "_s + key); }

    QStringList accesses() const { return m_accesses; }

private:
    mutable QStringList m_accesses;
};

} // namespace

Q_DECLARE_METATYPE(Registrations)
Q_DECLARE_METATYPE(eventtimer::SuiteArrays)

class TestSuiteExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void writesFourParallelArrays_data();
    void writesFourParallelArrays();
    void writesInAFixedOrder();
    void keepsOtherKeysAndReplacesTheArrays_data();
    void keepsOtherKeysAndReplacesTheArrays();
    void arraysSurviveARestart();
    void unusableSuiteIsSkipped_data();
    void unusableSuiteIsSkipped();
    void writesTheUsersSuite();

private:
    // A separate QSettings over a copy of the file at path: the copy has a path this process
    // has never opened, so what it holds comes from the disk and not from Qt's cache of files.
    std::unique_ptr<QSettings> readFromDisk(const QString &path);
    // Fails the running test unless the suite file at path holds exactly expected and the
    // otherKeys, as a companion program reads it: from disk, the start times as integers.
    void verifyOnDisk(const QString &path, const SuiteArrays &expected,
                      const QStringList &otherKeys = {});

    QTemporaryDir m_home;
    QTemporaryDir m_scratch;
    int m_copies = 0;
};

std::unique_ptr<QSettings> TestSuiteExport::readFromDisk(const QString &path)
{
    const QString copy = m_scratch.filePath(u"copy-"_s + QString::number(++m_copies) + u".conf"_s);
    if (!QFile::copy(path, copy))
        return nullptr;
    return std::make_unique<QSettings>(copy, SettingsStore::format());
}

void TestSuiteExport::verifyOnDisk(const QString &path, const SuiteArrays &expected,
                                   const QStringList &otherKeys)
{
    const std::unique_ptr<QSettings> found = readFromDisk(path);
    QVERIFY2(found, "the suite is not on disk");
    QCOMPARE(found->status(), QSettings::NoError);
    QStringList keys = found->allKeys();
    keys.sort();
    QStringList expectedKeys =
        otherKeys + QStringList{timesKey, sequenceKey, sectionsKey, chatLinksKey};
    expectedKeys.sort();
    QCOMPARE(keys, expectedKeys);
    QString problem;
    QCOMPARE(timesIn(found->value(timesKey), &problem), expected.times);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    QCOMPARE(found->value(sequenceKey).toStringList(), expected.sequence);
    QCOMPARE(found->value(sectionsKey).toStringList(), expected.sections);
    QCOMPARE(found->value(chatLinksKey).toStringList(), expected.chatLinks);
}

void TestSuiteExport::initTestCase()
{
    // Before the first QSettings of this process: Qt takes the folder once.
    QVERIFY(m_home.isValid());
    QVERIFY(m_scratch.isValid());
    qputenv("XDG_CONFIG_HOME", m_home.path().toUtf8());
}

void TestSuiteExport::writesFourParallelArrays_data()
{
    QTest::addColumn<Registrations>("registrations");
    QTest::addColumn<SuiteArrays>("expected");

    QTest::newRow("nothing has a chat link") << Registrations{} << SuiteArrays{};
    QTest::newRow("two at 01:00 in different sections, in build order")
        << Registrations{{3600, u"Pearl Dive"_s, u"Lagoon"_s, u"[&BAUAAAA=]"_s},
                         {3600, u"Ferry"_s, u"Pier"_s, u"[&BAIAAAA=]"_s}}
        << SuiteArrays{{3600, 3601},
                       {u"Pearl Dive"_s, u"Ferry"_s},
                       {u"Lagoon"_s, u"Pier"_s},
                       {u"[&BAUAAAA=]"_s, u"[&BAIAAAA=]"_s}};
    QTest::newRow("a third in the same minute")
        << Registrations{{3600, u"Ferry"_s, u"Pier"_s, u"[&BAIAAAA=]"_s},
                         {3600, u"Pearl Dive"_s, u"Lagoon"_s, u"[&BAUAAAA=]"_s},
                         {3600, u"Storm Watch"_s, u"Breakwater"_s, u"[&BAQAAAA=]"_s}}
        << SuiteArrays{{3600, 3601, 3602},
                       {u"Ferry"_s, u"Pearl Dive"_s, u"Storm Watch"_s},
                       {u"Pier"_s, u"Lagoon"_s, u"Breakwater"_s},
                       {u"[&BAIAAAA=]"_s, u"[&BAUAAAA=]"_s, u"[&BAQAAAA=]"_s}};
    // Built in the other order: the arrays follow the start times, not the build.
    QTest::newRow("00:00 and 23:59, 23:59 built first")
        << Registrations{{86340, u"Moonrise"_s, u"Lagoon"_s, u"[&BAYAAAA=]"_s},
                         {0, u"Regatta"_s, u"Pier"_s, u"[&BAEAAAA=]"_s}}
        << SuiteArrays{{0, 86340},
                       {u"Regatta"_s, u"Moonrise"_s},
                       {u"Pier"_s, u"Lagoon"_s},
                       {u"[&BAEAAAA=]"_s, u"[&BAYAAAA=]"_s}};
    QTest::newRow("one event at several times")
        << Registrations{{79200, u"Beacon"_s, u"Breakwater"_s, u"[&BAMAAAA=]"_s},
                         {3600, u"Beacon"_s, u"Breakwater"_s, u"[&BAMAAAA=]"_s}}
        << SuiteArrays{{3600, 79200},
                       {u"Beacon"_s, u"Beacon"_s},
                       {u"Breakwater"_s, u"Breakwater"_s},
                       {u"[&BAMAAAA=]"_s, u"[&BAMAAAA=]"_s}};
}

void TestSuiteExport::writesFourParallelArrays()
{
    QFETCH(Registrations, registrations);
    QFETCH(SuiteArrays, expected);

    QTemporaryDir folder;
    const QString path = folder.filePath(u"suite.conf"_s);
    QSettings suite(path, SettingsStore::format());
    QVERIFY(exportToSharedSuite(registered(registrations), suite).ok());
    // Read while the writer still lives: the export has put the arrays on disk itself.
    verifyOnDisk(path, expected);
}

void TestSuiteExport::writesInAFixedOrder()
{
    // A reader in another process relies on this order alone; the export never reads the suite.
    RecordingStore suite;
    exportToSharedSuite(registered({{3600, u"Ferry"_s, u"Pier"_s, u"[&BAIAAAA=]"_s},
                                    {0, u"Regatta"_s, u"Pier"_s, u"[&BAEAAAA=]"_s}}),
                        suite);
    QCOMPARE(suite.accesses(), (QStringList{u"write varn_global_events_times"_s,
                                            u"write varn_global_events_sequence"_s,
                                            u"write varn_global_events_sections"_s,
                                            u"write varn_global_events_chatlinks"_s}));
}

void TestSuiteExport::keepsOtherKeysAndReplacesTheArrays_data()
{
    QTest::addColumn<bool>("handWritten");

    QTest::newRow("suite in the store's own form") << false;
    QTest::newRow("suite written by hand as text") << true;
}

void TestSuiteExport::keepsOtherKeysAndReplacesTheArrays()
{
    QFETCH(bool, handWritten);

    QTemporaryDir folder;
    const QString path = folder.filePath(u"suite.conf"_s);
    if (handWritten) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[General]\n"
                   "varn_global_events_times=1, 2, 3\n"
                   "varn_global_events_sequence=Old A, Old B, Old C\n"
                   "varn_global_events_sections=S, S, S\n"
                   "varn_global_events_chatlinks=a, b, c\n"
                   "\n[companion]\ntheme=dark\n");
    } else {
        QSettings earlier(path, SettingsStore::format());
        earlier.setValue(timesKey, QVariantList{qint64{1}, qint64{2}, qint64{3}});
        earlier.setValue(sequenceKey, QStringList{u"Old A"_s, u"Old B"_s, u"Old C"_s});
        earlier.setValue(sectionsKey, QStringList{u"S"_s, u"S"_s, u"S"_s});
        earlier.setValue(chatLinksKey, QStringList{u"a"_s, u"b"_s, u"c"_s});
        earlier.setValue(u"companion/theme"_s, u"dark"_s);
    }
    {
        QSettings suite(path, SettingsStore::format());
        QVERIFY(exportToSharedSuite(
                    registered({{7200, u"Pearl Dive"_s, u"Lagoon"_s, u"[&BAUAAAA=]"_s}}), suite)
                    .ok());
    }

    verifyOnDisk(path, {{7200}, {u"Pearl Dive"_s}, {u"Lagoon"_s}, {u"[&BAUAAAA=]"_s}},
                 {u"companion/theme"_s});
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(readFromDisk(path)->value(u"companion/theme"_s).toString(), u"dark"_s);
}

void TestSuiteExport::arraysSurviveARestart()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"suite.conf"_s);
    {
        QSettings suite(path, SettingsStore::format());
        QVERIFY(
            exportToSharedSuite(registered({{0, u"Regatta"_s, u"Pier"_s, u"[&BAEAAAA=]"_s}}), suite)
                .ok());
    }

    // The next run finds them before its own timetable replaces them.
    verifyOnDisk(path, {{0}, {u"Regatta"_s}, {u"Pier"_s}, {u"[&BAEAAAA=]"_s}});
    if (QTest::currentTestFailed())
        return;
    {
        QSettings suite(path, SettingsStore::format());
        QCOMPARE(suite.value(sequenceKey).toStringList(), QStringList{u"Regatta"_s});
        QVERIFY(exportToSharedSuite(registered({{3600, u"Ferry"_s, u"Pier"_s, u"[&BAIAAAA=]"_s}}),
                                    suite)
                    .ok());
    }
    verifyOnDisk(path, {{3600}, {u"Ferry"_s}, {u"Pier"_s}, {u"[&BAIAAAA=]"_s}});
}

void TestSuiteExport::unusableSuiteIsSkipped_data()
{
    QTest::addColumn<QString>("relativePath");

    // The first two hold for root too, unlike a file without permissions.
    QTest::newRow("its folder is a file") << u"file/suite.conf"_s;
    QTest::newRow("the suite is a folder") << u"folder"_s;
    // Rewriting it would keep only the four arrays and lose what companions wrote there.
    QTest::newRow("a text suite that does not parse") << u"broken.conf"_s;
}

void TestSuiteExport::unusableSuiteIsSkipped()
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
    const Status status =
        exportToSharedSuite(registered({{0, u"Regatta"_s, u"Pier"_s, u"[&BAEAAAA=]"_s}}), suite);
    QVERIFY(!status.ok());
    QVERIFY2(status.error().contains(folder.filePath(relativePath)), qPrintable(status.error()));

    QCOMPARE(QFileInfo(folder.filePath(u"file"_s)).size(), 0);
    QVERIFY(QFileInfo(folder.filePath(u"folder"_s)).isDir());
    QFile file(folder.filePath(u"broken.conf"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), broken);
}

void TestSuiteExport::writesTheUsersSuite()
{
    QVERIFY(exportToSharedSuite(registered({{3600, u"Pearl Dive"_s, u"Lagoon"_s, u"[&BAUAAAA=]"_s},
                                            {3600, u"Ferry"_s, u"Pier"_s, u"[&BAIAAAA=]"_s}}))
                .ok());
    verifyOnDisk(m_home.filePath(u"tolmerkvarn.eventtimer.conf"_s),
                 {{3600, 3601},
                  {u"Pearl Dive"_s, u"Ferry"_s},
                  {u"Lagoon"_s, u"Pier"_s},
                  {u"[&BAUAAAA=]"_s, u"[&BAIAAAA=]"_s}});
}

QTEST_GUILESS_MAIN(TestSuiteExport)
#include "tst_suiteexport.moc"
