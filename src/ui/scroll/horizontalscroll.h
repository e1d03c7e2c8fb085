#pragma once

#include <QScrollArea>

namespace eventtimer {

// The horizontally scrolling time axis.
class HorizontalScroll : public QScrollArea
{
    Q_OBJECT

public:
    explicit HorizontalScroll(QWidget *parent = nullptr);
};

} // namespace eventtimer
