#pragma once

#include <vector>

#include "core/ShelfAppearance.h"
#include "platform/Geometry.h"

namespace nevo {

/// Where the slots of the floating bar stand.
struct ShelfLayout {
    /// Of the bar.
    Size size;
    /// One for each slot, in the bar: points, origin at its bottom left.
    std::vector<Rect> slots;
};

/// Lays out slots of these widths within `room`, the first at the top left: in one row that is
/// `oneRow` wide with its padding, or, where that is wider than the room, in as few rows as hold
/// all, which are about equally long. Where even that isn't enough room everything is made smaller.
ShelfLayout layOutShelf(const std::vector<double>& widths, double oneRow,
                        const ShelfBarStyleConfiguration& style, Size room);

}  // namespace nevo
