#include "ui/boxmenu.h"

#include "model/event.h"
#include "model/reminderchoices.h"
#include "model/wikipage.h"
#include "ui/timelinewidget.h"

#include <QAction>
#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace eventtimer {

BoxMenu::BoxMenu(QObject *parent)
    : QObject(parent)
{}

void BoxMenu::setReminderChoices(ReminderChoices *choices)
{
    m_choices = choices;
}

void BoxMenu::setViewActions(const QList<QAction *> &actions)
{
    m_viewActions = QList<QPointer<QAction>>(actions.cbegin(), actions.cend());
}

void BoxMenu::setSections(const SectionList &sections)
{
    m_categories.clear();
    for (const std::shared_ptr<Section> &section : sections)
        m_categories.insert(section->name, section->category);
}

void BoxMenu::attach(TimelineWidget *timeline, QWidget *parent)
{
    m_timeline = timeline;
    m_parent = parent;
    connect(timeline, &TimelineWidget::menuRequested, this,
            [this](qsizetype box, QPoint at) { menuFor(box)->popup(at); });
}

QMenu *BoxMenu::menuFor(qsizetype box)
{
    auto *menu = new QMenu(m_parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const std::shared_ptr<Event> event = m_timeline->boxes().at(box).item->event;
    // As the box's copy button does.
    QAction *copyLink = menu->addAction(u"Copy chat link"_s, this, [this, box] {
        if (m_timeline)
            m_timeline->pressCopyButton(box);
    });
    copyLink->setEnabled(event->chatLink.has_value());
    menu->addAction(u"Copy name"_s, this,
                    [event] { QGuiApplication::clipboard()->setText(event->name); });
    const std::optional<QUrl> page = wikiPageUrl(m_wikiPageUrl, event->wiki);
    QAction *open = menu->addAction(u"Open wiki page"_s, this, [page] {
        if (page)
            QDesktopServices::openUrl(*page);
    });
    open->setEnabled(page.has_value());
    if (!page && m_wikiPageUrl.isEmpty()) {
        menu->setToolTipsVisible(true);
        open->setToolTip(u"Set wiki_page_url in the settings file to open wiki pages"_s);
    }
    if (m_choices) {
        menu->addSeparator();
        QAction *remind = menu->addAction(u"Remind me of "_s + event->name, this, [this, event] {
            if (m_choices)
                m_choices->toggle(event->name);
        });
        remind->setCheckable(true);
        remind->setChecked(m_choices->isMarked(event->name));
        menu->addAction(u"Reminder preferences\u2026"_s, this,
                        [this] { Q_EMIT preferencesRequested(); });
    }
    menu->addSeparator();
    const QString section = event->section.value_or(QString());
    addHideActions(
        menu, section, m_categories.value(section),
        [this](bool category, const QString &name) { Q_EMIT hideRequested(category, name); });
    if (!m_viewActions.isEmpty())
        menu->addSeparator();
    for (QAction *action : std::as_const(m_viewActions))
        if (action)
            menu->addAction(action);
    return menu;
}

void addHideActions(QMenu *menu, const QString &section, const QString &category,
                    const std::function<void(bool, const QString &)> &hide)
{
    if (!section.isEmpty())
        menu->addAction(u"Hide this section"_s, menu, [hide, section] { hide(false, section); });
    menu->addAction(u"Hide this category"_s, menu, [hide, category] { hide(true, category); });
}

} // namespace eventtimer
