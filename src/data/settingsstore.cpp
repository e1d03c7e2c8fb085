#include "data/settingsstore.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace eventtimer {

SettingsStore::SettingsStore(QSettings &settings, QTextStream &err)
    : m_settings(settings)
    , m_err(err)
{
    if (isDamaged())
        reportDamage();
}

std::unique_ptr<QSettings> SettingsStore::openStandard()
{
    // By its path: Qt would name an INI file of the user scope ".ini".
    return std::make_unique<QSettings>(
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
            u"/tolmerkvarn/eventtimer.conf"_s,
        QSettings::IniFormat);
}

QVariant SettingsStore::value(QStringView key) const
{
    return m_settings.value(key.toString());
}

void SettingsStore::setValue(QStringView key, const QVariant &value)
{
    if (!isDamaged())
        m_settings.setValue(key.toString(), value);
}

Status SettingsStore::sync()
{
    if (isDamaged())
        return Error{u"the settings file "_s + m_settings.fileName() + u" is damaged"_s};
    m_settings.sync();
    if (m_settings.status() != QSettings::NoError)
        return Error{u"cannot write the settings file "_s + m_settings.fileName()};
    return {};
}

void SettingsStore::reportDamage()
{
    if (m_reported)
        return;
    m_reported = true;
    m_err << "eventtimer: the settings file " << m_settings.fileName()
          << " cannot be read; it is left as it is, and nothing is saved to it" << Qt::endl;
}

} // namespace eventtimer
