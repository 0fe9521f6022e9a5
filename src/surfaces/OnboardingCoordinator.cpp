#include "surfaces/OnboardingCoordinator.h"

namespace nevo {

OnboardingCoordinator::OnboardingCoordinator(UserDefaults& store) : defaults(store) {}

void OnboardingCoordinator::show(OnboardingStep at) { step = at; }

void OnboardingCoordinator::showPermissions(std::function<void()> ready,
                                            std::function<void()> complete) {
    onReady = std::move(ready);
    onComplete = std::move(complete);
    if (!step) show(OnboardingStep::permissions);
}

void OnboardingCoordinator::notifyReady() {
    if (didNotifyReady) return;
    didNotifyReady = true;
    // A copy: the callback may replace the callbacks.
    if (auto ready = onReady) ready();
}

void OnboardingCoordinator::finish() {
    notifyReady();
    defaults.standard().set(onboardingCompletedKey, true);
    defaults.standard().synchronize();
    step.reset();
    if (auto complete = onComplete) complete();
    onComplete = nullptr;
    onReady = nullptr;
    didNotifyReady = false;
}

}  // namespace nevo
