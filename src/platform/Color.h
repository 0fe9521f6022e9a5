#pragma once

namespace nevo {

/// A colour in sRGB, components 0 to 1, not premultiplied; or the desktop's own colour for text,
/// which is whatever the desktop's theme says when it is drawn (`NSColor.labelColor`).
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;
    bool isLabel = false;

    bool operator==(const Color&) const = default;

    static constexpr Color white(double white, double alpha = 1) {
        return {white, white, white, alpha};
    }
    static constexpr Color clear() { return {}; }
    static constexpr Color label() { return {0, 0, 0, 1, true}; }
    /// `colorWithAlphaComponent:`.
    constexpr Color withAlpha(double value) const { return {red, green, blue, value, isLabel}; }
};

}  // namespace nevo
