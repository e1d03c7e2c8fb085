#include "ui/remindermarks.h"

#include "model/event.h"
#include "model/reminderchoices.h"
#include "ui/timelinewidget.h"

namespace eventtimer {

ReminderMarks::ReminderMarks(QObject *parent)
    : QObject(parent)
{}

void ReminderMarks::setChoices(ReminderChoices *choices)
{
    m_choices = choices;
    connect(choices, &ReminderChoices::changed, this, &ReminderMarks::show);
    show();
}

void ReminderMarks::setTimeline(TimelineWidget *timeline)
{
    m_timeline = timeline;
    connect(timeline, &TimelineWidget::markToggleRequested, this, [this](qsizetype box) {
        if (m_choices)
            m_choices->toggle(m_timeline->boxes().at(box).event().name);
    });
    show();
}

void ReminderMarks::show()
{
    if (m_timeline && m_choices)
        m_timeline->setMarkedNames(m_choices->markedSet());
}

} // namespace eventtimer
