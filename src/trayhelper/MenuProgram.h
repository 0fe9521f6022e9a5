#pragma once

#include <optional>
#include <string>
#include <vector>

namespace nevo::trayhelper {

/// Which menu, and where.
struct MenuPlace {
    std::string service;
    std::string path;
    /// What it hangs on, in pixels of the display, from its top left.
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// From "SERVICE PATH X Y WIDTH HEIGHT". Nothing when they aren't that, with one sentence in
/// `failure`.
std::optional<MenuPlace> parseMenuPlace(const std::vector<std::string>& arguments,
                                        std::string& failure);

/// Shows the menu until it closes, and tells its program what was chosen. Gives the exit status: 0
/// once it has been shown, 1 when there was nothing to show.
int showMenu(const MenuPlace& place);

}  // namespace nevo::trayhelper
