#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/ScannedBarItem.h"

namespace nevo {

/// A hidden item as it is kept for showing, copied from the scan that hid it.
struct BarItem {
    std::string bundleID;
    ProcessId ownerPID = 0;
    std::string label;
    std::string persistedID;
    double centerX = 0;
    double width = 0;
    std::optional<Image> icon;
    WindowNumber windowID = 0;

    explicit BarItem(const ScannedBarItem& item)
        : bundleID(item.bundleID),
          ownerPID(item.ownerPID),
          label(item.label),
          persistedID(item.persistedID),
          centerX(item.centerX),
          width(item.width),
          icon(item.icon),
          windowID(item.windowID) {}
};

inline std::vector<BarItem> barItems(const ScannedBarItems& items) {
    return {items.begin(), items.end()};
}

}  // namespace nevo
