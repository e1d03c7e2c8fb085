#pragma once

#include "data/keyvaluestore.h"

#include <QHash>

namespace eventtimer {

// A store that lives only as long as the object: for tools that must not touch the user's
// settings, and for tests.
class MemoryStore final : public KeyValueStore
{
public:
    QVariant value(const QString &key) const override { return m_values.value(key); }
    void setValue(const QString &key, const QVariant &value) override
    {
        m_values.insert(key, value);
    }
    void remove(const QString &key) override { m_values.remove(key); }

    qsizetype size() const { return m_values.size(); }

private:
    QHash<QString, QVariant> m_values;
};

} // namespace eventtimer
