#pragma once

#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "controller/RuleChanges.h"
#include "core/AppState.h"
#include "core/BarItem.h"
#include "core/KnownItems.h"
#include "discovery/MenuBarScanner.h"
#include "placement/AlwaysHiddenArea.h"
#include "placement/ItemMover.h"
#include "placement/RulePlaces.h"
#include "placement/SectionManager.h"
#include "placement/StatusItemPreferenceRepair.h"
#include "platform/Platform.h"
#include "shelf/DecoyPanelController.h"
#include "shelf/NevoBar.h"
#include "shelf/ShelfController.h"
#include "surfaces/OnboardingCoordinator.h"

namespace nevo {

/// The services that live as long as the process and outlive every task.
struct SharedServices {
    ScreenCaptureService& screenCapture;
    MenuBarScanner& scanner;
    ItemMover& mover;
    OnboardingCoordinator& onboarding;
    /// Opens the settings window.
    std::function<void()> openSettings;
    /// Told when a flow that the controller opened has brought the accessibility permission.
    std::function<void()> accessibilityGranted;
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
    /// The main action, of a click and of every other trigger. Whoever has called it `byKeys` can
    /// go on with them in the shelf.
    void toggle(bool byKeys = false);
    void togglePushMode();
    void toggleShelfMode(bool byKeys = false);
    /// Hides what is left of `toggleX` (screen coordinates). The branch is chosen by the mode when
    /// the task starts.
    static Task<> collapseAfterScan(std::weak_ptr<StatusBarController> owner,
                                    std::function<void()> completion, double toggleX);
    /// Hides in push mode, also where nothing is to be hidden yet.
    void collapsePushSection(std::vector<BarItem> hiding);
    void performCollapse();
    void expandHiddenSection();
    void showPopoverContent();
    void refreshToggleButton();
    void expandAndClickItem(const BarItem& item);
    /// Shows an item that is always hidden beside the toggle for a minute.
    void bringOut(const std::string& persistedID);

    /// Takes a scan into the section snapshot and the published state. Unless told to skip it, logs
    /// which rules the items' places don't fit.
    void updateSnapshot(const ScannedBarItems& items, bool skipReconcile);

    // Rule engine: each task is given the controller weakly and ends when it is gone.
    /// Applies one changed rule to its item.
    static Task<> handleRuleChange(std::weak_ptr<StatusBarController> owner, RuleChange change);
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
    /// Does nothing once the user has toggled, or while it is held.
    void startFirstCollapse();
    /// Lets the section stay open until it is released, or the user toggles.
    void holdFirstCollapse() { isFirstCollapseHeld = true; }
    void releaseFirstCollapse();
    void displayModeChanged();

    // Rules of applications.
    /// Another program has come to the front: what the rule of the one before changed goes back,
    /// and its own rule comes into force.
    void handleAppActivation(const Notification& notification);
    /// No program is in front: the rule in force ends, unless one comes there within a second.
    void handleEmptyFront();
    void restoreAppRuleOverrides();
    /// Changes the opacity of items for as long as the application is in front. `generation` is
    /// `appRuleGeneration` when it was asked for: an activation or a change of the rule that comes
    /// before it has its scan calls it off.
    static Task<> applyAppRule(std::weak_ptr<StatusBarController> owner, int generation,
                               std::set<std::string> visibleIcons,
                               std::set<std::string> hiddenIcons);

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
    /// Its counterpart for the floating bar.
    void startShelfAutoHideTimer();

    SectionManager& sections() { return sectionManager; }
    /// nullptr before its first use.
    const ShelfController* shelfInUse() const { return shelfController.get(); }

private:
    StatusBarController(const Platform& platform, AppState& appState, SharedServices services,
                        UpdateCheck checkForUpdates);
    void install();
    void observeNotifications();
    /// `action` bound weakly to this controller, to be run on the loop's next turn.
    void laterOnMain(void (StatusBarController::*action)());
    void afterDelay(double seconds, void (StatusBarController::*action)());

    void buttonClicked();
    void permissionsAnswered();
    void iconOrSpacingChanged();
    /// `completion` is called in shelf mode, where something was hidden.
    void startCollapse(std::function<void()> completion);
    /// As the program's own doing: the section closes whatever stands in it.
    void startOwnCollapse();
    static Task<> collapseUnasked(std::weak_ptr<StatusBarController> owner, double toggleX);
    void autoHideFired();
    void clearIsToggling() { isToggling = false; }
    void verifyAfterCollapse();
    void pollStableToggle(int attempt);
    std::vector<AppState::SnapshotItem> snapshotItemsOf(const ScannedBarItems& items) const;
    std::optional<WindowNumber> toggleWindowID() const;
    bool isShelfMode() const { return nevo::isShelfMode(platform.screens, appState); }

    // Rule engine.
    struct ReplayPreparation {
        bool snapshotEmpty = false;
        bool hasAlwaysShow = false;
        bool preparedShow = false;
        bool preparedHide = false;
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
    void applyFrontRule(const ScannedBarItems& items);
    static std::shared_ptr<StatusBarController> carryingOut(
        const std::weak_ptr<StatusBarController>& owner, const RuleChange& change);
    static Task<> applyAutomatic(std::weak_ptr<StatusBarController> owner, RuleChange change,
                                 WindowNumber window);
    static Task<> returnToPlace(std::weak_ptr<StatusBarController> owner, std::string id,
                                WindowNumber window);
    static Task<> applyAlwaysShow(std::weak_ptr<StatusBarController> owner, RuleChange change,
                                  WindowNumber window);
    static Task<> applyAlwaysHide(std::weak_ptr<StatusBarController> owner, RuleChange change,
                                  WindowNumber window);
    static Task<> moveBehindDivider(std::weak_ptr<StatusBarController> owner, RuleChange change,
                                    WindowNumber window, double y);
    static Task<> arrangeAlwaysHidden(std::weak_ptr<StatusBarController> owner);
    bool mustArrangeAlwaysHidden() const;
    std::vector<WindowNumber> openBlanked();
    ScannedBarItems itemsRuledHidden() const;
    /// Their windows.
    std::set<WindowNumber> pinnedWindows() const;
    /// Also for a program that isn't there.
    bool hasAlwaysHideRule() const;
    static Task<> refreshSnapshot(std::weak_ptr<StatusBarController> owner, double maxAge);
    static Task<> repairDrift(std::weak_ptr<StatusBarController> owner);
    std::optional<Point> alwaysShowTarget(WindowNumber window);
    std::optional<ScannedBarItem> findItem(const std::string& persistedID) const;
    std::optional<WindowNumber> findWindowByProcess(const std::string& persistedID) const;
    ScannedBarItems snapshotItems(std::initializer_list<SectionName> sections) const;
    std::vector<WindowNumber> otherMenuBarWindows() const;
    /// Nothing when there are no rules.
    std::optional<ReplayPreparation> prepareReplay();
    AlwaysShowPlan planAlwaysShowPlacement();
    SafeZone alwaysShowSafeZone(const ScannedBarItems& all, const Rect& toggle) const;
    void showByRule(WindowNumber window);

    // Changes of the row.
    static Task<> takeInRow(std::weak_ptr<StatusBarController> owner);
    ScannedBarItems itemsToReturn() const;
    void applyRulesToSnapshot();
    void watchRow();

    // Items that have never been in the row.
    void noteNewItems();
    static Task<> showNewItems(std::weak_ptr<StatusBarController> owner);

    // Item monitor.
    void startItemMonitor();
    void monitorPass();
    void enforceRules();
    bool isBarInMotion() const;
    void enforceAlwaysShow(const std::set<WindowNumber>& ownIDs);
    bool enforceAlwaysShow(const ScannedBarItem& item, double nevoX);
    void alphaHideStrays(const std::set<WindowNumber>& ownIDs);
    void reconcileReport(const ScannedBarItems& items) const;
    /// Ids by window, of the hidden and the visible section.
    std::map<WindowNumber, std::string> snapshotIDs() const;

    // A person's Command-drag.
    void installDragDetection();
    void handleTapEvent(const Event& event);
    void handleDragEvent(const Event& event, const char* monitor);
    void tapDragged();
    /// Whether the event is a motion with which a drag of an item begins.
    bool isStartOfDrag(const Event& event);
    void notePress(Point place);
    bool isInMenuBar(Point place) const;
    /// Opens the divider for the drag's duration and notes where everything stands. Turns the loop
    /// for a moment. The same drag calls it many times.
    void startDrag();
    void endDrag();
    void settleDrag(bool wasDraggingToggle, std::optional<Rect> preFrame, int attempt);
    void leaveExpandedAfterDrag();
    static Task<> refreshAfterDrag(std::weak_ptr<StatusBarController> owner);
    /// Fits opacity and rules to where a person has dragged items. True if it changed anything.
    bool reconcileDrag();
    bool hideIfDraggedAcross(WindowNumber window, const Rect& frame, double dividerX,
                             const std::map<WindowNumber, std::string>& ids);
    void hideDragged(WindowNumber window);
    bool endRuleOfDragged(const std::map<WindowNumber, std::string>& ids);
    std::optional<WindowNumber> itemUnder(Point mouse) const;

    // Rules of applications.
    void observeFrontApplication();
    void observeAppRules();
    static Task<> reapplyAppRule(std::weak_ptr<StatusBarController> owner, std::string bundleID);
    std::vector<BarItem> itemsForBar(const ScannedBarItems& items,
                                     const std::set<std::string>& visibleIcons) const;
    void showInBar(const ScannedBarItems& items, const std::set<std::string>& visibleIcons);
    /// After the section has opened or closed. Does nothing without a rule in force.
    void showFrontRuleInBar();
    /// A window's alpha apart from what it is for a moment only; 1 when it can't be read.
    float lastingAlpha(WindowNumber window) const;
    /// True when that changed what can be seen.
    bool hideByAppRule(const ScannedBarItem& item);
    bool showByAppRule(const ScannedBarItem& item);

    // The floating bar.
    /// Built on first use, from which on the bar's callbacks are its own.
    ShelfController& shelf();
    bool isShelfIn(ShelfState::Kind kind) const {
        return shelfController ? shelfController->isIn(kind) : kind == ShelfState::Kind::collapsed;
    }
    void bindBarForPushMode();
    void shelfAppearanceChanged();
    /// What a bar that has opened, or closed, means for the decoys and the timer.
    void shelfHasOpened();
    void settleShelfSoon();
    void shelfHasSettled();
    void showShelfScreenRecordingPrompt();
    void restartNevo();
    void clickedOutside();
    void shelfAutoHideFired();

    // Hover and blank area.
    void installTriggerMonitors();
    void mouseMoved();
    void checkHover(const Rect& area);
    void blankClicked();
    void startBlankDwell();
    void blankDwellEnded();
    bool isBlankTriggerEligible() const;
    /// Whether the point (origin at the bottom left) is on the main display's menu bar where it
    /// shows neither an item nor the system's own area.
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
    std::vector<MenuItem> alwaysHiddenRows() const;
    void checkForUpdatesFromMenu(const MenuItem& item);
    void openSettings();
    void openAbout();
    void quitApp();

    const Platform& platform;
    AppState& appState;
    SharedServices services;
    SectionManager sectionManager;
    /// Goes before the button that it may hang from.
    std::unique_ptr<Popover> popover;
    Registration stateObserver;
    AlwaysHiddenArea alwaysHiddenArea;
    RulePlaces rulePlaces;
    StatusItemPreferenceRepair preferences;
    UpdateCheck checkForUpdates;

    /// The last known screen frame of the toggle's button.
    Rect savedItemFrame;
    /// What the last collapse hid.
    std::vector<BarItem> cachedHiddenItems;
    /// Until then the section counts as closed, whatever comes into the bar.
    bool hasUserToggled = false;
    /// The first collapse waits for the user.
    bool isFirstCollapseHeld = false;
    /// True for a moment after a push-mode toggle.
    bool isToggling = false;
    bool isContextMenuShowing = false;
    /// Where the toggle belongs; negative before it was recorded.
    double canonicalToggleX = -1.0;
    /// The x seen at the last poll of a stability wait; negative for none.
    double lastStableX = -1.0;

    /// A Command-drag in the bar is being followed.
    bool isDraggingMenuBarItem = false;
    /// It has ended, and its drop hasn't been looked at.
    bool isDragSettling = false;
    /// Where the button went down that is held; nothing while none is, or none was heard.
    std::optional<bool> isPressInMenuBar;
    /// What it has taken.
    std::optional<WindowNumber> pressedItem;
    bool isPressOnToggle = false;
    /// It began on the toggle.
    bool isDraggingNevoToggle = false;
    /// The section was closed before it, or before the one whose end still waits.
    bool hasDragOpenedSection = false;
    /// What the hand holds.
    std::optional<WindowNumber> draggedWindow;
    /// The toggle's frame after the divider opened for the drag; nothing outside of one.
    std::optional<Rect> preDragToggleFrame;
    /// The centre x of each item's window when the drag began.
    std::map<WindowNumber, double> preDragPositions;
    bool isDisplayTransitioning = false;
    /// A repair of drifted items is under way; only one runs at a time.
    bool isEnforcingAlwaysShow = false;
    RuleChanges ruleChanges;
    /// The always-hidden items are being put in order, and something has changed since.
    bool isArranging = false;
    bool mustArrangeAgain = false;
    /// Not before then, after a failure.
    double arrangeAgainAt = 0;
    /// The row is being looked at anew, and has changed since.
    bool isTakingIn = false;
    bool hasRowChanged = false;
    KnownItems knownItems;
    /// Ids of those that wait to be brought out.
    std::deque<std::string> newItems;
    bool isShowingNewItems = false;
    /// What was there then has not come.
    bool hasSeenRow = false;
    /// Nevo has never run before.
    bool isFirstStart = false;
    double startedAt = 0;
    /// Other programs' windows at the monitor's last look.
    std::set<WindowNumber> watchedRow;

    /// The application whose rule is in force.
    std::optional<std::string> appRuleActiveForBundleID;
    /// That rule, for items that come meanwhile.
    AppRule frontRule;
    /// Goes up with each restore.
    int appRuleGeneration = 0;

    std::shared_ptr<NevoBar> nevoBar;
    std::shared_ptr<ShelfController> shelfController;
    std::unique_ptr<Window> shelfScreenRecordingPrompt;
    std::shared_ptr<DecoyPanelController> decoyController;

    /// The displays at the last notification.
    std::size_t lastScreenCount = 0;
    Rect lastMainScreenFrame;

    Registration hoverMonitor;
    Registration localHoverMonitor;
    Registration clickOutsideMonitor;
    Registration blankClickMonitor;
    std::unique_ptr<EventTap> cmdDragTap;
    Registration cmdDragRunLoopSource;
    Registration cmdDragGlobalMonitor;
    Registration cmdDragLocalMonitor;
    Registration cmdDragSafetyTimer;
    Registration blankHoverTimer;
    /// Runs while no program is in front and the rule of the last one is still in force.
    Registration emptyFrontTimer;
    Registration autoHideTimer;
    Registration itemMonitorTimer;
    Registration rightClickMonitor;
    std::vector<Registration> notificationObservers;
    Registration screenChangeObserver;
};

}  // namespace nevo
