#include <fmt/format.h>

#include "entry/NevoApp.h"
#include "randomrun/Invariants.h"
#include "scenario/commandSupport.h"

namespace nevo {

namespace {
constexpr const char* slotViews = "slot:";
}  // namespace

void Invariants::noteShelf(const std::string& line) {
    auto has = [&](const char* part) { return line.find(part) != std::string::npos; };
    // Rules of programs and drags of the toggle open and close the bar on their own; a collapse
    // forgets an open one, and one that a presentation was to give way to may find nothing to show.
    for (const char* told :
         {"[AppRule] Showing", "[AppRule] Restoring overrides", "[CmdDrag] toggle item dragged",
          "[Nevo] Screen configuration changed", "[Shelf] onItemsPushed",
          "[Shelf] keeping state=panelVisible", "[NevoBar] No items found"}) {
        if (has(told)) mayBarDiffer = true;
    }
    auto windowAfter = [&](const char* part) {
        std::string from = line.substr(line.rfind(part));
        return static_cast<WindowNumber>(std::stoul(from.substr(from.find_first_of("0123456789"))));
    };
    if (has("[Shelf] presentItem begin wid=")) comingOut = windowAfter("wid=");
    if (has("[Shelf] presentItem resolved wid=")) comingOut = windowAfter(" -> ");
    if (has("[Shelf] moveItem SLSMoveWindow direct wid=") && comingOut == windowAfter("wid=")) {
        // One that stood in sight goes back to where it stood, which may be beside its slot by now.
        if (!desktop.bar.isOnScreen(comingOut)) broughtOut.push_back({comingOut, moveFailures()});
        comingOut = 0;
    }
    // A rule moves it meanwhile.
    if (has("[SBC] moveItem ") || has("secondary screen SLSMoveWindow")) {
        WindowNumber moved = windowAfter("wid=");
        std::erase_if(broughtOut, [&](const BroughtOut& each) { return each.window == moved; });
    }
}

const ShelfController* Invariants::shelf() const {
    auto nevo = run.nevo();
    auto controller = nevo ? nevo->delegate().controller() : nullptr;
    return controller == nullptr ? nullptr : controller->shelfInUse();
}

bool Invariants::isBarShown() const {
    const SimPanel* panel = panelWith(run, slotViews);
    return panel != nullptr && panel->alpha() > 0;
}

std::optional<Broken> Invariants::checkShelf() {
    bool inForce = isShelfMode(desktop.screens, run.nevo()->delegate().state());
    ShelfState state = shelf() == nullptr ? ShelfState{} : shelf()->state();
    if (isBarShown() == (state.kind == ShelfState::Kind::panelVisible)) {
        mayBarDiffer = false;
        return std::nullopt;
    }
    if (!inForce || mayBarDiffer) return std::nullopt;
    return Broken{"shelf", fmt::format("the shelf's state is {} while it is {}", describe(state),
                                       isBarShown() ? "shown" : "closed")};
}

std::optional<Broken> Invariants::checkPresentation() {
    bool isItemOut = shelf() != nullptr && shelf()->hasItemOut();
    if (isItemOut) return std::nullopt;
    for (const BroughtOut& out : broughtOut) {
        const SimBar::Item* item = desktop.bar.find(out.window);
        bool isLost = item != nullptr && item->floating && moveFailures() == out.moveFailures;
        if (isLost)
            return Broken{"brought-out", item->label + " was brought out and not taken back"};
    }
    broughtOut.clear();
    return std::nullopt;
}

int Invariants::moveFailures() const {
    int count = 0;
    for (SimOperation operation :
         {SimOperation::moveWindow, SimOperation::windowFrame, SimOperation::eventSource,
          SimOperation::mouseEvent, SimOperation::drag}) {
        count += desktop.faults.struckCount(operation);
    }
    return count;
}

}  // namespace nevo
