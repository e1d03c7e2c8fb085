#include "settingsstore.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace eventtimer {

SettingsStore::SettingsStore(QSettings &settings)
    : m_settings(settings)
{}

std::unique_ptr<QSettings> SettingsStore::openStandard()
{
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                       u"tolmerkvarn"_s, u"eventtimer"_s);
}

std::unique_ptr<QSettings> SettingsStore::openSuite(const QString &suite)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::make_unique<QSettings>(folder + u'/' + suite + u".conf"_s, QSettings::NativeFormat);
}

QVariant SettingsStore::value(const QString &key) const
{
    return m_settings.value(key);
}

void SettingsStore::setValue(const QString &key, const QVariant &value)
{
    if (value.isValid())
        m_settings.setValue(key, value);
    else
        m_settings.remove(key);
}

void SettingsStore::remove(const QString &key)
{
    m_settings.remove(key);
}

bool SettingsStore::sync()
{
    m_settings.sync();
    return m_settings.status() == QSettings::NoError;
}

} // namespace eventtimer
