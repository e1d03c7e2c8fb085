#include "model/documentjson.h"

#include <QJsonDocument>
#include <QJsonParseError>

namespace eventtimer {

DecodedDocument decodeDocument(const QByteArray &bytes)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return {{},
                DocumentJsonError{DocumentJsonError::Kind::NotJson, parseError.errorString(),
                                  parseError.offset}};
    if (!document.isArray())
        return {{}, DocumentJsonError{DocumentJsonError::Kind::NotArray}};
    return {document.array(), std::nullopt};
}

} // namespace eventtimer
