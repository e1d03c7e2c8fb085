#pragma once

#include <QWidget>

#include <optional>

namespace eventtimer {

// The hour ruler over the time axis: outside the scrolled rows, it follows the axis sideways
// and marks every hour with its time and every quarter with a small tick.
class HourRulerWidget : public QWidget
{
    Q_OBJECT

public:
    explicit HourRulerWidget(QWidget *parent = nullptr);

    // The offset from UTC the boxes' texts use, in minutes.
    void setOffsetMinutes(qint64 minutes);
    // The axis's point at the ruler's left edge.
    void setScroll(int x);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    std::optional<qint64> m_offsetMinutes;
    int m_scroll = 0;
};

} // namespace eventtimer
