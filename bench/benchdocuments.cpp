#include "benchdocuments.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace eventtimer::bench {

QByteArray readDocument(const QString &name)
{
    QFile file(QString::fromUtf8(EVENTTIMER_TEST_DATA_DIR) + u"/documents/"_s + name);
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

} // namespace eventtimer::bench
