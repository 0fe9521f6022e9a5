#pragma once

#include <cstdint>
#include <string>

#include "platform/sim/SimDesktop.h"

namespace nevo {

/// Starts `programs` programs with one item each on the desktop, and lets its bar lay them out.
void fillDesktop(SimDesktop& desktop, std::int64_t programs);

/// What the item of a program, counted from 0, is known by.
std::string bundleOf(std::int64_t program);
std::string idOfItem(std::int64_t program);

}  // namespace nevo
