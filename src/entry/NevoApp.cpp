#include "entry/NevoApp.h"

#include "core/Texts.h"

namespace nevo {

NevoApp::NevoApp(const Platform& desktop)
    : platform(desktop),
      logScope(desktop.log),
      appDelegate(std::make_shared<AppDelegate>(platform)) {
    setTextLanguages(platform.application.preferredLanguages());
    std::weak_ptr<AppDelegate> weak = appDelegate;
    platform.application.didFinishLaunching = [weak] {
        if (auto held = weak.lock()) held->applicationDidFinishLaunching();
    };
    platform.application.willTerminate = [weak] {
        if (auto held = weak.lock()) held->applicationWillTerminate();
    };
}

}  // namespace nevo
