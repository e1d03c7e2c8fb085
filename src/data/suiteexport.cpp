#include "data/suiteexport.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace eventtimer {

SuiteArrays suiteArrays(const GlobalSequence &globalSequence)
{
    SuiteArrays arrays;
    // std::map walks its keys in ascending order.
    for (const auto &[key, event] : globalSequence) {
        arrays.times.append(key);
        arrays.sequence.append(event->name);
        // Every registered event has both: its section's name from the parser, and a chat link
        // because only such events are registered.
        arrays.sections.append(event->section.value_or(QString()));
        arrays.chatLinks.append(event->chatLink.value_or(QString()));
    }
    return arrays;
}

QByteArray suiteJson(const GlobalSequence &globalSequence, const QDateTime &now)
{
    const SuiteArrays arrays = suiteArrays(globalSequence);
    QJsonArray times;
    for (const qint64 time : arrays.times)
        times.append(time);
    const QDateTime utc = now.toUTC();
    const QDateTime dayStart = utc.date().startOfDay(QTimeZone::utc()).toUTC();
    const QList<std::pair<QStringView, QJsonValue>> members{
        {suitekeys::times, times},
        {suitekeys::sequence, QJsonArray::fromStringList(arrays.sequence)},
        {suitekeys::sections, QJsonArray::fromStringList(arrays.sections)},
        {suitekeys::chatLinks, QJsonArray::fromStringList(arrays.chatLinks)},
        {suitekeys::axisDayStart, dayStart.toString(Qt::ISODate)},
        {suitekeys::writtenAt, utc.toString(Qt::ISODate)}};
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

Status exportToSharedSuite(const GlobalSequence &globalSequence, const QDateTime &now,
                           const QString &path)
{
    const QString file = path.isEmpty() ? suitekeys::suitePath() : path;
    QSaveFile suite(file);
    if (!QDir().mkpath(QFileInfo(file).path()) || !suite.open(QIODevice::WriteOnly))
        return Error{u"cannot write the shared suite "_s + file + u": "_s + suite.errorString()};
    suite.write(suiteJson(globalSequence, now));
    if (!suite.commit())
        return Error{u"cannot write the shared suite "_s + file + u": "_s + suite.errorString()};
    return {};
}

} // namespace eventtimer
