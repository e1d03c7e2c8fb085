#pragma once

#include "data/daydata.h"

#include <QObject>
#include <QTextStream>

class QWidget;

namespace eventtimer {

class Clock;
class Reminders;

// Publishes the day a timetable shows: its chat-link occurrences to the shared suite, and its
// occurrences and the next day's to the reminders' plan. Once for the start, which may find
// marks of events the document does not have, it says so.
class DayPublisher : public QObject
{
    Q_OBJECT

public:
    DayPublisher(Clock &clock, QTextStream &err, Reminders &reminders, QObject *parent = nullptr);

    // After the first frame of the timetable on axis: its first paint, or a second, whichever
    // comes first (a minimized window may not paint); at once for a day without rows or an
    // axis in no window shown. A later day asked for in the meantime takes its place.
    void publishAfterFirstFrame(QWidget *axis, const DayData &day);
    void publish(const DayData &day);

private:
    Clock &m_clock;
    QTextStream &m_err;
    Reminders &m_reminders;
    // Which day asked last: an earlier one still waiting gives way.
    quint64 m_asked = 0;
    bool m_unknownMarksSaid = false;
};

} // namespace eventtimer
