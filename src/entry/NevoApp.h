#pragma once

#include <memory>

#include "core/debugLog.h"
#include "entry/AppDelegate.h"

namespace nevo {

/// The program on a desktop: holds the delegate and tells the desktop's application to call it.
/// Make one before the loop runs. After `willTerminate`, drop what is left in the loop's queue and
/// its tasks first, then this.
class NevoApp {
public:
    explicit NevoApp(const Platform& platform);

    AppDelegate& delegate() { return *appDelegate; }

private:
    const Platform platform;
    DebugLogScope logScope;
    std::shared_ptr<AppDelegate> appDelegate;
};

}  // namespace nevo
