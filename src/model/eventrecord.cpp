#include "model/eventrecord.h"

#include "model/event.h"
#include "model/iconlookup.h"
#include "model/jsonfields.h"

#include <QJsonArray>

#include <cmath>

namespace eventtimer {

std::shared_ptr<Event> parseEvent(const QJsonObject &record, const QString &sectionName)
{
    auto event = std::make_shared<Event>();
    event->section = sectionName;
    event->name = record.value(u"name").toString();
    event->wiki = jsonfields::optionalString(record, u"link").value_or(event->name);
    event->chatLink = jsonfields::optionalString(record, u"chatlink");
    event->backgroundColor = colorFromBackground(record.value(u"bg"));
    return event;
}

std::optional<Icon> iconOf(const QJsonObject &record, IconLookup &icons)
{
    if (const std::optional<QString> url = jsonfields::optionalString(record, u"icon"))
        return icons.icon(*url);
    return std::nullopt;
}

EventColor colorFromBackground(const QJsonValue &background)
{
    if (!background.isArray())
        return {};
    QJsonArray components = background.toArray();
    if (components.size() != 3) {
        if (components.isEmpty() || !components.first().isArray())
            return {};
        components = components.first().toArray();
    }
    if (components.size() != 3)
        return {};

    // Each component is read in single precision and divided by 255 in single precision,
    // then widened: 128 gives 0.501960813999176, not 128/255 in double.
    float unit[3];
    for (int i = 0; i < 3; ++i) {
        const QJsonValue component = components.at(i);
        if (!component.isDouble())
            return {};
        unit[i] = static_cast<float>(component.toDouble()) / 255.0f;
        if (!std::isfinite(unit[i]))
            return {};
    }
    constexpr double alpha = 0.8;
    return EventColor::fromRgb(static_cast<double>(unit[0]), static_cast<double>(unit[1]),
                               static_cast<double>(unit[2]), alpha);
}

} // namespace eventtimer
