#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "surfaces/OnboardingRootView.h"

namespace nevo {

inline constexpr const char* onboardingCompletedKey = "nevo_onboarding_completed";

/// Leads a new user in, and later asks for the permissions again. One for the process. Keeps what
/// the flow tells the rest of the program; `onReady` runs when services may start, `onComplete`
/// when the flow has ended.
class OnboardingCoordinator : public std::enable_shared_from_this<OnboardingCoordinator> {
public:
    static std::shared_ptr<OnboardingCoordinator> create(const Platform& platform,
                                                         AccessibilityService& accessibility);

    std::function<void()> onReady;
    std::function<void()> onComplete;
    /// The first page has been left, by its button or with the window; called once.
    std::function<void()> onWelcomeLeft;
    /// `onReady` has run, which it does once a flow.
    bool didNotifyReady = false;

    /// Opens the flow at `step`.
    void show(OnboardingStep step);
    /// Opens it at the permissions with other callbacks, or brings it to the front.
    void showPermissions(std::function<void()> ready, std::function<void()> complete);
    /// Runs `onReady` unless it has run.
    void notifyReady();
    /// Ends the flow: `notifyReady`, the completion is stored, the window goes, `onComplete`; then
    /// both callbacks are cleared.
    void finish();
    /// Takes the window away without a word, at the end of the program.
    void close();

    /// The step the flow is open at; nothing while it is closed.
    std::optional<OnboardingStep> openStep() const {
        return root ? std::optional(root->step()) : std::nullopt;
    }

private:
    OnboardingCoordinator(const Platform& platform, AccessibilityService& accessibility);
    void markComplete();
    void notifyWelcomeLeft();
    void performSystemPermissionRequest(const std::function<void()>& action);
    void restoreWindowLevel();
    void refreshSoon(Transition transition);

    const Platform& platform;
    AccessibilityService& accessibility;
    MotionPreference motion;
    std::unique_ptr<Window> window;
    std::shared_ptr<OnboardingRootView> root;
    Registration restoreWindowLevelWorkItem;
};

}  // namespace nevo
