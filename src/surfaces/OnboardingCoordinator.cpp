#include "surfaces/OnboardingCoordinator.h"

#include <utility>

#include "core/StoredValues.h"
#include "core/Texts.h"

namespace nevo {

namespace {

constexpr Size windowSize{480, 720};
constexpr int normalLevel = 0;
constexpr int floatingLevel = 3;
/// Move to the active space, stand beside full screen.
constexpr unsigned windowCollection = 258;
/// The system's dialog has come up by then.
constexpr double requestTime = 3.0;
constexpr const char* systemSettings[] = {"com.apple.systempreferences",
                                          "com.apple.SystemSettings"};

}  // namespace

OnboardingCoordinator::OnboardingCoordinator(const Platform& desktop, AccessibilityService& service)
    : platform(desktop), accessibility(service), motion(desktop.surfaceWindows) {}

std::shared_ptr<OnboardingCoordinator> OnboardingCoordinator::create(
    const Platform& platform, AccessibilityService& accessibility) {
    return std::shared_ptr<OnboardingCoordinator>(
        new OnboardingCoordinator(platform, accessibility));
}

void OnboardingCoordinator::show(OnboardingStep step) {
    auto weak = weak_from_this();
    auto held = [weak](void (OnboardingCoordinator::*action)()) {
        return [weak, action] {
            if (auto self = weak.lock()) ((*self).*action)();
        };
    };
    OnboardingRootView::Callbacks callbacks;
    callbacks.onReady = held(&OnboardingCoordinator::notifyReady);
    callbacks.markComplete = held(&OnboardingCoordinator::markComplete);
    callbacks.onWelcomeLeft = held(&OnboardingCoordinator::notifyWelcomeLeft);
    callbacks.onFinish = held(&OnboardingCoordinator::finish);
    callbacks.changed = [weak](Transition transition) {
        if (auto self = weak.lock()) self->refreshSoon(transition);
    };
    callbacks.performSystemPermissionRequest = [weak](const std::function<void()>& action) {
        if (auto self = weak.lock()) self->performSystemPermissionRequest(action);
    };
    auto mode = storedString(platform.defaults.standard(), "displayMode").value_or("push");
    root = OnboardingRootView::create(platform, accessibility, motion, step, mode,
                                      std::move(callbacks));

    WindowConfiguration made;
    made.name = "first-run";
    made.title = text("onboarding.window.title");
    made.size = windowSize;
    made.level = floatingLevel;
    made.collectionBehavior = windowCollection;
    made.isBare = true;
    made.isMovableByBackground = true;
    window = platform.surfaceWindows.create(made);
    // Closed in another way than by its own button: the same to the user.
    window->didClose = [weak, &runLoop = platform.runLoop] {
        runLoop.post([weak] {
            if (auto self = weak.lock()) self->finish();
        });
    };
    window->setContent(root->content());
    window->makeKeyAndOrderFront();
    platform.application.activate();
}

void OnboardingCoordinator::showPermissions(std::function<void()> ready,
                                            std::function<void()> complete) {
    onReady = std::move(ready);
    onComplete = std::move(complete);
    if (!window) {
        show(OnboardingStep::permissions);
        return;
    }
    window->makeKeyAndOrderFront();
    platform.application.activate();
}

void OnboardingCoordinator::notifyReady() {
    if (didNotifyReady) return;
    didNotifyReady = true;
    // A copy: the callback may replace the callbacks.
    if (auto ready = onReady) ready();
}

void OnboardingCoordinator::notifyWelcomeLeft() {
    if (auto left = std::exchange(onWelcomeLeft, nullptr)) left();
}

void OnboardingCoordinator::markComplete() {
    platform.defaults.standard().set(onboardingCompletedKey, true);
    platform.defaults.standard().synchronize();
}

void OnboardingCoordinator::performSystemPermissionRequest(const std::function<void()>& action) {
    restoreWindowLevelWorkItem.reset();
    window->setLevel(normalLevel);
    window->orderBack();
    action();
    restoreWindowLevelWorkItem =
        platform.runLoop.timer(requestTime, false, [weak = weak_from_this()] {
            if (auto self = weak.lock()) self->restoreWindowLevel();
        });
}

void OnboardingCoordinator::restoreWindowLevel() {
    if (!window) return;
    window->setLevel(floatingLevel);
    auto front = platform.workspace.frontmostApplication();
    for (const char* settings : systemSettings) {
        if (front && front->bundleIdentifier == settings) return;
    }
    window->makeKeyAndOrderFront();
    platform.application.activate();
}

void OnboardingCoordinator::refreshSoon(Transition transition) {
    // It comes from the middle of a control's own event.
    platform.runLoop.post([weak = weak_from_this(), transition] {
        auto self = weak.lock();
        if (self && self->window && self->root)
            self->window->setContent(self->root->content(), transition);
    });
}

void OnboardingCoordinator::finish() {
    // The call may come from the view.
    auto ending = root;
    notifyWelcomeLeft();
    notifyReady();
    markComplete();
    close();
    // It may show an alert, and the toggle open the flow again meanwhile, with callbacks of its
    // own.
    auto complete = std::exchange(onComplete, nullptr);
    onReady = nullptr;
    didNotifyReady = false;
    if (complete) complete();
}

void OnboardingCoordinator::close() {
    restoreWindowLevelWorkItem.reset();
    if (window) window->close();
    window.reset();
    root.reset();
}

}  // namespace nevo
