#include "model/clock.h"

#include <QTimer>

namespace eventtimer {

void SystemClock::callAfter(std::chrono::milliseconds delay, QObject *context, Callback callback)
{
    // Precise: the clipboard message's three seconds are what the user sees.
    QTimer::singleShot(delay, Qt::PreciseTimer, context, std::move(callback));
}

void SystemClock::callEvery(std::chrono::milliseconds interval, QObject *context, Callback callback)
{
    auto *timer = new QTimer(context);
    timer->setInterval(interval);
    QObject::connect(timer, &QTimer::timeout, context, std::move(callback));
    timer->start();
}

} // namespace eventtimer
