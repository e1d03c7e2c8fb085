#include "horizontalscroll.h"

namespace eventtimer {

HorizontalScroll::HorizontalScroll(QWidget *parent)
    : QScrollArea(parent)
{
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(false);
}

} // namespace eventtimer
