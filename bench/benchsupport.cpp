#include "benchsupport.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace eventtimer::bench {

QByteArray readDocument(const QString &name)
{
    QFile file(QString::fromUtf8(EVENTTIMER_FIXTURES_DIR) + u"/documents/"_s + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

QJsonArray replicated(const QJsonArray &document, int copies)
{
    QJsonArray result;
    for (int copy = 1; copy <= copies; ++copy) {
        for (const QJsonValue &element : document) {
            QJsonObject section = element.toObject();
            if (copy > 1)
                section[u"name"] =
                    section.value(u"name").toString() + u" ("_s + QString::number(copy) + u')';
            result.append(section);
        }
    }
    return result;
}

QJsonArray stressDocument()
{
    return replicated(QJsonDocument::fromJson(readDocument(u"realistic.json"_s)).array(),
                      stressCopies);
}

QByteArray realisticWithServedIcons(int count)
{
    QJsonArray sections = QJsonDocument::fromJson(readDocument(u"realistic.json"_s)).array();
    int icons = 0;
    for (QJsonValueRef sectionValue : sections) {
        QJsonObject section = sectionValue.toObject();
        QJsonObject segments = section.value(u"segments").toObject();
        for (auto it = segments.begin(); it != segments.end(); ++it) {
            QJsonObject segment = it.value().toObject();
            if (!segment.contains(u"icon"))
                continue;
            if (icons < count)
                segment.insert(u"icon"_s, u"{service}/icons/file/set/"_s +
                                              QString::number(icons++) + u".png"_s);
            else
                segment.remove(u"icon");
            it.value() = segment;
        }
        section.insert(u"segments"_s, segments);
        sectionValue = section;
    }
    return QJsonDocument(sections).toJson(QJsonDocument::Compact);
}

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

qint64 processStatus(const QByteArray &field)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(field + ':'))
            return line.mid(field.size() + 1).trimmed().split(' ').first().toLongLong();
    return -1;
}

qint64 peakResidentKb()
{
    return processStatus("VmHWM");
}

qint64 instructions(const QStringList &arguments, const QProcessEnvironment &environment,
                    const QString &toggle)
{
    const QString valgrind = QStandardPaths::findExecutable(u"valgrind"_s);
    if (valgrind.isEmpty() || qEnvironmentVariableIsSet("EVENTTIMER_BENCH_COUNTING"))
        return 0;
    QProcess child;
    QProcessEnvironment counting = environment;
    counting.insert(u"EVENTTIMER_BENCH_COUNTING"_s, u"1"_s);
    child.setProcessEnvironment(counting);
    QStringList options{u"--tool=callgrind"_s, u"--callgrind-out-file=/dev/null"_s};
    if (!toggle.isEmpty())
        options.append(u"--toggle-collect="_s + toggle);
    child.start(valgrind,
                options + QStringList{QCoreApplication::applicationFilePath()} + arguments);
    child.waitForFinished(600000);
    const QByteArray report = child.readAllStandardError();
    const qsizetype at = report.lastIndexOf("Collected : ");
    return at < 0 ? 0
                  : report.mid(at + 12, report.indexOf('\n', at) - at - 12).trimmed().toLongLong();
}

} // namespace eventtimer::bench
