#include "entry/AppDelegate.h"

#include "core/StoredValues.h"
#include "core/debugLog.h"
#include "core/notificationNames.h"

namespace nevo {

AppDelegate::AppDelegate(const Platform& desktop)
    : platform(desktop),
      appState(desktop),
      screenCapture(desktop),
      scanner(desktop, screenCapture),
      mover(desktop),
      onboarding(desktop.defaults) {}

void AppDelegate::applicationDidFinishLaunching() {
    appState.setIsExpanded(true);
    startServices();

    auto weak = weak_from_this();
    auto start = [weak] {
        if (auto self = weak.lock()) self->startServices();
    };
    onboarding.onReady = start;
    onboarding.onComplete = start;
    if (storedBool(platform.defaults.standard(), onboardingCompletedKey)) {
        onboarding.notifyReady();
        startServices();
    } else {
        onboarding.show(OnboardingStep::welcome);
    }
}

void AppDelegate::startServices() {
    if (!statusBarController) {
        startFirstServices();
    } else if (platform.accessibility.isProcessTrusted() && !hasFullServices) {
        startFullServices();
    }
}

void AppDelegate::startFirstServices() {
    auto weak = weak_from_this();
    SharedServices services{scanner, mover, onboarding};
    statusBarController =
        StatusBarController::create(platform, appState, services, [weak](const MenuItem* sender) {
            if (auto self = weak.lock()) self->checkForUpdates(sender);
        });
    if (platform.accessibility.isProcessTrusted()) startFullServices();
    displayModeObserver =
        platform.notifications.addObserver(nevoDisplayModeChanged, [weak](const Notification&) {
            auto self = weak.lock();
            if (self && self->statusBarController) self->statusBarController->displayModeChanged();
        });
}

void AppDelegate::startFullServices() {
    statusBarController->startFirstCollapse();
    hasFullServices = true;
}

void AppDelegate::applicationWillTerminate() {
    if (statusBarController) statusBarController->tearDown();
}

void AppDelegate::checkForUpdates(const MenuItem*) {
    debugLog("[Updates] check requested but Sparkle updater is unavailable");
}

}  // namespace nevo
