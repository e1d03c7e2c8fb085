#pragma once

#include <QObject>

namespace eventtimer {

// The application's delegate: told when the application has started and when it is about to
// quit, and does nothing of its own at either. Nothing needs saving at exit: every stored value
// was written when it was made.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // Called by main() once the window is shown and before the event loop runs.
    void applicationDidFinishLaunching();
    // Connected to QCoreApplication::aboutToQuit.
    void applicationWillTerminate();
};

} // namespace eventtimer
