#pragma once

#include "model/result.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringView>

namespace eventtimer {

// Reading the required fields of a decoded document, each with a reason when it is unusable.
// Keys match exactly, case included.
namespace jsonfields {

// A short description of a value for error texts: 30.5, "30", an array, null, …
QString describe(const QJsonValue &value);

Result<QString> requireString(const QJsonObject &object, QStringView key);
Result<QJsonObject> requireObject(const QJsonObject &object, QStringView key);
Result<QJsonArray> requireArray(const QJsonObject &object, QStringView key);

// A JSON number that is a whole number within the signed 64-bit range. 30.5 and "30" are not.
Result<qint64> requireInteger(const QJsonObject &object, QLatin1StringView key);

// The value under key if it is a string; a value of another type counts as missing.
std::optional<QString> optionalString(const QJsonObject &object, QStringView key);

} // namespace jsonfields
} // namespace eventtimer
