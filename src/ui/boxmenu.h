#pragma once

#include "model/section.h"

#include <QAction>
#include <QHash>
#include <QList>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

namespace eventtimer {

class ReminderChoices;
class TimelineWidget;

// The menu of an event's box: copy its chat link or its name, open its wiki page, set or
// remove its event's reminder, the reminder preferences, hide its section or its category; then
// what the window offers for the whole view (following the present, Next up, only marked).
class BoxMenu : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void preferencesRequested();
    // "Hide this section", "Hide this category": the name of the one to hide.
    void hideRequested(bool category, const QString &name);

public:
    explicit BoxMenu(QObject *parent = nullptr);

    // The player's reminder marks; without them the menu has no reminder items.
    void setReminderChoices(ReminderChoices *choices);
    // The settings' wiki address template ("https://…/{page}"). An event whose wiki link is a
    // whole https address opens it as it is; others need the template, and without it the item
    // is there but disabled, saying which setting enables it.
    void setWikiPageUrl(const QString &urlTemplate) { m_wikiPageUrl = urlTemplate; }
    // The window's actions for the whole view, at the end of every box's menu.
    void setViewActions(const QList<QAction *> &actions);

    // The timetable's sections: the category of a box's section, for "Hide this category".
    void setSections(const SectionList &sections);

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
    QHash<QString, QString> m_categories;
    QList<QPointer<QAction>> m_viewActions;
};

// "Hide this section" (where there is one) and "Hide this category" at the end of menu; hide
// is called with whether a category is to be hidden, and its name.
void addHideActions(QMenu *menu, const QString &section, const QString &category,
                    const std::function<void(bool, const QString &)> &hide);

} // namespace eventtimer
