#pragma once

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

namespace eventtimer {

class Event;
class ReminderChoices;

// The menu of an event's box: copy its chat link or its name, open its wiki page, set or
// remove its event's reminder, the reminder preferences.
class BoxMenu : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    // "Copy chat link": the box's link is copied as its copy button copies it.
    void copyRequested(qsizetype box);
    void preferencesRequested();

public:
    explicit BoxMenu(QObject *parent = nullptr);

    // The player's reminder marks; without them the menu has no reminder items.
    void setReminderChoices(ReminderChoices *choices);
    // The settings' wiki address template ("https://…/{page}"); without it, no wiki item.
    void setWikiPageUrl(const QString &urlTemplate) { m_wikiPageUrl = urlTemplate; }

    // The menu of a box showing an event, for the caller to show; it deletes itself once
    // closed.
    QMenu *menuFor(qsizetype box, const std::shared_ptr<Event> &event, QWidget *parent);

private:
    QPointer<ReminderChoices> m_choices;
    QString m_wikiPageUrl;
};

} // namespace eventtimer
