#include "discovery/OwnerResolver.h"

#include <fmt/format.h>

#include <cmath>

#include "core/debugLog.h"
#include "core/describe.h"
#include "discovery/ItemIdentity.h"

namespace nevo {

namespace {

constexpr double axItemsMaxAge = 10.0;
constexpr double positionTolerance = 1.0;

std::string stableNameOf(const std::string& windowName, const std::string& bundleID,
                         const std::string& label) {
    if (windowName.empty() || (windowName == "Item-0" && !isOneDrive(bundleID))) return label;
    return windowName;
}

}  // namespace

OwnerResolver::OwnerResolver(const Platform& desktop) : platform(desktop) {}

std::vector<AXItemInfo> OwnerResolver::axExtrasItems() {
    if (platform.runLoop.now() - axItemsScannedAt < axItemsMaxAge && !cachedAXItems.empty())
        return cachedAXItems;
    bool trusted = platform.accessibility.isProcessTrusted();
    debugLog("[MenuBarScanner AX] AXIsProcessTrusted=" + describe(trusted));
    if (!trusted) return {};

    std::vector<AXItemInfo> items;
    std::size_t apps = 0;
    for (const RunningApplication& app : platform.workspace.runningApplications()) {
        if (app.isTerminated || app.activationPolicy == ActivationPolicy::prohibited) continue;
        ++apps;
        if (app.isFinishedLaunching) appendExtras(app, items);
    }
    debugLog(fmt::format("[MenuBarScanner AX] Found {} items across {} apps", items.size(), apps));
    cachedAXItems = items;
    axItemsScannedAt = platform.runLoop.now();
    return items;
}

void OwnerResolver::appendExtras(const RunningApplication& app,
                                 std::vector<AXItemInfo>& items) const {
    auto children = platform.accessibility.extrasMenuBarChildren(app.pid);
    if (!children) return;
    for (const AccessibilityElement& child : *children) {
        if (!child.position || !child.size || !(child.size->width > 0)) continue;
        std::string title = child.title.value_or("");
        if (title.empty()) title = child.description.value_or("");
        if (title.empty()) title = app.localizedName.value_or("");
        items.push_back({child.position->x + child.size->width * 0.5, app.pid, std::move(title)});
    }
}

std::optional<ItemOwner> OwnerResolver::resolveOwner(WindowNumber window, double midX,
                                                     const WindowInfo* info,
                                                     const std::vector<AXItemInfo>& axItems) {
    WindowInfo known = info ? *info : WindowInfo{};
    Candidate owner = candidateFromWindow(known);
    applyCachedOwner(window, owner);
    if (owner.bundleID == controlCenterBundleID || owner.bundleID.empty())
        matchByPosition(midX, axItems, owner);
    if (isOwnProcess(owner)) return std::nullopt;

    std::string label = owner.name.empty() ? known.ownerName : owner.name;
    std::string stable = stableNameOf(known.windowName, owner.bundleID, label);
    // This program's own items, should they have got past the tests above.
    if (stable.starts_with("Nevo_")) return std::nullopt;

    if (!owner.bundleID.empty() && owner.bundleID != controlCenterBundleID) {
        controlCenterOwnerCache[window] = {owner.pid, owner.bundleID, owner.name};
    }
    return ItemOwner{owner.pid,       owner.bundleID,
                     label,           makePersistedID(stable, owner.bundleID),
                     known.ownerName, owner.app};
}

OwnerResolver::Candidate OwnerResolver::candidateFromWindow(const WindowInfo& info) const {
    Candidate owner{info.pid, "", info.ownerName, std::nullopt};
    if (info.pid < 1) return owner;
    owner.app = platform.workspace.runningApplication(info.pid);
    if (owner.app) {
        owner.bundleID = owner.app->bundleIdentifier;
        owner.name = owner.app->localizedName.value_or(info.ownerName);
    }
    return owner;
}

void OwnerResolver::applyCachedOwner(WindowNumber window, Candidate& owner) const {
    if (owner.bundleID != controlCenterBundleID) return;
    auto cached = controlCenterOwnerCache.find(window);
    if (cached == controlCenterOwnerCache.end()) return;
    owner.pid = cached->second.pid;
    owner.bundleID = cached->second.bundleID;
    owner.name = cached->second.name;
    owner.app = platform.workspace.runningApplication(owner.pid);
}

void OwnerResolver::matchByPosition(double midX, const std::vector<AXItemInfo>& axItems,
                                    Candidate& owner) const {
    const AXItemInfo* chosen = nullptr;
    for (const AXItemInfo& candidate : axItems) {
        if (!(std::abs(candidate.midX - midX) < positionTolerance)) continue;
        if (!chosen) chosen = &candidate;
        // An application that names itself goes before the control centre, wherever it stands in
        // the list.
        auto app = platform.workspace.runningApplication(candidate.pid);
        if (app && !app->bundleIdentifier.empty() &&
            app->bundleIdentifier != controlCenterBundleID) {
            chosen = &candidate;
            break;
        }
    }
    if (!chosen) return;
    if (!chosen->title.empty()) owner.name = chosen->title;
    if (chosen->pid < 1) return;
    owner.pid = chosen->pid;
    if (auto app = platform.workspace.runningApplication(chosen->pid)) {
        owner.app = app;
        if (!app->bundleIdentifier.empty()) owner.bundleID = app->bundleIdentifier;
    }
}

bool OwnerResolver::isOwnProcess(const Candidate& owner) const {
    return owner.bundleID == platform.application.bundleIdentifier() ||
           owner.pid == platform.application.processIdentifier();
}

}  // namespace nevo
