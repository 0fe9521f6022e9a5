#include "menubar/UsualHeight.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <string>

#include "menubar/Options.h"
#include "platform/menubar/BarScale.h"
#include "platform/xcb/Properties.h"

namespace nevo::menubar {

namespace {
constexpr double usualDotsPerInch = 96;
/// Some desktops keep hundreds of lines there, and the one that counts may be the last.
constexpr std::uint32_t mostBytes = 1U << 20U;
constexpr std::string_view dotsPerInch = "Xft.dpi:";

/// From the text of the root window's property `RESOURCE_MANAGER`.
double resolutionIn(const std::string& resources) {
    double dpi = 0;
    std::istringstream lines(resources);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(dotsPerInch)) dpi = std::atof(line.c_str() + dotsPerInch.size());
    }
    // A screen that claims less has a bar that can still be hit; nonsense counts as nothing.
    return dpi > usualDotsPerInch ? dpi : usualDotsPerInch;
}
}  // namespace

int usualHeight(const Display& display) {
    xcb::PropertyRead resources(display.get(), display.root(), XCB_ATOM_RESOURCE_MANAGER,
                                mostBytes);
    double dpi = resolutionIn(resources.text().value_or(""));
    double height = std::min<double>(largestHeight, usualBarThickness * dpi / usualDotsPerInch);
    return static_cast<int>(std::lround(height));
}

}  // namespace nevo::menubar
