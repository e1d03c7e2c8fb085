#include "data/viewsettings.h"

#include "data/settingsstore.h"

namespace eventtimer {

namespace {

QStringList names(const SettingsStore &settings, QStringView key)
{
    QStringList read = settings.value(key).toStringList();
    for (QString &name : read)
        name = name.trimmed();
    read.removeAll(QString());
    read.removeDuplicates();
    return read;
}

} // namespace

ViewChoices readViewChoices(const SettingsStore &settings)
{
    ViewChoices read;
    read.hiddenSections = names(settings, settingskeys::hiddenSections);
    read.hiddenCategories = names(settings, settingskeys::hiddenCategories);
    read.markedOnly = settings.value(settingskeys::markedOnly, false).toBool();
    read.nextUp = settings.value(settingskeys::nextUp, false).toBool();
    return read;
}

Status writeHidden(SettingsStore &settings, bool category, const QString &name, bool hidden)
{
    settings.reload();
    const QStringView key =
        category ? settingskeys::hiddenCategories : settingskeys::hiddenSections;
    QStringList list = names(settings, key);
    if (hidden == list.contains(name))
        return {};
    if (hidden)
        list.append(name);
    else
        list.removeAll(name);
    return settings.write({{key, list}});
}

} // namespace eventtimer
