#pragma once

#include "model/section.h"
#include "testday.h"
#include "timetable/timetablelayout.h"

#include <QDateTime>
#include <QTimeZone>

namespace eventtimer::testing {

// A small day at UTC, seen at 10:00, so that every box's place is easy to tell:
//
//   row 0  World / Harbour  Tide 09:00–10:00 (link), Market 10:00–10:30 (no link),
//                           Storm 10:30–12:00 (empty link)
//   row 1  World / Forest   Hunt 08:00–10:00 (link), Night 10:00–13:00 (link with markup)
//   row 2  Raids / Vault    no occurrences
//   row 3  Raids / Keep     Siege 00:00–00:30 (link), Watch 00:30–12:00 (no link),
//                           Siege 12:00–12:30, Watch 12:30–24:00: the whole day, like the rows
//                           of a real document, so that the timeline is a day wide
struct SmallDay
{
    static constexpr auto tideLink = u"[&BAAAAA=]";
    static constexpr auto nightLink = u"<b>[&BNIGHT=]</b> & more";

    static QDateTime now()
    {
        return QDateTime(QDate(2026, 11, 22), QTime(10, 0), QTimeZone::utc());
    }

    static SectionList sections()
    {
        const double day =
            QDateTime(now().date(), QTime(0, 0), QTimeZone::utc()).toSecsSinceEpoch();
        const QString siege = QStringLiteral("[&BSIEGE=]");
        return {makeSection(QStringLiteral("World"), QStringLiteral("Harbour"), day,
                            {{QStringLiteral("Tide"), 540, 60, QString::fromUtf16(tideLink)},
                             {QStringLiteral("Market"), 600, 30, std::nullopt},
                             {QStringLiteral("Storm"), 630, 90, QString()}}),
                makeSection(QStringLiteral("World"), QStringLiteral("Forest"), day,
                            {{QStringLiteral("Hunt"), 480, 120, QStringLiteral("[&BHUNT0=]")},
                             {QStringLiteral("Night"), 600, 180, QString::fromUtf16(nightLink)}}),
                makeSection(QStringLiteral("Raids"), QStringLiteral("Vault"), day, {}),
                makeSection(QStringLiteral("Raids"), QStringLiteral("Keep"), day,
                            {{QStringLiteral("Siege"), 0, 30, siege},
                             {QStringLiteral("Watch"), 30, 690, std::nullopt},
                             {QStringLiteral("Siege"), 720, 30, siege},
                             {QStringLiteral("Watch"), 750, 690, std::nullopt}})};
    }
};

// "Siege 12:00": what a box shows, to name it in tests.
inline QString labelOf(const EventBoxGeometry &box)
{
    return box.event().name + u' ' + box.startText;
}

inline qsizetype boxNamed(const QList<EventBoxGeometry> &boxes, const QString &label)
{
    for (qsizetype i = 0; i < boxes.size(); ++i)
        if (labelOf(boxes.at(i)) == label)
            return i;
    return -1;
}

} // namespace eventtimer::testing
