#pragma once

#include <QObject>

class QScrollArea;

namespace eventtimer {

class TimelineWidget;

// Brings a box of the time axis into view, when the timeline asks for it or find shows a match:
// scrolls the area around the timeline sideways and the timetable's area up and down, each as
// little as RevealScroll says.
class BoxReveal : public QObject
{
    Q_OBJECT

public:
    BoxReveal(TimelineWidget *timeline, QScrollArea *sideways, QScrollArea *upright,
              QObject *parent = nullptr);

    void reveal(qsizetype box);

private:
    TimelineWidget *m_timeline;
    QScrollArea *m_sideways;
    QScrollArea *m_upright;
};

} // namespace eventtimer
