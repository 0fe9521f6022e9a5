#include "surfaces/OnboardingRootView.h"

#include <utility>

#include "core/MenuBarIcon.h"
#include "core/Texts.h"
#include "core/notificationNames.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

constexpr double pollInterval = 1.0;
constexpr double cardSymbol = 28;
constexpr double simulationHeight = 56;
constexpr Size welcomeIconSize{96, 96};

struct Feature {
    const char* name;
    const char* symbol;
};
constexpr Feature featureCards[] = {{"push", "arrow.left.to.line"},
                                    {"nevobar", "display"},
                                    {"rules", "switch.2"},
                                    {"hotkey", "keyboard"},
                                    {"icon", "line.3.horizontal.decrease"}};

/// A bar whose items have been pushed off, or one with the shelf below it.
Control menuBarSimulation(const std::string& mode) {
    return symbolOf(mode == "push" ? "menubar.push" : "menubar.shelf", simulationHeight);
}

Control defaultButton(const std::string& key, std::function<void()> press) {
    Control made = buttonOf(key, std::move(press));
    made.isDefault = true;
    return made;
}

}  // namespace

OnboardingRootView::OnboardingRootView(const Platform& desktop, AccessibilityService& accessibility,
                                       const MotionPreference& preference, std::string mode,
                                       Callbacks given)
    : platform(desktop),
      service(accessibility),
      motion(preference),
      callbacks(std::move(given)),
      chosenMode(std::move(mode)) {}

std::shared_ptr<OnboardingRootView> OnboardingRootView::create(
    const Platform& platform, AccessibilityService& accessibility, const MotionPreference& motion,
    OnboardingStep step, std::string chosenMode, Callbacks callbacks) {
    std::shared_ptr<OnboardingRootView> made(new OnboardingRootView(
        platform, accessibility, motion, std::move(chosenMode), std::move(callbacks)));
    made->enter(step);
    return made;
}

void OnboardingRootView::go(OnboardingStep to) {
    if (current == OnboardingStep::welcome && callbacks.onWelcomeLeft) callbacks.onWelcomeLeft();
    enter(to);
    callbacks.changed(motion.betweenPages());
}

void OnboardingRootView::enter(OnboardingStep to) {
    current = to;
    timer.reset();
    if (to == OnboardingStep::modeSelect) {
        auto screen = platform.screens.mainScreen();
        hasNotch = screen && screen->safeAreaTop > 0;
        selected = hasNotch ? "shelf" : "push";
    } else if (to == OnboardingStep::permissions) {
        hasAX = service.isTrusted();
        hasSCK = platform.screenCapture.preflightAccess();
        timer = platform.runLoop.timer(pollInterval, true, [weak = weak_from_this()] {
            if (auto self = weak.lock()) self->readPermissions();
        });
    }
}

Control OnboardingRootView::content() {
    Control page;
    switch (current) {
        case OnboardingStep::welcome:
            page = welcome();
            break;
        case OnboardingStep::features:
            page = features();
            break;
        case OnboardingStep::modeSelect:
            page = modeSelect();
            break;
        case OnboardingStep::permissions:
            page = permissions();
            break;
    }
    // The window has no buttons of its own.
    Control close = buttonOf("onboarding.permissions.close_button", callbacks.onFinish);
    close.symbol = "xmark.circle";
    close.hidesTitle = true;
    return columnOf({close, page});
}

Control OnboardingRootView::welcome() {
    Control icon;
    icon.kind = Control::Kind::image;
    icon.image = menuBarIconImage(platform.images, defaultMenuBarIconName);
    if (icon.image) icon.image->size = welcomeIconSize;
    return columnOf({icon, textOf("onboarding.welcome.title", Control::TextStyle::largeTitle),
                     textOf("onboarding.welcome.slogan"),
                     defaultButton("onboarding.welcome.cta", [weak = weak_from_this()] {
                         if (auto self = weak.lock()) self->go(OnboardingStep::features);
                     })});
}

Control OnboardingRootView::features() {
    Control page = columnOf({textOf("onboarding.features.title", Control::TextStyle::largeTitle)});
    for (const Feature& feature : featureCards) {
        std::string key = std::string("onboarding.features.") + feature.name;
        page.children.push_back(
            rowOf({symbolOf(feature.symbol, cardSymbol), wordsOf(key + ".title", key + ".body")}));
    }
    page.children.push_back(defaultButton("onboarding.features.cta", [weak = weak_from_this()] {
        if (auto self = weak.lock()) self->go(OnboardingStep::modeSelect);
    }));
    return page;
}

Control OnboardingRootView::modeSelect() {
    return columnOf({textOf("onboarding.mode.title", Control::TextStyle::largeTitle),
                     modeCard("push", "push"), modeCard("shelf", "nevobar"),
                     defaultButton("onboarding.mode.cta", [weak = weak_from_this()] {
                         if (auto self = weak.lock()) self->continueWithMode();
                     })});
}

Control OnboardingRootView::modeCard(const std::string& mode, const std::string& name) {
    std::string key = "onboarding.mode." + name;
    Control card;
    card.kind = Control::Kind::card;
    card.key = key;
    card.title = text(key + ".title");
    card.isOn = selected == mode;
    card.press = [weak = weak_from_this(), mode] {
        auto self = weak.lock();
        if (!self) return;
        self->selected = mode;
        self->callbacks.changed(Transition::none);
    };
    card.children = {menuBarSimulation(mode),
                     wordsOf(key + ".title", key + ".body", Control::TextStyle::title)};
    bool isRecommended = (mode == "shelf") == hasNotch;
    if (isRecommended) {
        card.children.push_back(
            textOf("onboarding.mode.recommended_badge", Control::TextStyle::badge));
    }
    if (mode == "push" && hasNotch) {
        card.children.push_back(
            textOf("onboarding.mode.push.notch_warning", Control::TextStyle::warning));
    }
    return card;
}

void OnboardingRootView::continueWithMode() {
    chosenMode = selected;
    platform.defaults.standard().set("displayMode", chosenMode);
    platform.notifications.post(nevoDisplayModeChanged);
    go(OnboardingStep::permissions);
}

Control OnboardingRootView::permissions() {
    const char* subtitle = chosenMode == "shelf" ? "onboarding.permissions.subtitle.shelf"
                                                 : "onboarding.permissions.subtitle";
    // A system that asks nobody.
    bool isGiven = !platform.accessibility.isTrustUserControlled() && hasAX && hasSCK;
    if (isGiven) subtitle = "onboarding.permissions.subtitle.given";
    return columnOf({textOf("onboarding.permissions.title", Control::TextStyle::largeTitle),
                     textOf(subtitle), accessibilityCard(), screenRecordingCard(),
                     closingControl()});
}

Control OnboardingRootView::accessibilityCard() {
    Control card = columnOf({});
    card.kind = Control::Kind::card;
    card.key = "onboarding.permissions.accessibility";
    card.children = {wordsOf("onboarding.permissions.accessibility.title",
                             "onboarding.permissions.accessibility.body",
                             Control::TextStyle::title)};
    if (hasAX) {
        card.children.push_back(
            textOf("onboarding.permissions.granted_badge", Control::TextStyle::badge));
        card.children.back().key = "onboarding.permissions.accessibility.granted";
        return card;
    }
    auto weak = weak_from_this();
    card.children.push_back(
        rowOf({buttonOf("onboarding.permissions.grant_button",
                        [weak] {
                            if (auto self = weak.lock()) self->grantAccessibility();
                        }),
               buttonOf("onboarding.permissions.open_settings_button",
                        [&accessibility = service] { accessibility.openSettings(); })}));
    return card;
}

Control OnboardingRootView::screenRecordingCard() {
    bool isShelf = chosenMode == "shelf";
    Control card;
    card.kind = Control::Kind::card;
    card.key = "onboarding.permissions.screen";
    card.children = {wordsOf(
        "onboarding.permissions.screen.title",
        isShelf ? "onboarding.permissions.screen.body.shelf" : "onboarding.permissions.screen.body",
        Control::TextStyle::title)};
    if (hasSCK) {
        card.children.push_back(
            textOf("onboarding.permissions.granted_badge", Control::TextStyle::badge));
        card.children.back().key = "onboarding.permissions.screen.granted";
        return card;
    }
    const char* note = isShelf ? "onboarding.permissions.screen.shelf_note"
                               : "onboarding.permissions.screen.optional_note";
    if (screenRecordingRequested) note = "onboarding.permissions.screen.settings_note";
    Control grant = buttonOf("onboarding.permissions.grant_button", [weak = weak_from_this()] {
        if (auto self = weak.lock()) self->grantScreenRecording();
    });
    grant.key = "onboarding.permissions.screen.grant_button";
    card.children.push_back(textOf(note, Control::TextStyle::note));
    card.children.push_back(grant);
    return card;
}

/// Who has asked for a permission and doesn't hold it yet is offered a restart, since a grant often
/// counts in a new process only; everybody else may go on with what there is.
Control OnboardingRootView::closingControl() {
    auto weak = weak_from_this();
    bool isWaiting = (accessibilityRequested && !hasAX) || (screenRecordingRequested && !hasSCK);
    if (!isWaiting) {
        return defaultButton("onboarding.permissions.finish_button", [weak] {
            auto self = weak.lock();
            if (!self) return;
            self->callbacks.markComplete();
            self->callbacks.onFinish();
        });
    }
    Control restart = defaultButton("onboarding.permissions.restart_button", [weak] {
        auto self = weak.lock();
        if (!self) return;
        self->callbacks.markComplete();
        self->service.restart();
    });
    return columnOf(
        {restart, textOf("onboarding.permissions.restart_hint", Control::TextStyle::note)});
}

void OnboardingRootView::readPermissions() {
    bool trusted = service.isTrusted();
    bool recording = platform.screenCapture.preflightAccess();
    if (trusted == hasAX && recording == hasSCK) return;
    hasAX = trusted;
    hasSCK = recording;
    callbacks.changed(Transition::crossFade);
}

void OnboardingRootView::grantAccessibility() {
    auto self = shared_from_this();
    callbacks.onReady();
    if (!hasAX) {
        callbacks.performSystemPermissionRequest([self] {
            if (self->service.isTrusted()) return;
            self->service.resetAccessibilityGrant();
            self->service.promptIfNeeded();
        });
    }
    hasAX = service.isTrusted();
    accessibilityRequested = true;
    callbacks.changed(Transition::none);
}

void OnboardingRootView::grantScreenRecording() {
    auto self = shared_from_this();
    callbacks.onReady();
    if (!hasSCK) {
        callbacks.performSystemPermissionRequest(
            [self] { self->platform.screenCapture.requestAccess(); });
    }
    hasSCK = platform.screenCapture.preflightAccess();
    screenRecordingRequested = true;
    callbacks.changed(Transition::none);
}

}  // namespace nevo
