#pragma once

#include <QEventLoop>

#include <optional>
#include <utility>

namespace eventtimer {

// The answer of an asynchronous call, waited for in a local event loop.
// start(done) begins the call, which hands its answer to done, at once or from the event loop.
template <typename Answer, typename Start> Answer waitFor(Start start)
{
    QEventLoop loop;
    std::optional<Answer> answer;
    start([&](Answer value) {
        answer = std::move(value);
        loop.quit();
    });
    if (!answer)
        loop.exec();
    return std::move(*answer);
}

} // namespace eventtimer
