#pragma once

#include <QEvent>
#include <QObject>

#include <functional>

namespace eventtimer {

// Calls back whenever a watched object receives events of one type (its resizes, its shows),
// without the object knowing. The hook lives as long as the watched object.
class EventHook final : public QObject
{
public:
    EventHook(QObject *watched, QEvent::Type type, std::function<void()> callback)
        : QObject(watched)
        , m_type(type)
        , m_callback(std::move(callback))
    {
        watched->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == m_type)
            m_callback();
        return false;
    }

private:
    QEvent::Type m_type;
    std::function<void()> m_callback;
};

} // namespace eventtimer
