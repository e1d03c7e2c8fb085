#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QString>

#include <optional>

namespace eventtimer {

// Why bytes hold no event document, for each reader to say in its own words.
struct DocumentJsonError
{
    enum class Kind
    {
        // Not JSON at all: Qt's description of the fault and the byte offset it was found at.
        NotJson,
        // JSON whose top-level value is not an array (Qt takes only an object there otherwise).
        NotArray
    };

    Kind kind = Kind::NotJson;
    QString jsonError;
    int offset = 0;
};

// The event document's top-level array, or why the bytes hold none.
struct DecodedDocument
{
    QJsonArray sections;
    std::optional<DocumentJsonError> error;
};

// The one decoding of the document's bytes, for everything that reads a document.
DecodedDocument decodeDocument(const QByteArray &bytes);

} // namespace eventtimer
