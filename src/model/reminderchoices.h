#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

namespace eventtimer {

// What the player asked to be reminded of: events by name (every occurrence, today and on the
// days after), and how many minutes ahead.
class ReminderChoices : public QObject
{
    Q_OBJECT

public:
    static constexpr int defaultLeadMinutes = 5;
    static constexpr int maxLeadMinutes = 60;

    using QObject::QObject;

    bool isMarked(const QString &name) const { return m_marked.contains(name); }
    bool hasMarks() const { return !m_marked.isEmpty(); }
    void setMarked(const QString &name, bool marked);
    void toggle(const QString &name) { setMarked(name, !isMarked(name)); }
    // In alphabetical order.
    QStringList marked() const;
    const QSet<QString> &markedSet() const { return m_marked; }

    int leadMinutes() const { return m_leadMinutes; }
    // Held within 0 and maxLeadMinutes.
    void setLeadMinutes(int minutes);

    // Both at once, as read from the settings file: one change.
    void assign(const QStringList &marked, int leadMinutes);

Q_SIGNALS:
    void changed();

private:
    QSet<QString> m_marked;
    int m_leadMinutes = defaultLeadMinutes;
};

} // namespace eventtimer
