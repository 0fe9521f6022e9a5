#include <fmt/format.h>

#include "entry/NevoApp.h"
#include "randomrun/Invariants.h"

namespace nevo {

bool Invariants::beforeClick() {
    wasExpandedBeforeClick.reset();
    wasShelfShownBeforeClick.reset();
    if (!isClickable()) return false;
    const AppState& state = run.nevo()->delegate().state();
    if (isShelfMode(desktop.screens, state)) {
        if (mustAnswerInShelfMode()) wasShelfShownBeforeClick = isBarShown();
        return wasShelfShownBeforeClick.has_value();
    }
    if (mustAnswerInPushMode()) wasExpandedBeforeClick = state.isExpanded();
    return wasExpandedBeforeClick.has_value();
}

/// Whether a click reaches the toggle, and no setting, permission or fault is in the way of what it
/// does.
bool Invariants::isClickable() const {
    auto nevo = run.nevo();
    if (!nevo || nevo->delegate().controller() == nullptr || !isAtRest()) return false;
    const AppState& state = nevo->delegate().state();
    const SimPointer& hand = desktop.events.state();
    WindowNumber toggle = run.ownItem("toggle")->window();
    bool asked = state.autoHideEnabled() || state.showOnHover() || state.triggerMode() != "click";
    Point place = desktop.windows.find(toggle)->frame.center();
    const SimBar::Item* topmost = desktop.bar.itemAt(place);
    bool isReached =
        topmost != nullptr && topmost->window == toggle && desktop.panels.at(place) == nullptr;
    return desktop.permissions.accessibility && !hand.leftDown && hand.modifiers == 0 &&
           desktop.bar.isOnScreen(toggle) && desktop.bar.layoutDelay < 0.1 && !asked &&
           !desktop.faults.isAnyPending() && isReached;
}

bool Invariants::mustAnswerInPushMode() const {
    return !run.nevo()->delegate().state().isExpanded() || isSomethingToHide();
}

/// Where the section is open the click closes it, which may leave nothing to be shown.
bool Invariants::mustAnswerInShelfMode() const {
    bool isClosed = !run.nevo()->delegate().state().isExpanded() &&
                    run.ownItem("divider")->length() > 0 && desktop.permissions.screenRecording;
    auto kind = shelf() == nullptr ? ShelfState::Kind::collapsed : shelf()->state().kind;
    bool isInStep =
        isBarShown() ? kind == ShelfState::Kind::panelVisible : kind == ShelfState::Kind::collapsed;
    return isClosed && isInStep && (isBarShown() || isSomethingToHide());
}

/// An ordinary item left of the toggle, which every scan takes.
bool Invariants::isSomethingToHide() const {
    double toggleX = desktop.windows.find(run.ownItem("toggle")->window())->frame.x;
    for (const SimOtherProgram& program : desktop.applications.all()) {
        for (const SimItemPlan& plan : program.items) {
            bool ordinary = program.running && plan.layer == statusItemWindowLevel &&
                            plan.windowOwner.empty() && plan.name == "Item-0" && plan.width >= 10 &&
                            plan.width <= 100;
            if (ordinary && desktop.windows.find(plan.window)->frame.maxX() <= toggleX) return true;
        }
    }
    return false;
}

std::optional<Broken> Invariants::afterClick() const {
    auto nevo = run.nevo();
    if (nevo && wasShelfShownBeforeClick && isBarShown() == *wasShelfShownBeforeClick) {
        return Broken{"click", fmt::format("after a click the shelf is {} as before",
                                           isBarShown() ? "shown" : "closed")};
    }
    if (!nevo || !wasExpandedBeforeClick) return std::nullopt;
    bool expanded = nevo->delegate().state().isExpanded();
    bool closed = run.ownItem("divider")->length() > 0;
    if (expanded != *wasExpandedBeforeClick && closed != expanded) return std::nullopt;
    return Broken{"click", fmt::format("after a click the divider is {} and isExpanded {}, as it "
                                       "was before",
                                       closed ? "closed" : "open", expanded)};
}

}  // namespace nevo
