#include "ui/boxmenu.h"

#include "model/event.h"
#include "model/reminderchoices.h"
#include "model/wikipage.h"

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

QMenu *BoxMenu::menuFor(qsizetype box, const std::shared_ptr<Event> &event, QWidget *parent)
{
    auto *menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *copyLink =
        menu->addAction(u"Copy chat link"_s, this, [this, box] { Q_EMIT copyRequested(box); });
    copyLink->setEnabled(event->chatLink.has_value());
    menu->addAction(u"Copy name"_s, this,
                    [event] { QGuiApplication::clipboard()->setText(event->name); });
    if (!m_wikiPageUrl.isEmpty()) {
        const std::optional<QUrl> page = wikiPageUrl(m_wikiPageUrl, event->wiki);
        QAction *open = menu->addAction(u"Open wiki page"_s, this, [page] {
            if (page)
                QDesktopServices::openUrl(*page);
        });
        open->setEnabled(page.has_value());
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
    return menu;
}

} // namespace eventtimer
