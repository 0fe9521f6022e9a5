#include "discovery/MenuBarScanner.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {

constexpr double maxItemWidth = 500.0;
constexpr double minItemSide = 2.0;

bool hasItemGeometry(const Rect& frame, double maxX) {
    // x isn't tested otherwise: items pushed far to the left are part of every scan.
    return frame.width < maxItemWidth && frame.width > minItemSide && frame.height > minItemSide &&
           frame.midX() < maxX && frame.y >= 0;
}

}  // namespace

MenuBarScanner::MenuBarScanner(const Platform& desktop, ScreenCaptureService& capture)
    : platform(desktop), captureService(capture), owners(desktop) {}

Task<ScannedBarItems> MenuBarScanner::scanCached(std::set<WindowNumber> excluding, double maxAge) {
    if (platform.runLoop.now() - lastScanAt < maxAge && !lastScanItems.empty()) {
        debugLog(
            fmt::format("[MenuBarScanner] using cached scan ({} items)", lastScanItems.size()));
        co_return lastScanItems;
    }
    double unlimited = std::numeric_limits<double>::infinity();
    ScannedBarItems items = co_await scan(excluding, true, unlimited);
    storeScanCache(items);
    co_return items;
}

void MenuBarScanner::invalidateScanCache() {
    lastScanItems.clear();
    lastScanAt = -std::numeric_limits<double>::infinity();
}

void MenuBarScanner::storeScanCache(ScannedBarItems items) {
    lastScanItems = std::move(items);
    lastScanAt = platform.runLoop.now();
}

Task<ScannedBarItems> MenuBarScanner::scan(std::set<WindowNumber> excluding, bool includeIcons,
                                           double maxX) {
    std::vector<WindowNumber> fromServer = menuBarWindowIDs();
    std::vector<WindowNumber> fromList = statusLayerWindowIDs();
    std::vector<WindowNumber> windows;
    std::set<WindowNumber> seen;
    for (const auto* source : {&fromServer, &fromList}) {
        for (WindowNumber window : *source) {
            if (seen.insert(window).second) windows.push_back(window);
        }
    }
    if (windows.empty()) {
        debugLog("[MenuBarScanner] No menu bar windows returned");
        co_return ScannedBarItems();
    }
    std::map<WindowNumber, WindowInfo> infos = windowInfos();
    std::vector<AXItemInfo> axItems = owners.axExtrasItems();
    debugLog(fmt::format("[MenuBarScanner] scan maxX={} windows={} cgs={} cg={}",
                         std::isfinite(maxX) ? describeWhole(maxX) : "∞", windows.size(),
                         fromServer.size(), fromList.size()));

    PendingItems pending;
    Sizes sizes;
    for (WindowNumber window : windows) {
        if (excluding.contains(window)) continue;
        if (auto item = acceptWindow(window, maxX, infos, axItems)) {
            sizes[window] = {item->width, item->height};
            pending.push_back(std::move(*item));
        }
    }
    IconMap icons;
    if (includeIcons) icons = co_await captureIcons(pending, sizes);

    ScannedBarItems items;
    for (const PendingItem& item : pending) {
        auto icon = icons.find(item.windowID);
        items.push_back({item.windowID, item.owner.pid, item.owner.persistedID, item.owner.bundleID,
                         item.owner.label, item.centerX, item.width, item.height,
                         icon != icons.end() ? std::optional(icon->second) : fallbackIcon(item)});
    }
    debugLog(fmt::format("[MenuBarScanner] Total items: {}", items.size()));
    std::stable_sort(
        items.begin(), items.end(),
        [](const ScannedBarItem& a, const ScannedBarItem& b) { return a.centerX < b.centerX; });
    co_return items;
}

std::vector<WindowNumber> MenuBarScanner::menuBarWindowIDs() const {
    auto count = platform.windows.windowCount();
    if (!count || *count < 1) return {};
    return platform.windows.menuBarWindowList(*count).value_or(std::vector<WindowNumber>{});
}

std::vector<WindowNumber> MenuBarScanner::statusLayerWindowIDs() const {
    std::vector<WindowNumber> numbers;
    auto list = platform.windows.windowList(WindowListOption::onScreenOnly);
    if (!list) return numbers;
    for (const WindowDescription& window : *list) {
        if (window.number && window.layer == statusItemWindowLevel)
            numbers.push_back(*window.number);
    }
    return numbers;
}

std::map<WindowNumber, WindowInfo> MenuBarScanner::windowInfos() const {
    std::map<WindowNumber, WindowInfo> infos;
    auto list = platform.windows.windowList(WindowListOption::all);
    if (!list) {
        debugLog("[MenuBarScanner] CGWindowListCopyWindowInfo failed for PID lookup");
        return infos;
    }
    for (const WindowDescription& window : *list) {
        if (!window.number || !window.ownerPid) continue;
        infos[*window.number] = {*window.ownerPid, window.ownerName.value_or(""),
                                 window.name.value_or("")};
    }
    return infos;
}

std::optional<MenuBarScanner::PendingItem> MenuBarScanner::acceptWindow(
    WindowNumber window, double maxX, const std::map<WindowNumber, WindowInfo>& infos,
    const std::vector<AXItemInfo>& axItems) {
    auto level = platform.windows.windowLevel(window);
    if (!level) {
        debugLog(fmt::format("[MenuBarScanner] level FAILED wid={}", window));
        return std::nullopt;
    }
    if (*level == menuBarWindowLevel) return std::nullopt;
    auto frame = itemFrame(window);
    if (!frame) {
        debugLog(fmt::format("[MenuBarScanner] bounds FAILED wid={}", window));
        return std::nullopt;
    }
    if (!hasItemGeometry(*frame, maxX)) return std::nullopt;

    auto info = infos.find(window);
    auto owner = owners.resolveOwner(window, frame->midX(),
                                     info == infos.end() ? nullptr : &info->second, axItems);
    if (!owner) return std::nullopt;
    debugLog(fmt::format("[MenuBarScanner] wid={} pid={} id={}", window, owner->pid,
                         owner->persistedID));
    return PendingItem{window, std::move(*owner), frame->midX(), frame->width, frame->height};
}

std::optional<Rect> MenuBarScanner::itemFrame(WindowNumber window) const {
    auto frame = platform.windows.windowFrame(window);
    if (frame && !frame->isEmpty()) return frame;
    auto description = platform.windows.windowDescription(window);
    return description ? description->bounds : std::nullopt;
}

}  // namespace nevo
