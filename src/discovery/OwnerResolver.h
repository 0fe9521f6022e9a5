#pragma once

#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace nevo {

/// What the global window list tells of one window; missing names are empty.
struct WindowInfo {
    ProcessId pid = 0;
    std::string ownerName;
    std::string windowName;
};

/// One element of an application's extras menu bar. `midX`: global, origin at the top left.
struct AXItemInfo {
    double midX = 0;
    ProcessId pid = 0;
    std::string title;
};

/// Whose item a window is, and how it is recognised again.
struct ItemOwner {
    ProcessId pid = 0;
    std::string bundleID;
    std::string label;
    std::string persistedID;
    std::string ownerName;
    std::optional<RunningApplication> app;
};

/// Settles who owns a status item's window, what it is called and its `persistedID`. Where the
/// window list says only "control centre" or nothing, the accessibility tree tells the items apart,
/// matched by position alone. Keeps two caches for the life of the process.
class OwnerResolver {
public:
    explicit OwnerResolver(const Platform& platform);

    /// The extras of all running applications, at most 10 s old; empty without the accessibility
    /// permission. An application that hangs blocks the walk, hence the age.
    std::vector<AXItemInfo> axExtrasItems();

    /// `info` is nullptr for a window that the list doesn't tell of. Nothing when the window is
    /// this program's own.
    std::optional<ItemOwner> resolveOwner(WindowNumber window, double midX, const WindowInfo* info,
                                          const std::vector<AXItemInfo>& axItems);

private:
    struct Candidate {
        ProcessId pid = 0;
        std::string bundleID;
        std::string name;
        std::optional<RunningApplication> app;
    };
    struct CachedOwner {
        ProcessId pid = 0;
        std::string bundleID;
        std::string name;
    };
    void appendExtras(const RunningApplication& app, std::vector<AXItemInfo>& items) const;
    Candidate candidateFromWindow(const WindowInfo& info) const;
    void applyCachedOwner(WindowNumber window, Candidate& owner) const;
    void matchByPosition(double midX, const std::vector<AXItemInfo>& axItems,
                         Candidate& owner) const;
    bool isOwnProcess(const Candidate& owner) const;

    const Platform& platform;
    std::vector<AXItemInfo> cachedAXItems;
    double axItemsScannedAt = -std::numeric_limits<double>::infinity();
    /// The last real owner known for a window; never evicted, since window numbers aren't used
    /// again.
    std::map<WindowNumber, CachedOwner> controlCenterOwnerCache;
};

}  // namespace nevo
