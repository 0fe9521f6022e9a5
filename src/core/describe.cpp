#include "core/describe.h"

#include <fmt/format.h>

#include <cmath>

namespace nevo {

std::string describe(double value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    std::string text = fmt::format("{}", value);
    if (text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

std::string describe(bool value) { return value ? "true" : "false"; }

std::string describe(Point value) {
    return fmt::format("({}, {})", describe(value.x), describe(value.y));
}

std::string describe(const Rect& value) {
    return fmt::format("({}, {}, {}, {})", describe(value.x), describe(value.y),
                       describe(value.width), describe(value.height));
}

std::string describe(const std::optional<Rect>& value) { return value ? describe(*value) : "nil"; }

std::string describeWhole(double value) { return fmt::format("{:.0f}", std::trunc(value) + 0.0); }

}  // namespace nevo
