#pragma once

#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/ScannedBarItem.h"
#include "discovery/OwnerResolver.h"
#include "discovery/ScreenCaptureService.h"
#include "platform/Task.h"

namespace nevo {

/// Turns the window server's view of the menu bar into one ordered list of items, hidden ones
/// included: the only source of item lists in the program. One for the process, which outlives
/// every task; its caches live as long.
///
/// Every failure of the platform makes the result smaller and never ends the scan. An empty list is
/// no error.
class MenuBarScanner {
public:
    MenuBarScanner(const Platform& platform, ScreenCaptureService& capture);

    /// Items whose mid-point lies left of `maxX` (global, top-left origin), ascending by `centerX`.
    /// Windows in `excluding` are left out. Without `includeIcons` each item gets the icon that
    /// stands in for its picture.
    Task<ScannedBarItems> scan(std::set<WindowNumber> excluding, bool includeIcons,
                               double maxX = std::numeric_limits<double>::infinity());

    /// The last list if it is younger than `maxAge` seconds and not empty, else a scan with icons.
    /// A `maxAge` of 0 always scans. The cache takes no account of `excluding`.
    Task<ScannedBarItems> scanCached(std::set<WindowNumber> excluding, double maxAge);

    /// To be called after anything that changes the bar.
    void invalidateScanCache();
    void storeScanCache(ScannedBarItems items);

    /// The item windows of all programs, in no order that means anything; empty on failure.
    std::vector<WindowNumber> menuBarWindowIDs() const;

private:
    /// An accepted window while a scan runs.
    struct PendingItem {
        WindowNumber windowID = 0;
        ItemOwner owner;
        double centerX = 0;
        double width = 0;
        double height = 0;
    };
    using PendingItems = std::vector<PendingItem>;
    using Sizes = std::map<WindowNumber, Size>;
    using IconMap = std::map<WindowNumber, Image>;

    std::vector<WindowNumber> statusLayerWindowIDs() const;
    std::map<WindowNumber, WindowInfo> windowInfos() const;
    std::optional<PendingItem> acceptWindow(WindowNumber window, double maxX,
                                            const std::map<WindowNumber, WindowInfo>& infos,
                                            const std::vector<AXItemInfo>& axItems);
    std::optional<Rect> itemFrame(WindowNumber window) const;

    // The ladder of icon sources; each rung works on what those before it left open.
    Task<IconMap> captureIcons(PendingItems pending, Sizes sizes);
    std::vector<PendingItem> takeCachedIcons(const PendingItems& pending, IconMap& icons);
    int captureSingleWindows(const PendingItems& items, const Sizes& sizes, IconMap& icons);
    /// False when there was no composite picture.
    bool cropFromComposite(const PendingItems& items, const Sizes& sizes, IconMap& icons) const;
    void storeIcon(const PendingItem& item, const Image& icon, IconMap& icons);
    std::optional<Image> fallbackIcon(const PendingItem& item) const;
    std::optional<Image> symbolIcon(const std::string& label, const std::string& bundleID) const;

    const Platform& platform;
    ScreenCaptureService& captureService;
    OwnerResolver owners;

    ScannedBarItems lastScanItems;
    double lastScanAt = -std::numeric_limits<double>::infinity();
    std::map<WindowNumber, Image> iconCacheByWindow;
    std::map<std::string, Image> iconCacheByOwner;
};

}  // namespace nevo
