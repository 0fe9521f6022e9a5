#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/AppState.h"
#include "core/BarItem.h"
#include "discovery/MenuBarScanner.h"
#include "placement/ItemMover.h"
#include "placement/SectionManager.h"
#include "placement/StatusItemPreferenceRepair.h"
#include "platform/Platform.h"
#include "surfaces/OnboardingCoordinator.h"

namespace nevo {

/// The services that live as long as the process and outlive every task.
struct SharedServices {
    MenuBarScanner& scanner;
    ItemMover& mover;
    OnboardingCoordinator& onboarding;
};

/// The hub: what a click, the hot key or a timer does to the hidden section. Each group of its
/// operations has a file of its own. Main thread only; callbacks and tasks hold it weakly and do
/// nothing once it is gone.
class StatusBarController : public std::enable_shared_from_this<StatusBarController> {
public:
    /// What runs an update check; the argument is the row of the menu that asked, if one did.
    using UpdateCheck = std::function<void(const MenuItem* sender)>;

    /// Builds the status items and installs monitors and observers. `appState` and the services
    /// outlive it.
    static std::shared_ptr<StatusBarController> create(const Platform& platform, AppState& appState,
                                                       SharedServices services,
                                                       UpdateCheck checkForUpdates);

    /// Puts back everything that would outlive the process: after it no item of another program is
    /// hidden.
    void tearDown();

    // Toggle and collapse.
    /// The main action, of a click and of every other trigger.
    void toggle();
    void togglePushMode();
    void toggleShelfMode();
    /// Hides what is left of `toggleX` (screen coordinates). The branch is chosen by the mode when
    /// the task starts.
    static Task<> collapseAfterScan(std::weak_ptr<StatusBarController> owner, bool repair,
                                    std::function<void()> completion, double toggleX);
    void performCollapse();
    void expandHiddenSection();
    void refreshToggleButton();
    void expandAndClickItem(const BarItem& item);

    /// Takes a scan into the section snapshot and the published state. Unless told to skip it, logs
    /// which rules the items' places don't fit.
    void updateSnapshot(const ScannedBarItems& items, bool skipReconcile);

    // Rule engine: each task is given the controller weakly and ends when it is gone.
    /// Applies one changed rule to its item.
    static Task<> handleRuleChange(std::weak_ptr<StatusBarController> owner,
                                   std::string persistedID, IconRule rule);
    /// Applies all stored rules once the first snapshot is there; waits for it without end.
    static Task<> replayAllRulesOnStartup(std::weak_ptr<StatusBarController> owner);
    /// Drags items that are to be shown into the room right of the toggle, as many as fit.
    static Task<> moveAlwaysShowItems(std::weak_ptr<StatusBarController> owner);
    void updateAlwaysHiddenDivider();

    // Item monitor.
    void enforceAlwaysHide(const std::set<WindowNumber>& ownIDs);
    void reassertAlpha(const std::set<WindowNumber>& ownIDs);

    /// Polls until the toggle has stopped moving, then makes the first collapse.
    void waitForStableToggle(int attempt);
    /// As `waitForStableToggle(0)`, but only logs while the accessibility permission is missing.
    void startFirstCollapse();
    void displayModeChanged();

    // Toggle position.
    /// The toggle button's frame on the screen, origin at the bottom left; nothing without button
    /// or window.
    std::optional<Rect> toggleButtonScreenFrame() const;
    bool isPlausibleToggleFrame(const Rect& frame) const;
    void recordCanonicalToggleX();
    void compensateDrift();
    void rescueTogglePosition();

    /// Starts the one-shot timer that collapses again, where the user wants that.
    void resetAutoHideTimer();

    SectionManager& sections() { return sectionManager; }

private:
    StatusBarController(const Platform& platform, AppState& appState, SharedServices services,
                        UpdateCheck checkForUpdates);
    void install();
    void observeNotifications();
    /// `action` bound weakly to this controller, to be run on the loop's next turn.
    void laterOnMain(void (StatusBarController::*action)());
    void afterDelay(double seconds, void (StatusBarController::*action)());

    void buttonClicked();
    void iconOrSpacingChanged();
    void startCollapse(bool repair, std::function<void()> completion);
    void autoHideFired();
    void clearIsToggling() { isToggling = false; }
    void verifyAfterCollapse();
    void pollStableToggle(int attempt);
    std::string labelFor(const ScannedBarItem& item) const;
    std::vector<AppState::SnapshotItem> snapshotItemsOf(const ScannedBarItems& items) const;
    std::optional<WindowNumber> toggleWindowID() const;
    bool isShelfMode() const { return nevo::isShelfMode(platform.screens, appState); }

    // Rule engine.
    struct ReplayPreparation {
        bool snapshotEmpty = false;
        bool hasAlwaysShow = false;
        bool preparedShow = false;
    };
    struct SafeZone {
        double baseX = 0;
        int capacity = 0;
    };
    struct AlwaysShowPlan {
        ScannedBarItems items;
        double baseX = 0;
    };
    void observeRules();
    static Task<> replayAfterStart(std::weak_ptr<StatusBarController> owner);
    static Task<> filterRuleChange(std::weak_ptr<StatusBarController> owner, UserInfo info);
    static Task<> applyAlwaysShow(std::weak_ptr<StatusBarController> owner, WindowNumber window);
    static Task<> applyAlwaysHide(std::weak_ptr<StatusBarController> owner, WindowNumber window);
    static Task<> moveBehindDivider(std::weak_ptr<StatusBarController> owner, WindowNumber window,
                                    double y);
    static Task<> refreshSnapshot(std::weak_ptr<StatusBarController> owner, double maxAge);
    static Task<> repairDrift(std::weak_ptr<StatusBarController> owner);
    void applyAutomatic(WindowNumber window);
    std::optional<Point> alwaysShowTarget(WindowNumber window);
    std::optional<ScannedBarItem> findItem(const std::string& persistedID) const;
    std::optional<WindowNumber> findWindowByProcess(const std::string& persistedID) const;
    ScannedBarItems snapshotItems(std::initializer_list<SectionName> sections) const;
    std::vector<WindowNumber> otherMenuBarWindows() const;
    /// Nothing when there are no rules.
    std::optional<ReplayPreparation> prepareReplay();
    AlwaysShowPlan planAlwaysShowPlacement();
    SafeZone alwaysShowSafeZone(const ScannedBarItems& all) const;
    bool hideByAlpha(WindowNumber window);
    void showByAlpha(WindowNumber window);

    // Item monitor.
    void startItemMonitor();
    void monitorPass();
    bool isBarInMotion() const;
    void enforceAlwaysShow(const std::set<WindowNumber>& ownIDs);
    bool enforceAlwaysShow(const ScannedBarItem& item, double nevoX);
    void alphaHideStrays(const std::set<WindowNumber>& ownIDs);
    void reconcileReport(const ScannedBarItems& items) const;

    // Hover and blank area.
    void installTriggerMonitors();
    void mouseMoved();
    void checkHover(const Rect& area);
    void blankClicked();
    void startBlankDwell();
    void blankDwellEnded();
    bool isBlankTriggerEligible() const;
    /// Whether the point (origin at the bottom left) is on the part of the menu bar that holds
    /// neither items nor menus.
    bool isBlankMenuBarPoint(Point point) const;

    // Display change and wake.
    void observeWake();
    void observeScreens();
    void screenChanged();
    void waitForStableAfterScreenChange(int attempt, bool reapplyHide);
    void pollAfterScreenChange(int attempt, bool reapplyHide);
    void finishScreenChange(bool reapplyHide);
    void recompensatePositionAfterWake(const std::string& reason);
    void repairAfterWake();
    void postWakeRepair();

    // Context menu.
    bool handleRightClick(const Event& event);
    void showContextMenu();
    std::vector<MenuItem> contextMenu();
    void checkForUpdatesFromMenu(const MenuItem& item);
    void openAbout();
    void quitApp();

    const Platform& platform;
    AppState& appState;
    SharedServices services;
    SectionManager sectionManager;
    /// Goes before the button that it may hang from.
    std::unique_ptr<Popover> popover;
    StatusItemPreferenceRepair preferences;
    UpdateCheck checkForUpdates;

    /// The last known screen frame of the toggle's button.
    Rect savedItemFrame;
    /// What the last collapse hid.
    std::vector<BarItem> cachedHiddenItems;
    /// True for a moment after a push-mode toggle.
    bool isToggling = false;
    bool isContextMenuShowing = false;
    /// Where the toggle belongs; negative before it was recorded.
    double canonicalToggleX = -1.0;
    /// The x seen at the last poll of a stability wait; negative for none.
    double lastStableX = -1.0;

    bool isDraggingMenuBarItem = false;
    bool isDisplayTransitioning = false;
    /// A repair of drifted items is under way; only one runs at a time.
    bool isEnforcingAlwaysShow = false;
    /// Windows that alpha hiding must leave alone.
    std::set<WindowNumber> alwaysShowProtectedWIDs;
    /// When a rule was last accepted, by id and rule.
    std::map<std::string, double> lastRuleChangeTime;

    /// The displays at the last notification.
    std::size_t lastScreenCount = 0;
    Rect lastMainScreenFrame;

    Registration hoverMonitor;
    Registration localHoverMonitor;
    Registration blankClickMonitor;
    Registration blankHoverTimer;
    Registration autoHideTimer;
    Registration itemMonitorTimer;
    Registration rightClickMonitor;
    std::vector<Registration> notificationObservers;
    Registration screenChangeObserver;
};

}  // namespace nevo
