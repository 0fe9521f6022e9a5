#pragma once

#include <memory>

#include "controller/StatusBarController.h"
#include "shelf/SecondaryMenuBarCoverController.h"
#include "surfaces/HotKeyService.h"
#include "surfaces/SettingsWindowController.h"

namespace nevo {

/// The spine of the program: owns the shared state and the services, starts them in their order and
/// puts everything back at quit. Lives for the whole process.
class AppDelegate : public std::enable_shared_from_this<AppDelegate> {
public:
    explicit AppDelegate(const Platform& platform);

    void applicationDidFinishLaunching();
    void applicationWillTerminate();
    /// False, always: closing a window leaves the program running.
    static bool applicationShouldTerminateAfterLastWindowClosed() { return false; }
    /// The update check of menu and settings; `sender` is the menu's row, or nullptr.
    void checkForUpdates(const MenuItem* sender);

    AppState& state() { return appState; }
    OnboardingCoordinator& onboardingCoordinator() { return *onboarding; }
    const ItemMover& itemMover() const { return mover; }
    /// nullptr before the first services have started.
    StatusBarController* controller() { return statusBarController.get(); }

private:
    void startServices();
    void startFirstServices();
    void startFullServices();
    void registerHotKey();
    void coverSecondaryBars();
    void applyCoverSetting(bool wanted);
    // Updates.
    /// Whether the installation says by which key its updates are signed.
    bool hasUpdateKey() const;
    void startUpdater();
    void comeForUpdates();
    void restoreActivationPolicy();

    const Platform& platform;
    AppState appState;
    ScreenCaptureService screenCapture;
    MenuBarScanner scanner;
    ItemMover mover;
    AccessibilityService accessibility;
    std::shared_ptr<OnboardingCoordinator> onboarding;
    std::shared_ptr<SettingsWindowController> settings;
    std::shared_ptr<StatusBarController> statusBarController;
    std::shared_ptr<SecondaryMenuBarCoverController> secondaryCover;
    Registration defaultsObserver;
    Registration displayModeObserver;
    /// nullptr where the program isn't updated by itself.
    std::unique_ptr<Updater> updaterController;
    /// To be put back when an update session ends.
    std::optional<ActivationPolicy> updateCheckPreviousActivationPolicy;
    /// Stands for the services that need the accessibility permission: nothing before they have
    /// started. A permission that is taken away later stops nothing.
    std::unique_ptr<HotKeyService> hotKeyService;
};

}  // namespace nevo
