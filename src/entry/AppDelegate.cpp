#include "entry/AppDelegate.h"

#include <utility>

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
      accessibility(desktop),
      onboarding(OnboardingCoordinator::create(desktop, accessibility)) {}

void AppDelegate::applicationDidFinishLaunching() {
    startUpdater();
    appState.setIsExpanded(true);
    startServices();

    auto weak = weak_from_this();
    auto start = [weak] {
        if (auto self = weak.lock()) self->startServices();
    };
    onboarding->onReady = start;
    onboarding->onComplete = [weak] {
        auto self = weak.lock();
        if (!self) return;
        self->startServices();
        self->accessibility.promptMoveToApplicationsIfNeeded();
    };
    if (storedBool(platform.defaults.standard(), onboardingCompletedKey)) {
        onboarding->notifyReady();
        startServices();
        accessibility.promptMoveToApplicationsIfNeeded();
    } else {
        onboarding->show(OnboardingStep::welcome);
    }
}

void AppDelegate::startServices() {
    if (!statusBarController) {
        startFirstServices();
    } else if (platform.accessibility.isProcessTrusted() && !hotKeyService) {
        startFullServices();
        registerHotKey();
    }
}

void AppDelegate::startFirstServices() {
    auto weak = weak_from_this();
    // The flow that the toggle opens makes the first collapse itself; the hot key is left to come.
    auto granted = [weak] {
        auto self = weak.lock();
        if (!self || self->hotKeyService) return;
        self->hotKeyService = std::make_unique<HotKeyService>(self->platform, self->appState);
        self->registerHotKey();
    };
    SettingsServices settingsServices{platform,
                                      appState,
                                      scanner,
                                      accessibility,
                                      [weak] {
                                          if (auto self = weak.lock())
                                              self->checkForUpdates(nullptr);
                                      },
                                      [weak]() -> Updater* {
                                          auto self = weak.lock();
                                          return self ? self->updaterController.get() : nullptr;
                                      },
                                      [weak]() -> const SectionManager* {
                                          auto self = weak.lock();
                                          if (!self || !self->statusBarController) return nullptr;
                                          return &self->statusBarController->sections();
                                      },
                                      [weak](const std::string& id) {
                                          auto self = weak.lock();
                                          if (self && self->statusBarController)
                                              self->statusBarController->bringOut(id);
                                      }};
    settings = SettingsWindowController::create(std::move(settingsServices));
    auto openSettings = [window = std::weak_ptr(settings)] {
        if (auto open = window.lock()) open->showSettings();
    };
    SharedServices services{screenCapture, scanner, mover, *onboarding, openSettings, granted};
    statusBarController =
        StatusBarController::create(platform, appState, services, [weak](const MenuItem* sender) {
            if (auto self = weak.lock()) self->checkForUpdates(sender);
        });
    // At the very first start nothing is hidden before the user has read what that means.
    if (!storedBool(platform.defaults.standard(), onboardingCompletedKey)) {
        statusBarController->holdFirstCollapse();
        onboarding->onWelcomeLeft = [weak] {
            auto self = weak.lock();
            if (self && self->statusBarController)
                self->statusBarController->releaseFirstCollapse();
        };
    }
    if (platform.accessibility.isProcessTrusted()) startFullServices();
    coverSecondaryBars();
    if (hotKeyService) registerHotKey();
    displayModeObserver =
        platform.notifications.addObserver(nevoDisplayModeChanged, [weak](const Notification&) {
            auto self = weak.lock();
            if (self && self->statusBarController) self->statusBarController->displayModeChanged();
        });
}

void AppDelegate::startFullServices() {
    statusBarController->startFirstCollapse();
    hotKeyService = std::make_unique<HotKeyService>(platform, appState);
}

void AppDelegate::coverSecondaryBars() {
    secondaryCover = SecondaryMenuBarCoverController::create(platform);
    applyCoverSetting(appState.hideSecondaryMenuBar());
    // The one path by which a change of the setting reaches the covers.
    defaultsObserver = platform.notifications.addObserver(
        userDefaultsDidChangeNotification, [this, weak = weak_from_this()](const Notification&) {
            bool wanted = appState.hideSecondaryMenuBar();
            platform.runLoop.post([weak, wanted] {
                if (auto self = weak.lock()) self->applyCoverSetting(wanted);
            });
        });
}

void AppDelegate::applyCoverSetting(bool wanted) {
    if (wanted == secondaryCover->isEnabled) return;
    secondaryCover->isEnabled = wanted;
    secondaryCover->update();
}

void AppDelegate::registerHotKey() {
    hotKeyService->hotKeyHandler = [weak = weak_from_this()] {
        auto self = weak.lock();
        if (!self) return;
        // The toggle may open a window of its own; the key's event is over by then.
        self->platform.runLoop.post([weak] {
            auto held = weak.lock();
            if (held && held->statusBarController) held->statusBarController->toggle(true);
        });
    };
    hotKeyService->registerHotKey();
}

void AppDelegate::applicationWillTerminate() {
    if (statusBarController) statusBarController->tearDown();
    if (hotKeyService) hotKeyService->unregister();
    onboarding->close();
    if (settings) settings->close();
}

}  // namespace nevo
