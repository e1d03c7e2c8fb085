#pragma once

#include "model/clock.h"
#include "ui/viewcontroller.h"

#include <QMainWindow>
#include <QTextStream>

#include <memory>

namespace eventtimer {

// The program's one window with its controller, wired to the user's settings store, the event
// service and the shared suite: what main() starts, and what the start-up benchmark measures.
class TimetableWindow
{
public:
    explicit TimetableWindow(Clock &clock);

    // Loads the sections (from the store, or downloaded) and shows the window; the timetable
    // is built when the window first appears.
    void show();

    QMainWindow &window() { return m_window; }
    ViewController &controller() { return *m_controller; }

private:
    Clock &m_clock;
    QTextStream m_out;
    QTextStream m_err;
    std::unique_ptr<ViewController> m_controller;
    QMainWindow m_window;
};

} // namespace eventtimer
