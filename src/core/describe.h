#pragma once

#include <optional>
#include <string>

#include "platform/Geometry.h"

namespace nevo {

/// How values stand in log lines: the shortest decimal that reads back as the same number, with at
/// least one digit after the point ("22.0"); frames as "(x, y, width, height)"; whole numbers cut
/// off towards zero.
std::string describe(double value);
std::string describe(bool value);
std::string describe(Point value);
std::string describe(const Rect& value);
/// "nil" for nothing.
std::string describe(const std::optional<Rect>& value);
std::string describeWhole(double value);

}  // namespace nevo
