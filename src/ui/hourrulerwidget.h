#pragma once

#include "timetable/hourruler.h"

#include <QWidget>

namespace eventtimer {

// The hour ruler over the time axis: outside the scrolled rows, it follows the axis sideways
// and marks every hour with its time and every quarter with a small tick.
class HourRulerWidget : public QWidget
{
    Q_OBJECT

public:
    explicit HourRulerWidget(QWidget *parent = nullptr);

    // The timetable's marks (rulerMarks); none: an empty ruler.
    void setMarks(QList<RulerMark> marks);
    // The axis's point at the ruler's left edge.
    void setScroll(int x);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QList<RulerMark> m_marks;
    int m_scroll = 0;
};

} // namespace eventtimer
