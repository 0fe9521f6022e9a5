#pragma once

#include <functional>
#include <memory>
#include <string>

#include "surfaces/AccessibilityService.h"
#include "surfaces/MotionPreference.h"

namespace nevo {

enum class OnboardingStep { welcome, features, modeSelect, permissions };

/// What the first-run flow shows, step by step.
class OnboardingRootView : public std::enable_shared_from_this<OnboardingRootView> {
public:
    /// What the view asks of the flow around it.
    struct Callbacks {
        std::function<void()> onReady;
        std::function<void()> markComplete;
        /// The first page has been left.
        std::function<void()> onWelcomeLeft;
        /// Runs the action while the flow's window leaves room for the system's own.
        std::function<void(std::function<void()>)> performSystemPermissionRequest;
        /// The view may be destroyed in it.
        std::function<void()> onFinish;
        /// The view shows something else, which comes in this way.
        std::function<void(Transition)> changed;
    };

    /// All three outlive the view.
    static std::shared_ptr<OnboardingRootView> create(const Platform& platform,
                                                      AccessibilityService& accessibility,
                                                      const MotionPreference& motion,
                                                      OnboardingStep step, std::string chosenMode,
                                                      Callbacks callbacks);

    OnboardingStep step() const { return current; }
    Control content();

private:
    OnboardingRootView(const Platform& platform, AccessibilityService& accessibility,
                       const MotionPreference& motion, std::string mode, Callbacks given);
    void go(OnboardingStep to);
    void enter(OnboardingStep to);
    Control welcome();
    Control features();
    Control modeSelect();
    Control modeCard(const std::string& mode, const std::string& name);
    void continueWithMode();
    Control permissions();
    Control accessibilityCard();
    Control screenRecordingCard();
    Control closingControl();
    void readPermissions();
    void grantAccessibility();
    void grantScreenRecording();

    const Platform& platform;
    AccessibilityService& service;
    const MotionPreference& motion;
    Callbacks callbacks;
    OnboardingStep current = OnboardingStep::welcome;
    std::string chosenMode;
    /// Of the mode selection.
    std::string selected;
    bool hasNotch = false;
    // Of the permissions.
    bool hasAX = false;
    bool hasSCK = false;
    bool accessibilityRequested = false;
    bool screenRecordingRequested = false;
    Registration timer;
};

}  // namespace nevo
