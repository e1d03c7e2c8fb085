#include "model/jsonfields.h"

#include <QJsonDocument>
#include <QVariant>

#include <cmath>

using namespace Qt::StringLiterals;

namespace eventtimer::jsonfields {

namespace {

QString quoted(QAnyStringView key)
{
    return u'"' + key.toString() + u'"';
}

Error wrongType(QAnyStringView key, const QJsonValue &found, QStringView expected)
{
    if (found.isUndefined())
        return Error{quoted(key) + u" is missing"_s};
    return Error{quoted(key) + u" is not "_s + expected.toString() + u" (found "_s +
                 describe(found) + u')'};
}

} // namespace

QString describe(const QJsonValue &value)
{
    constexpr qsizetype longest = 40;
    switch (value.type()) {
    case QJsonValue::Null:
        return u"null"_s;
    case QJsonValue::Bool:
        return value.toBool() ? u"true"_s : u"false"_s;
    case QJsonValue::Double: {
        const QVariant number = value.toVariant();
        if (number.typeId() == QMetaType::LongLong)
            return QString::number(number.toLongLong());
        return QString::number(value.toDouble(), 'g', 17);
    }
    case QJsonValue::String: {
        const QString text = value.toString();
        if (text.size() > longest)
            return u'"' + text.left(longest) + u"…\""_s;
        return u'"' + text + u'"';
    }
    case QJsonValue::Array:
        return u"an array"_s;
    case QJsonValue::Object:
        return u"an object"_s;
    case QJsonValue::Undefined:
        break;
    }
    return u"nothing"_s;
}

Result<QString> requireString(const QJsonObject &object, QStringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isString())
        return wrongType(key, value, u"a string");
    return value.toString();
}

Result<QJsonObject> requireObject(const QJsonObject &object, QStringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isObject())
        return wrongType(key, value, u"an object");
    return value.toObject();
}

Result<QJsonArray> requireArray(const QJsonObject &object, QStringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isArray())
        return wrongType(key, value, u"an array");
    return value.toArray();
}

Result<qint64> requireInteger(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble())
        return wrongType(key, value, u"an integer");

    // Whole numbers that fit 64 bits come back exactly from toInteger(); a number it cannot
    // give (a fraction, or beyond the range) comes back as the fallback, which then differs
    // from the number itself. The fallback 0 is harmless: 0 compares equal only to 0.
    const qint64 integer = value.toInteger(0);
    const double real = value.toDouble();
    if (static_cast<double>(integer) == real)
        return integer;
    if (!std::isfinite(real) || std::trunc(real) != real)
        return wrongType(key, value, u"an integer");
    return Error{quoted(key) + u" is out of the 64-bit integer range (found "_s + describe(value) +
                 u')'};
}

std::optional<QString> optionalString(const QJsonObject &object, QStringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isString())
        return std::nullopt;
    return value.toString();
}

} // namespace eventtimer::jsonfields
