#pragma once

#include <map>
#include <string>

#include "platform/Geometry.h"

namespace nevo {

/// A window as the window server keeps it. Frames have their origin at the top left.
struct SimWindow {
    WindowNumber number = 0;
    ProcessId pid = 0;
    std::string ownerName;
    std::string name;
    int layer = 0;
    Rect frame;
    float alpha = 1;
    /// Whether the list of menu bar windows has it.
    bool inMenuBarList = false;
    /// An unmapped window is in no list.
    bool mapped = true;
};

/// All windows of the desktop, by number. A number is never given twice.
class SimWindows {
public:
    /// Takes a window in and numbers it.
    WindowNumber create(SimWindow window) {
        window.number = next++;
        WindowNumber number = window.number;
        windows.emplace(number, std::move(window));
        return number;
    }
    void destroy(WindowNumber number) { windows.erase(number); }

    /// nullptr when it is gone.
    SimWindow* find(WindowNumber number) {
        auto found = windows.find(number);
        return found == windows.end() ? nullptr : &found->second;
    }
    const SimWindow* find(WindowNumber number) const {
        auto found = windows.find(number);
        return found == windows.end() ? nullptr : &found->second;
    }
    /// Ascending by number, that is by age.
    const std::map<WindowNumber, SimWindow>& all() const { return windows; }

private:
    std::map<WindowNumber, SimWindow> windows;
    WindowNumber next = 10;
};

}  // namespace nevo
