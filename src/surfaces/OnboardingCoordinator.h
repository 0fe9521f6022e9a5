#pragma once

#include <functional>
#include <optional>

#include "platform/UserDefaults.h"

namespace nevo {

enum class OnboardingStep { welcome, features, modeSelect, permissions };

inline constexpr const char* onboardingCompletedKey = "nevo_onboarding_completed";

/// Leads a new user in, and later asks for the permissions again. One for the process. Keeps what
/// the flow tells the rest of the program; `onReady` runs when services may start, `onComplete`
/// when the flow has ended.
class OnboardingCoordinator {
public:
    explicit OnboardingCoordinator(UserDefaults& defaults);

    std::function<void()> onReady;
    std::function<void()> onComplete;
    /// `onReady` has run, which it does once a flow.
    bool didNotifyReady = false;

    /// Opens the flow at `step`.
    void show(OnboardingStep step);
    /// Opens it at the permissions with other callbacks, or brings it to the front.
    void showPermissions(std::function<void()> ready, std::function<void()> complete);
    /// Runs `onReady` unless it has run.
    void notifyReady();
    /// Ends the flow: `notifyReady`, the completion is stored, `onComplete`; then both callbacks
    /// are cleared.
    void finish();

    /// The step the flow is open at; nothing while it is closed.
    std::optional<OnboardingStep> openStep() const { return step; }

private:
    UserDefaults& defaults;
    std::optional<OnboardingStep> step;
};

}  // namespace nevo
