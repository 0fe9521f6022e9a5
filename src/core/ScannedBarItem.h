#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Image.h"

namespace nevo {

/// One status item of another application, as a scan found it.
struct ScannedBarItem {
    /// A run-time handle only; it doesn't outlive the item.
    WindowNumber windowID = 0;
    /// The process that owns the item, 0 when nothing is known.
    ProcessId ownerPID = 0;
    /// The item's identity across scans and launches; not unique among an application's unnamed
    /// items.
    std::string persistedID;
    /// The owner's application identifier; may be empty.
    std::string bundleID;
    /// The name for people.
    std::string label;
    /// The window's horizontal mid-point: global points, origin at the top left of the main
    /// display.
    double centerX = 0;
    double width = 0;
    double height = 0;
    /// Nothing only when every source failed.
    std::optional<Image> icon;
};

using ScannedBarItems = std::vector<ScannedBarItem>;

}  // namespace nevo
