#pragma once

#include <QString>
#include <QVariant>

namespace eventtimer {

// A persistent key–value store (the user's settings store in the application). An invalid
// QVariant stands for "nothing stored".
class KeyValueStore
{
public:
    virtual ~KeyValueStore() = default;

    virtual QVariant value(const QString &key) const = 0;
    virtual void setValue(const QString &key, const QVariant &value) = 0;
    virtual void remove(const QString &key) = 0;
};

} // namespace eventtimer
