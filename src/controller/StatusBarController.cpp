#include "controller/StatusBarController.h"

#include "core/StoredValues.h"
#include "core/notificationNames.h"
#include "surfaces/PopoverContentView.h"

namespace nevo {

namespace {
constexpr Size popoverSize{300, 280};
constexpr int transientBehavior = 1;
constexpr int lowerEdge = 1;
/// The first collapse should have come by then.
constexpr double replayDelay = 3.0;
}  // namespace

std::shared_ptr<StatusBarController> StatusBarController::create(const Platform& platform,
                                                                 AppState& appState,
                                                                 SharedServices services,
                                                                 UpdateCheck checkForUpdates) {
    std::shared_ptr<StatusBarController> controller(
        new StatusBarController(platform, appState, services, std::move(checkForUpdates)));
    controller->install();
    return controller;
}

StatusBarController::StatusBarController(const Platform& desktop, AppState& state,
                                         SharedServices shared, UpdateCheck updateCheck)
    : platform(desktop),
      appState(state),
      services(shared),
      sectionManager(desktop),
      popover(desktop.popovers.create()),
      alwaysHiddenArea(desktop.windows, sectionManager),
      rulePlaces(desktop, sectionManager),
      preferences(desktop.defaults),
      checkForUpdates(std::move(updateCheck)),
      knownItems(desktop.defaults.standard()),
      isFirstStart(!storedBool(desktop.defaults.standard(), onboardingCompletedKey)),
      startedAt(desktop.runLoop.now()) {
    nevoBar = NevoBar::create(platform);
    lastScreenCount = platform.screens.screens().size();
    if (auto screen = platform.screens.mainScreen()) lastMainScreenFrame = screen->frame;
    popover->setContentSize(popoverSize);
    popover->setBehavior(transientBehavior);
    popover->setAnimates(true);
}

void StatusBarController::install() {
    auto weak = weak_from_this();
    sectionManager.configureToggle(appState.menuBarIconImage(), [weak] {
        if (auto self = weak.lock()) self->buttonClicked();
    });
    rightClickMonitor = platform.events.addLocalMonitor(
        maskOf(EventType::rightMouseUp), [weak](const Event& event) {
            auto self = weak.lock();
            return self && self->handleRightClick(event);
        });
    installTriggerMonitors();
    installDragDetection();
    showPopoverContent();
    stateObserver = appState.objectWillChange.observe([weak] {
        // The state is told of before it changes.
        if (auto self = weak.lock()) self->laterOnMain(&StatusBarController::showPopoverContent);
    });
    observeFrontApplication();
    observeNotifications();
    startItemMonitor();
    if (!isShelfMode()) bindBarForPushMode();
    // From the start, so that it hears of the first collapse: the rules wait for the snapshot that
    // it then takes.
    decoyController =
        DecoyPanelController::create(platform, appState, sectionManager, services.scanner);
    decoyController->isBarOpen = [weak] {
        auto self = weak.lock();
        // What a rule of the front application has opened holds some of the items, for long.
        return self && self->isShelfIn(ShelfState::Kind::panelVisible) && self->nevoBar->isOpen();
    };
    spawn(platform.runLoop, replayAfterStart(weak));
}

Task<> StatusBarController::replayAfterStart(std::weak_ptr<StatusBarController> owner) {
    co_await sleep(replayDelay);
    co_await replayAllRulesOnStartup(owner);
}

void StatusBarController::observeNotifications() {
    auto weak = weak_from_this();
    for (const char* name : {nevoIconChanged, nevoSpacingChanged}) {
        notificationObservers.push_back(
            platform.notifications.addObserver(name, [weak](const Notification&) {
                if (auto self = weak.lock())
                    self->laterOnMain(&StatusBarController::iconOrSpacingChanged);
            }));
    }
    notificationObservers.push_back(
        platform.notifications.addObserver(nevoShelfAppearanceChanged, [weak](const Notification&) {
            if (auto self = weak.lock())
                self->laterOnMain(&StatusBarController::shelfAppearanceChanged);
        }));
    observeRules();
    observeAppRules();
    observeWake();
    observeScreens();
}

void StatusBarController::laterOnMain(void (StatusBarController::*action)()) {
    platform.runLoop.post([weak = weak_from_this(), action] {
        if (auto self = weak.lock()) ((*self).*action)();
    });
}

void StatusBarController::afterDelay(double seconds, void (StatusBarController::*action)()) {
    platform.runLoop.postAfter(seconds, [weak = weak_from_this(), action] {
        if (auto self = weak.lock()) ((*self).*action)();
    });
}

/// In push mode too: a program's rule may have opened the bar.
void StatusBarController::shelfAppearanceChanged() {
    bool isFirstUse = !shelfController;
    shelf().refreshBarAppearance();
    // The shelf has taken over what is done with the bar's slots.
    if (isFirstUse && !isShelfMode()) bindBarForPushMode();
}

void StatusBarController::iconOrSpacingChanged() {
    auto weak = weak_from_this();
    sectionManager.configureToggle(appState.menuBarIconImage(), [weak] {
        if (auto self = weak.lock()) self->buttonClicked();
    });
    refreshToggleButton();
    platform.runLoop.post([weak] {
        auto self = weak.lock();
        if (!self) return;
        if (auto frame = self->toggleButtonScreenFrame()) self->savedItemFrame = *frame;
    });
}

void StatusBarController::showPopoverContent() {
    popover->setContent(popoverContent(appState, [weak = weak_from_this()] {
        auto self = weak.lock();
        if (!self) return;
        self->popover->performClose();
        self->openSettings();
    }));
}

void StatusBarController::refreshToggleButton() {
    StatusItemButton* button = sectionManager.toggleItem->button();
    if (!button) return;
    button->setImage(appState.menuBarIconImage());
    button->setImageScaling(0);
    button->setEnabled(true);
    button->setHidden(false);
    button->setAlpha(1.0);
}

void StatusBarController::buttonClicked() {
    if (!(platform.events.modifierFlags() & optionModifier)) {
        toggle();
        return;
    }
    if (popover->isShown()) {
        popover->performClose();
    } else if (StatusItemButton* button = sectionManager.toggleItem->button()) {
        popover->show(button->bounds(), *button, lowerEdge);
    }
}

void StatusBarController::tearDown() {
    autoHideTimer.reset();
    blankHoverTimer.reset();
    emptyFrontTimer.reset();
    cmdDragSafetyTimer.reset();
    if (cmdDragTap) cmdDragTap->setEnabled(false);
    cmdDragRunLoopSource.reset();
    cmdDragTap.reset();
    hoverMonitor.reset();
    localHoverMonitor.reset();
    clickOutsideMonitor.reset();
    blankClickMonitor.reset();
    notificationObservers.clear();
    screenChangeObserver.reset();
    isDisplayTransitioning = false;
    isDraggingMenuBarItem = false;
    ++appRuleGeneration;
    shelf().endPresentation();
    nevoBar->dismiss();
    decoyController->hide();
    refreshToggleButton();
    sectionManager.expand(true);
    sectionManager.opacity.end();
    cmdDragGlobalMonitor.reset();
    cmdDragLocalMonitor.reset();
    rightClickMonitor.reset();
}

}  // namespace nevo
