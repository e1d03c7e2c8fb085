#include "model/reminderchoices.h"

#include <algorithm>

namespace eventtimer {

void ReminderChoices::setMarked(const QString &name, bool marked)
{
    if (marked == isMarked(name))
        return;
    if (marked)
        m_marked.insert(name);
    else
        m_marked.remove(name);
    Q_EMIT changed();
}

QStringList ReminderChoices::marked() const
{
    QStringList names(m_marked.cbegin(), m_marked.cend());
    std::sort(names.begin(), names.end(), [](const QString &a, const QString &b) {
        return QString::localeAwareCompare(a, b) < 0;
    });
    return names;
}

void ReminderChoices::setLeadMinutes(int minutes)
{
    minutes = std::clamp(minutes, 0, maxLeadMinutes);
    if (minutes == m_leadMinutes)
        return;
    m_leadMinutes = minutes;
    Q_EMIT changed();
}

void ReminderChoices::assign(const QStringList &marked, int leadMinutes)
{
    m_marked = QSet<QString>(marked.cbegin(), marked.cend());
    m_leadMinutes = std::clamp(leadMinutes, 0, maxLeadMinutes);
    Q_EMIT changed();
}

} // namespace eventtimer
