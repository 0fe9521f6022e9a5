#pragma once

#include <optional>
#include <string>

#include "menubar/Display.h"

namespace nevo::menubar {

/// A line for each item of the bar that runs on this display, left to right: who it is, and what
/// that was taken from. Nothing, and one plain sentence in `failure`, when no bar of ours runs.
std::optional<std::string> reportItems(const Display& display, std::string& failure);

}  // namespace nevo::menubar
