#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <string>
#include <vector>

namespace nevo::menubar {

/// Of the bar, in pixels.
inline constexpr int smallestHeight = 16;
inline constexpr int largestHeight = 128;

struct Options {
    /// Of the bar, in pixels; 0 follows the screen's resolution.
    int height = 0;
    bool clock = true;
    /// Held with button 1 to drag an item.
    std::uint16_t dragModifier = XCB_MOD_MASK_4;
    bool help = false;
    /// Tell of the bar that runs, and start none.
    bool listsItems = false;
};

/// The options of a command line without the program's name; nothing and one plain sentence in
/// `failure` when it can't be understood.
std::optional<Options> parseOptions(const std::vector<std::string>& arguments,
                                    std::string& failure);

extern const char* const helpText;

}  // namespace nevo::menubar
