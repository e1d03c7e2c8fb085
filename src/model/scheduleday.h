#pragma once

#include <QDateTime>
#include <QTimeZone>

namespace eventtimer {

// The stretch of time a section's schedule fills: from local midnight of the day that contains
// "now" for a fixed 86400 seconds. On a daylight-saving change day that is not the next local
// midnight, by design. Times are seconds since 1970-01-01T00:00:00Z.
class ScheduleDay
{
public:
    static constexpr double length = 86400.0;

    static ScheduleDay containing(const QDateTime &now, const QTimeZone &zone);
    // From the local midnight that starts date.
    static ScheduleDay of(QDate date, const QTimeZone &zone);

    double start() const { return m_start; }
    double end() const { return m_start + length; }

private:
    explicit ScheduleDay(double start)
        : m_start(start)
    {}

    double m_start;
};

// Conversions between the model's times and Qt's.
double secondsSinceEpoch(const QDateTime &moment);
QDateTime dateTimeFromSeconds(double seconds, const QTimeZone &zone);

} // namespace eventtimer
