#pragma once

#include <QObject>
#include <QPointer>

namespace eventtimer {

class ReminderChoices;
class TimelineWidget;

// The player's reminder marks on the time axis: the boxes of the marked events carry a bell
// that follows the choices, and R on the focused box sets or removes its event's mark.
class ReminderMarks : public QObject
{
    Q_OBJECT

public:
    explicit ReminderMarks(QObject *parent = nullptr);

    void setChoices(ReminderChoices *choices);
    // The timeline, once it has its boxes.
    void setTimeline(TimelineWidget *timeline);

private:
    void show();

    QPointer<ReminderChoices> m_choices;
    QPointer<TimelineWidget> m_timeline;
};

} // namespace eventtimer
