#include "ui/clocklabel.h"

#include "timetable/layoutconstants.h"

namespace eventtimer {

ClockLabel::ClockLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setAutoFillBackground(true);
    QPalette red = palette();
    red.setColor(QPalette::Window, Qt::red);
    red.setColor(QPalette::WindowText, Qt::white);
    setPalette(red);
}

void ClockLabel::setTime(const QString &text)
{
    setText(text);
    adjustSize();
}

void ClockLabel::placeBeside(double markerX)
{
    move(static_cast<int>(markerX + 1.0 + LayoutConstants::eventDistance),
         static_cast<int>(LayoutConstants::eventDistance));
}

} // namespace eventtimer
