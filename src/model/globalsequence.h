#pragma once

#include "model/event.h"
#include "model/section.h"

#include <QTimeZone>

#include <map>
#include <memory>

namespace eventtimer {

// The day's chat-link occurrences: start in seconds from the start of the day (raised by 1
// while the key is taken) to the event. Companion programs get it through the shared suite.
using GlobalSequence = std::map<qint64, std::shared_ptr<Event>>;

// Enters an event under the first free key at or after seconds, and returns that key.
qint64 registerEvent(GlobalSequence &sequence, qint64 seconds, const std::shared_ptr<Event> &event);

// The chat-link occurrences of the sections in list order, each section's in its sequence
// order, with minutes counted in zone. A section whose first and last registered occurrences
// are the same event (a run across midnight) drops its first one when that starts in the
// day's first minute, so the run is published once.
GlobalSequence globalSequence(const SectionList &sections, const QTimeZone &zone);

} // namespace eventtimer
