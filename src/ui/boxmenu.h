#pragma once

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QString>

namespace eventtimer {

class ReminderChoices;
class TimelineWidget;

// The menu of an event's box: copy its chat link or its name, open its wiki page, set or
// remove its event's reminder, the reminder preferences.
class BoxMenu : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void preferencesRequested();

public:
    explicit BoxMenu(QObject *parent = nullptr);

    // The player's reminder marks; without them the menu has no reminder items.
    void setReminderChoices(ReminderChoices *choices);
    // The settings' wiki address template ("https://…/{page}"); without it, no wiki item.
    void setWikiPageUrl(const QString &urlTemplate) { m_wikiPageUrl = urlTemplate; }

    // The timeline whose boxes have the menu (a right click, the menu key), and the widget its
    // menus belong to.
    void attach(TimelineWidget *timeline, QWidget *parent);

private:
    // The menu of a box; it deletes itself once closed.
    QMenu *menuFor(qsizetype box);

    QPointer<TimelineWidget> m_timeline;
    QPointer<QWidget> m_parent;
    QPointer<ReminderChoices> m_choices;
    QString m_wikiPageUrl;
};

} // namespace eventtimer
