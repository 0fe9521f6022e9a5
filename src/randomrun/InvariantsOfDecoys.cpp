#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "entry/NevoApp.h"
#include "randomrun/Invariants.h"
#include "scenario/commandSupport.h"

namespace nevo {

namespace {
constexpr const char* decoyViews = "decoy:";
constexpr double smallestSlot = 30;
/// The panel's two edges, and what is free beside it.
constexpr double edges = 6;
/// Two passes of the monitor, which finds what nothing has told of.
constexpr double delay = 5;
}  // namespace

/// They stand for the hidden items that the user has marked, and for no others, wherever these can
/// be seen neither in the bar nor in the shelf.
std::optional<Broken> Invariants::checkDecoys() {
    const SimPanel* panel = panelWith(run, decoyViews);
    auto nevo = run.nevo();
    bool isClosed = run.ownItem("divider")->length() > 0 && !nevo->delegate().state().isExpanded();
    if (panel != nullptr && !isClosed)
        return Broken{"decoys", "decoys stand beside an open section"};
    if (panel != nullptr && isBarShown() && !mayBarDiffer)
        return Broken{"decoys", "decoys stand in the bar while the shelf is open"};
    bool inForce = isShelfMode(desktop.screens, nevo->delegate().state());
    if (panel != nullptr && !inForce) return Broken{"decoys", "decoys stand in push mode"};
    bool hasPlace = desktop.bar.isOnScreen(run.ownItem("toggle")->window());
    bool isReadable =
        desktop.faults.struckCount(SimOperation::setWindowAlpha) == alphaFailuresAtStart &&
        !desktop.bar.isDragging();
    auto differing = inForce && isClosed && !isBarShown() && hasPlace && isReadable
                         ? checkWhichDecoys(panel)
                         : std::nullopt;
    double now = desktop.loop.now();
    if (!differing) {
        decoysDifferSince.reset();
    } else if (!decoysDifferSince) {
        decoysDifferSince = now;
    }
    return differing && now - *decoysDifferSince > delay ? differing : std::nullopt;
}

std::optional<Broken> Invariants::checkWhichDecoys(const SimPanel* panel) const {
    std::vector<WindowNumber> shown;
    if (panel != nullptr) {
        for (const PanelView& view : panel->views())
            shown.push_back(static_cast<WindowNumber>(
                std::stoul(view.key.substr(std::string(decoyViews).size()))));
    }
    // An ordinary window may be listed among the bar's for a while.
    std::erase_if(shown, [&](WindowNumber each) { return desktop.bar.find(each) == nullptr; });
    std::vector<WindowNumber> expected = decoysWanted();
    if (shown == expected) return std::nullopt;
    // As many as fit, in their order. One whose place can't be told may be in sight.
    std::vector<WindowNumber> fitting = expected;
    std::erase_if(fitting, [&](WindowNumber each) {
        return std::find(shown.begin(), shown.end(), each) == shown.end();
    });
    bool mayLack = !haveRoom(expected) || desktop.faults.isAnyPending();
    if (shown == fitting && mayLack) return std::nullopt;
    return Broken{"decoys", fmt::format("decoys of {} stand in the bar, not of {}",
                                        fmt::join(shown, ","), fmt::join(expected, ","))};
}

/// From left to right.
std::vector<WindowNumber> Invariants::decoysWanted() const {
    // Empty until Nevo has found an item.
    const SectionManager& sections = run.nevo()->delegate().controller()->sections();
    SectionSnapshot snapshot = sections.lastExpandedSnapshot;
    const ScannedBarItems& hidden = snapshot[SectionName::hidden];
    ScannedBarItems all = hidden;
    all.insert(all.end(), snapshot[SectionName::visible].begin(),
               snapshot[SectionName::visible].end());
    std::set<std::string> marked = store.decoyItems();
    IconRules rules = store.loadIconRules();
    std::vector<WindowNumber> wanted;
    for (WindowNumber window : desktop.bar.order()) {
        auto item = std::find_if(hidden.begin(), hidden.end(), [&](const ScannedBarItem& each) {
            return each.windowID == window;
        });
        if (item == hidden.end() || !marked.contains(item->persistedID)) continue;
        auto rule = matchIconRule(*item, rules, all);
        bool isPinned = rule && rule->second == IconRule::alwaysHide;
        bool isSeen = desktop.bar.isOnScreen(window) && desktop.windows.find(window)->alpha > 0;
        bool isHiddenInFront = sections.opacity.has(ItemOpacity::Reason::hiddenInFront, window);
        if (!isPinned && !isHiddenInFront && !isSeen) wanted.push_back(window);
    }
    return wanted;
}

/// Left of the toggle and of every item that can be seen.
bool Invariants::haveRoom(const std::vector<WindowNumber>& windows) const {
    double right = desktop.windows.find(run.ownItem("toggle")->window())->frame.x;
    for (WindowNumber window : desktop.bar.order()) {
        const SimBar::Item& item = *desktop.bar.find(window);
        const SimWindow& held = *desktop.windows.find(window);
        bool isSeen = !item.own && held.alpha > 0 && desktop.bar.isOnScreen(window);
        if (isSeen) right = std::min(right, held.frame.x);
    }
    double width = edges;
    for (WindowNumber window : windows)
        width += std::max(smallestSlot, desktop.bar.find(window)->length);
    return width <= right;
}

}  // namespace nevo
