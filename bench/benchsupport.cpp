#include "benchsupport.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

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

} // namespace eventtimer::bench
