#pragma once

#include <QtGlobal>

#include <memory>

namespace eventtimer {

class Event;

// One occurrence of an event in the day's schedule. Made once, never changed.
class SequenceItem
{
public:
    SequenceItem(std::shared_ptr<Event> event, qint64 duration, double time)
        : event(std::move(event))
        , duration(duration)
        , time(time)
    {}

    const std::shared_ptr<Event> event;
    // Minutes, as the schedule entry gives them.
    const qint64 duration;
    // Start: seconds since 1970-01-01T00:00:00Z.
    const double time;
};

} // namespace eventtimer
