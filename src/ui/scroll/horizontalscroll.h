#pragma once

#include <QScrollArea>

class QWheelEvent;

namespace eventtimer {

// The horizontally scrolling time axis. It sits inside the vertically scrolling timetable, and
// a swipe over it should move only one of the two: at the start of each gesture it decides
// which. A gesture that starts mostly sideways scrolls the day here; any other is handed on to
// the enclosing area. The decision holds until the next gesture begins.
//
// A wheel with Shift held, and Page Up and Page Down, always move the rows: the enclosing
// area's.
class HorizontalScroll : public QScrollArea
{
    Q_OBJECT
    Q_PROPERTY(bool currentScrollIsHorizontal READ currentScrollIsHorizontal WRITE
                   setCurrentScrollIsHorizontal)

public:
    explicit HorizontalScroll(QWidget *parent = nullptr);

    // The direction decided at the start of the latest gesture: true scrolls here, false hands
    // the wheel events on. True until the first gesture.
    bool currentScrollIsHorizontal() const { return m_currentScrollIsHorizontal; }
    void setCurrentScrollIsHorizontal(bool horizontal) { m_currentScrollIsHorizontal = horizontal; }

protected:
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void scrollSideways(QWheelEvent *event);
    void scrollRows(QWheelEvent *event);

    bool m_currentScrollIsHorizontal = true;
};

} // namespace eventtimer
