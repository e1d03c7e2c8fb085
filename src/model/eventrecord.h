#pragma once

#include "model/eventcolor.h"
#include "model/icon.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <memory>
#include <optional>

namespace eventtimer {

class Event;
class IconLookup;

// Builds the event of one segment record whose "name" is a non-empty string (the parser has
// checked that). Optional keys of the wrong type count as missing. The event has no icon yet:
// the parser looks it up with iconOf() once the section is kept.
std::shared_ptr<Event> parseEvent(const QJsonObject &record, const QString &sectionName);

// The icon of a segment record: looked up under its "icon" text when that is a string.
std::optional<Icon> iconOf(const QJsonObject &record, IconLookup &icons);

// The colour a "bg" value gives: [r, g, b] with components 0…255, or an array whose first
// element is such a triple (unwrapped once only). Anything else gives the default colour.
EventColor colorFromBackground(const QJsonValue &background);

} // namespace eventtimer
