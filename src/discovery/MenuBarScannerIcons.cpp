#include <fmt/format.h>

#include "core/debugLog.h"
#include "discovery/ItemIdentity.h"
#include "discovery/MenuBarScanner.h"

namespace nevo {

namespace {

constexpr Size standInSize{22.0, 22.0};
constexpr Size iconSize{18.0, 18.0};
constexpr std::size_t maxWindowIcons = 500;
constexpr double scaleWithoutScreen = 2.0;

Size sizeOf(const std::map<WindowNumber, Size>& sizes, WindowNumber window) {
    auto found = sizes.find(window);
    return found == sizes.end() ? standInSize : found->second;
}

Image sized(Image picture, Size size) {
    picture.size = size;
    return picture;
}

}  // namespace

Task<MenuBarScanner::IconMap> MenuBarScanner::captureIcons(PendingItems pending, Sizes sizes) {
    IconMap icons;
    if (pending.empty()) co_return icons;
    if (iconCacheByWindow.size() > maxWindowIcons) iconCacheByWindow.clear();
    PendingItems needCapture = takeCachedIcons(pending, icons);
    if (needCapture.empty()) {
        debugLog(fmt::format("[MenuBarScanner] all {} from cache", pending.size()));
        co_return icons;
    }
    std::size_t cached = pending.size() - needCapture.size();
    int cgs = captureSingleWindows(needCapture, sizes, icons);

    int sck = 0;
    std::vector<WindowNumber> open;
    for (const PendingItem& item : needCapture) {
        if (!icons.contains(item.windowID)) open.push_back(item.windowID);
    }
    if (platform.screenCapture.preflightAccess() && !open.empty()) {
        debugLog(fmt::format("[MenuBarScanner] SCK fallback needCapture={}", open.size()));
        std::map<WindowNumber, Image> pictures = co_await captureService.capture(open);
        for (const PendingItem& item : needCapture) {
            auto picture = pictures.find(item.windowID);
            if (picture == pictures.end()) continue;
            storeIcon(item, sized(picture->second, sizeOf(sizes, item.windowID)), icons);
            ++sck;
        }
    }
    debugLog(fmt::format("[MenuBarScanner] cached={} cgs={} sck={}", cached, cgs, sck));

    PendingItems without;
    for (const PendingItem& item : needCapture) {
        if (!icons.contains(item.windowID)) without.push_back(item);
    }
    if (!without.empty() && cropFromComposite(without, sizes, icons)) {
        debugLog(
            fmt::format("[MenuBarScanner] after composite: {}/{}", icons.size(), pending.size()));
    }
    for (const PendingItem& item : pending) {
        if (icons.contains(item.windowID)) continue;
        auto icon = fallbackIcon(item);
        if (!icon) continue;
        storeIcon(item, *icon, icons);
        debugLog(fmt::format("[MenuBarScanner] fallback wid={} label={}", item.windowID,
                             item.owner.label));
    }
    co_return icons;
}

std::vector<MenuBarScanner::PendingItem> MenuBarScanner::takeCachedIcons(
    const PendingItems& pending, IconMap& icons) {
    PendingItems needCapture;
    for (const PendingItem& item : pending) {
        auto byWindow = iconCacheByWindow.find(item.windowID);
        if (byWindow != iconCacheByWindow.end()) {
            icons[item.windowID] = byWindow->second;
            continue;
        }
        auto key = iconOwnerKey(item.owner.persistedID, item.owner.bundleID);
        auto byOwner = key ? iconCacheByOwner.find(*key) : iconCacheByOwner.end();
        if (byOwner != iconCacheByOwner.end()) {
            icons[item.windowID] = byOwner->second;
            iconCacheByWindow[item.windowID] = byOwner->second;
            continue;
        }
        needCapture.push_back(item);
    }
    return needCapture;
}

int MenuBarScanner::captureSingleWindows(const PendingItems& items, const Sizes& sizes,
                                         IconMap& icons) {
    int captured = 0;
    for (const PendingItem& item : items) {
        auto picture = platform.windows.windowImage(item.windowID);
        if (!picture) continue;
        storeIcon(item, sized(*picture, sizeOf(sizes, item.windowID)), icons);
        ++captured;
    }
    return captured;
}

bool MenuBarScanner::cropFromComposite(const PendingItems& items, const Sizes& sizes,
                                       IconMap& icons) const {
    auto screen = platform.screens.mainScreen();
    double scale = screen ? screen->backingScale : scaleWithoutScreen;
    std::vector<WindowNumber> kept;
    std::map<WindowNumber, Rect> frames;
    Rect all;
    for (const PendingItem& item : items) {
        auto frame = platform.windows.windowFrame(item.windowID);
        if (!frame || frame->isEmpty()) continue;
        kept.push_back(item.windowID);
        frames[item.windowID] = *frame;
        all = all.unionWith(*frame);
    }
    auto composite = platform.windows.compositeImage(kept);
    if (!composite) return false;
    for (WindowNumber window : kept) {
        const Rect& frame = frames[window];
        auto part = cropped(*composite, {(frame.x - all.x) * scale, (frame.y - all.y) * scale,
                                         frame.width * scale, frame.height * scale});
        if (!part) continue;
        // Crops go into no cache: what lay over the item at that moment may be in them.
        auto size = sizes.find(window);
        icons[window] =
            sized(*part, size == sizes.end() ? Size{frame.width, frame.height} : size->second);
        debugLog(fmt::format("[MenuBarScanner] composite OK wid={}", window));
    }
    return true;
}

void MenuBarScanner::storeIcon(const PendingItem& item, const Image& icon, IconMap& icons) {
    icons[item.windowID] = icon;
    iconCacheByWindow[item.windowID] = icon;
    if (auto key = iconOwnerKey(item.owner.persistedID, item.owner.bundleID))
        iconCacheByOwner[*key] = icon;
}

std::optional<Image> MenuBarScanner::fallbackIcon(const PendingItem& item) const {
    const ItemOwner& owner = item.owner;
    bool genericSystemLabel = isSystemBundleID(owner.bundleID) &&
                              ((owner.app && owner.app->localizedName == owner.label) ||
                               owner.label == owner.ownerName || owner.label.empty());
    std::string preferred = preferredIconBundleID(owner.persistedID, owner.bundleID);
    if (!preferred.empty() && !isSystemBundleID(preferred)) {
        auto app = platform.workspace.runningApplication(preferred);
        if (app && app->icon) {
            debugLog("[MenuBarScanner] fallback using NSRunningApplication.icon for bundleID=" +
                     preferred);
            return platform.images.redrawn(*app->icon, iconSize);
        }
    }
    if (auto symbol = symbolIcon(owner.label, owner.bundleID)) return symbol;
    if (!genericSystemLabel && owner.app && owner.app->icon)
        return platform.images.redrawn(*owner.app->icon, iconSize);
    return platform.images.systemSymbol("app.dashed", "");
}

std::optional<Image> MenuBarScanner::symbolIcon(const std::string& label,
                                                const std::string& bundleID) const {
    auto name = symbolName(label, bundleID);
    if (!name) return std::nullopt;
    auto symbol = platform.images.systemSymbol(*name, label);
    if (!symbol) return std::nullopt;
    Image icon = platform.images.redrawn(*symbol, iconSize);
    icon.isTemplate = true;
    return icon;
}

}  // namespace nevo
