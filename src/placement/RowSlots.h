#pragma once

#include <vector>

#include "platform/WindowServer.h"

namespace nevo {

/// Where the bar's layout has an item; top-left origin.
struct RowSlot {
    WindowNumber window = 0;
    Rect frame;
    /// For lack of room it stands beyond the bar's right end, whatever its place in the order.
    bool hasGivenWay = false;
};

/// The items of the bar in the order of the row, left to right, pushed off ones and this program's
/// own included. Those without a width, such as an open divider, or whose slot can't be read are
/// left out. An item that has been moved directly counts where its slot is. Empty on failure.
std::vector<RowSlot> rowSlots(const WindowServer& windows);

/// Whether `rowSlots` leaves out none whose slot can't be read.
bool isRowReadable(const WindowServer& windows);

}  // namespace nevo
