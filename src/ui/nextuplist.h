#pragma once

#include "model/section.h"
#include "timetable/nextup.h"
#include "timetable/timetablelayout.h"

#include <QHash>
#include <QPointer>
#include <QTreeWidget>

namespace eventtimer {

class Clock;
class Event;
class ReminderChoices;

// Next up: the timetable's boxes from the present on as a list, one row each by start (see
// nextUp): the start it shows, how soon ("in 12 min", "now"), the event with its icon and, when
// marked, its bell, the section, and a copy button. Enter, or a click on the button, asks for
// the chat link to be copied, as a box's button does. Only marked events, when asked. Rows are
// real items, so the keyboard and screen readers reach each of them. It is made again at every
// minute of the clock while it is shown.
class NextUpList : public QTreeWidget
{
    Q_OBJECT

public:
    enum Column
    {
        Start,
        Soon,
        Name,
        Section,
        Copy
    };

    explicit NextUpList(Clock &clock, QWidget *parent = nullptr);

    // The timetable's boxes and its sections, in the document's order.
    void setDay(const QList<EventBoxGeometry> &boxes, const SectionList &sections);
    // The player's marks, for the bells and for showing only marked events.
    void setChoices(ReminderChoices *choices);
    void setMarkedOnly(bool markedOnly);
    // The rows for the present, kept current while shown; the current row stays on its box.
    void refresh();

    QSize sizeHint() const override;

    // The box of a row.
    qsizetype boxOf(const QTreeWidgetItem *item) const;

Q_SIGNALS:
    void copyRequested(const QString &chatLink);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QIcon iconFor(const Event &event, bool marked);
    // Decodes the icons the rows went without, and makes the rows again.
    void showIcons();
    // Makes the rows again at the clock's next minute.
    void followMinute();
    void copy(QTreeWidgetItem *item);

    Clock &m_clock;
    QList<EventBoxGeometry> m_boxes;
    SectionList m_sections;
    QPointer<ReminderChoices> m_choices;
    bool m_markedOnly = false;
    QHash<std::pair<const Event *, bool>, QIcon> m_icons;
    bool m_iconsAwaited = false;
    bool m_minuteFollowed = false;
};

} // namespace eventtimer
