#include "timetable/boxtexts.h"

#include "model/event.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace eventtimer::boxtexts {

namespace {

constexpr qint64 dayMinutes = 24 * 60;

} // namespace

QString clock(qint64 minuteOfDay)
{
    // Written out digit by digit: a build makes hundreds of these, and QTime::toString reads
    // its format anew each time.
    const auto minute = static_cast<int>((minuteOfDay % dayMinutes + dayMinutes) % dayMinutes);
    const int hours = minute / 60;
    const int minutes = minute % 60;
    const QChar text[] = {QChar(u'0' + hours / 10), QChar(u'0' + hours % 10), u':',
                          QChar(u'0' + minutes / 10), QChar(u'0' + minutes % 10)};
    return QString(text, 5);
}

QString timeSpan(const EventBoxGeometry &box)
{
    const qint64 length = box.item->duration;
    const qint64 hours = length / 60;
    const qint64 minutes = length % 60;
    QString duration;
    if (hours > 0)
        duration = QString::number(hours) + u" h"_s;
    if (minutes > 0 || hours == 0)
        duration += (duration.isEmpty() ? u""_s : u" "_s) + QString::number(minutes) + u" min"_s;
    return clock(box.shownMinute) + u"\u2013"_s + clock(box.shownMinute + length) + u", "_s +
           duration;
}

QString details(const EventBoxGeometry &box)
{
    const Event &event = box.event();
    QStringList lines{event.name};
    if (event.section)
        lines.append(*event.section);
    lines.append(timeSpan(box) + (box.tomorrow ? u", tomorrow"_s : QString()));
    if (event.chatLink)
        lines.append(*event.chatLink);
    return lines.join(u'\n');
}

QString description(const EventBoxGeometry &box, bool marked)
{
    const std::optional<QString> &section = box.event().section;
    QString description = clock(box.shownMinute);
    if (section)
        description += u", "_s + *section;
    if (box.tomorrow)
        description += u", tomorrow"_s;
    if (marked)
        description += u", reminder set"_s;
    return description;
}

} // namespace eventtimer::boxtexts
