#pragma once

#include "model/clock.h"
#include "smallday.h"
#include "ui/viewcontroller.h"

#include <QTest>

#include <memory>

// The window over the small day (see smallday.h), at 10:00 UTC on a clock that the test moves.
class SmallTimetable
{
public:
    explicit SmallTimetable(QSize size = QSize(1000, 600))
        : m_controller(std::make_unique<eventtimer::ViewController>(nullptr, m_clock))
    {
        QWidget *view = m_controller->view();
        view->resize(size);
        m_controller->viewDidLoad();
        m_controller->loadDidFinish(eventtimer::testing::SmallDay::sections());
        view->show();
        m_controller->viewDidAppear();
    }
    SmallTimetable(const SmallTimetable &) = delete;
    SmallTimetable &operator=(const SmallTimetable &) = delete;

    bool exposed() { return QTest::qWaitForWindowExposed(m_controller->view()); }
    eventtimer::ManualClock &clock() { return m_clock; }
    eventtimer::ViewController &controller() { return *m_controller; }
    eventtimer::TimelineWidget &timeline() { return *m_controller->horizontalScrollContent(); }

    // The index of the box that shows an event starting at a time, e.g. "Siege 12:00".
    qsizetype box(const QString &label)
    {
        return eventtimer::testing::boxNamed(timeline().boxes(), label);
    }
    QString label(qsizetype box)
    {
        return eventtimer::testing::labelOf(timeline().boxes().at(box));
    }

private:
    eventtimer::ManualClock m_clock{eventtimer::testing::SmallDay::now(), QTimeZone::utc()};
    std::unique_ptr<eventtimer::ViewController> m_controller;
};
