#include "suite/suitefile.h"

#include "suite/suiteformat.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

// Far above any day's suite: a larger file is no suite of ours.
constexpr qint64 maxSuiteBytes = 16 * 1024 * 1024;

} // namespace

QByteArray suiteText(const SuiteFile &suite)
{
    QJsonArray times;
    for (const qint64 time : suite.times)
        times.append(time);
    const QList<std::pair<QStringView, QJsonValue>> members{
        {suitekeys::times, times},
        {suitekeys::sequence, QJsonArray::fromStringList(suite.sequence)},
        {suitekeys::sections, QJsonArray::fromStringList(suite.sections)},
        {suitekeys::chatLinks, QJsonArray::fromStringList(suite.chatLinks)},
        {suitekeys::axisDayStart, suite.axisDayStart.toUTC().toString(Qt::ISODate)},
        {suitekeys::writtenAt, suite.writtenAt.toUTC().toString(Qt::ISODate)}};
    QByteArray text = "{\n";
    for (qsizetype i = 0; i < members.size(); ++i) {
        const auto &[key, value] = members.at(i);
        // A value alone is no JSON document: its text is cut from a one-element array's.
        const QByteArray wrapped = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
        text += "    \"" + key.toLatin1() + "\": " + wrapped.mid(1).chopped(1) +
                (i + 1 < members.size() ? ",\n" : "\n");
    }
    return text + "}\n";
}

Status writeSuite(const SuiteFile &suite, const QString &path)
{
    QSaveFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly))
        return Error{u"cannot write the shared suite "_s + path + u": "_s + file.errorString()};
    file.write(suiteText(suite));
    if (!file.commit())
        return Error{u"cannot write the shared suite "_s + path + u": "_s + file.errorString()};
    return {};
}

Result<SuiteFile> readSuite(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return Error{u"no timetable yet (start Event Timer once)"_s};
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxSuiteBytes)
        return Error{u"cannot read "_s + path};
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    const QJsonArray times = object.value(suitekeys::times).toArray();
    const QJsonArray names = object.value(suitekeys::sequence).toArray();
    const QJsonArray sections = object.value(suitekeys::sections).toArray();
    const QJsonArray links = object.value(suitekeys::chatLinks).toArray();
    SuiteFile suite;
    suite.axisDayStart =
        QDateTime::fromString(object.value(suitekeys::axisDayStart).toString(), Qt::ISODate);
    suite.writtenAt =
        QDateTime::fromString(object.value(suitekeys::writtenAt).toString(), Qt::ISODate);
    const auto damaged = [&] {
        return Error{path + u" is damaged"_s};
    };
    if (!suite.writtenAt.isValid() || !suite.axisDayStart.isValid() ||
        names.size() != times.size() || sections.size() != times.size() ||
        links.size() != times.size())
        return damaged();
    for (qsizetype i = 0; i < times.size(); ++i) {
        if (!times.at(i).isDouble() || !names.at(i).isString() || !sections.at(i).isString() ||
            !links.at(i).isString())
            return damaged();
        suite.times.append(times.at(i).toInteger());
        suite.sequence.append(names.at(i).toString());
        suite.sections.append(sections.at(i).toString());
        suite.chatLinks.append(links.at(i).toString());
    }
    return suite;
}

} // namespace eventtimer
