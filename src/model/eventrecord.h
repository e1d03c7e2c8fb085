#pragma once

#include "eventcolor.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <memory>

namespace eventtimer {

class Event;
class IconCache;

// Builds the event of one segment record whose "name" is a non-empty string (the parser has
// checked that). Optional keys of the wrong type count as missing. Without an icon cache the
// event has no icon.
std::shared_ptr<Event> parseEvent(const QJsonObject &record, const QString &sectionName,
                                  IconCache *icons);

// The colour a "bg" value gives: [r, g, b] with components 0…255, or an array whose first
// element is such a triple (unwrapped once only). Anything else gives the default colour.
EventColor colorFromBackground(const QJsonValue &background);

} // namespace eventtimer
