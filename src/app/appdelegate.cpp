#include "app/appdelegate.h"

namespace eventtimer {

void AppDelegate::applicationDidFinishLaunching() {}

void AppDelegate::applicationWillTerminate() {}

} // namespace eventtimer
