#pragma once

#include <xcb/xcb.h>

#include <map>
#include <optional>

#include "platform/Geometry.h"

namespace nevo {

/// The process's own numbers for windows of the server. The server gives the id of a window that is
/// gone to another one (a bar that was started anew gives old ids to other items); these numbers
/// are never used again.
class WindowNumbers {
public:
    /// The window's number; a new one at the first question.
    WindowNumber of(xcb_window_t window) {
        auto [entry, isNew] = numbers.try_emplace(window, next);
        if (isNew) windows[next++] = window;
        return entry->second;
    }
    std::optional<xcb_window_t> window(WindowNumber number) const {
        auto found = windows.find(number);
        if (found == windows.end()) return std::nullopt;
        return found->second;
    }
    /// The window is gone: its number means nothing from now on.
    void drop(xcb_window_t window) {
        auto found = numbers.find(window);
        if (found == numbers.end()) return;
        windows.erase(found->second);
        numbers.erase(found);
    }

private:
    std::map<xcb_window_t, WindowNumber> numbers;
    std::map<WindowNumber, xcb_window_t> windows;
    WindowNumber next = 101;
};

}  // namespace nevo
