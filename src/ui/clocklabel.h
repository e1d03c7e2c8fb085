#pragma once

#include <QLabel>

namespace eventtimer {

// The clock beside the marker: the local time, white on red, near the top of the time axis
// (the marker itself is painted by the timeline).
class ClockLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ClockLabel(QWidget *parent = nullptr);

    // The time it shows, "HH:mm".
    void setTime(const QString &text);
    // Just right of the marker that stands at markerX on the axis.
    void placeBeside(double markerX);
};

} // namespace eventtimer
