#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "menubar/ItemFace.h"
#include "menubar/ItemFrame.h"
#include "menubar/XembedClient.h"
#include "platform/Geometry.h"
#include "platform/menubar/MenuBarRow.h"
#include "platform/xcb/WindowOwner.h"
#include "statusnotifier/Item.h"

namespace nevo::menubar {

/// What stands behind a frame; the number is that of the protocol.
enum class ItemKind : std::uint32_t { xembed = 0, statusNotifier = 1 };

inline constexpr std::uint32_t fullOpacity = 0xFFFFFFFF;

/// A request of the client's own for its slot (`_NEVO_STATUS_ITEM_LENGTH`).
inline constexpr double lengthOfContent = -1.0;

/// A status item in the bar, shown or withdrawn by its program.
struct BarItem {
    MenuBarRow::Key key = 0;
    ItemKind kind = ItemKind::xembed;
    std::unique_ptr<ItemFrame> frame;
    /// What stands in the frame: a window of the program, or our own `face`.
    xcb_window_t client = 0;
    /// Of a program that offers its item over the bus; nullptr for a window's.
    statusnotifier::Item* notifier = nullptr;
    std::unique_ptr<ItemFace> face;
    std::string title;
    statusnotifier::Picture shownPicture;
    statusnotifier::Picture shownOverlay;
    /// What its program is installed with; shown where the item itself has no picture.
    std::string iconName;
    /// What of the program's repetitions has been heeded.
    unsigned timesRepeated = 0;

    std::optional<ProcessId> pid;
    xcb::WindowClass windowClass;
    std::string windowName;
    std::string applicationId;
    std::string ownerName;
    /// What these were taken from.
    std::string signs;
    /// The name that its place is kept by.
    std::string name;
    /// The key of its place in the order of the row.
    std::string identity;
    /// Named by its client, as native status items are; else `name` was chosen for it.
    bool hasOwnName = false;

    XembedInfo xembed;
    /// Of a client without `_XEMBED_INFO`, which shows itself by mapping.
    bool isMapped = true;
    bool isInRow = false;
    /// Taken in from the root window, not docked by its program.
    bool isAdopted = false;
    /// Its program shows the same item over the bus.
    bool isTwin = false;
    /// Something of the client that we read has changed.
    bool isStale = false;

    /// What the client asks for, pixels.
    int requestedWidth = 0;
    /// Set by a program that plays a native status item.
    std::optional<double> statusLength;

    std::uint32_t opacity = fullOpacity;
    xcb_window_t opacityLease = 0;
    /// Above the row.
    bool floats = false;
    xcb_window_t floatLease = 0;

    /// As last published, root coordinates.
    PixelRect slot;
    std::array<std::uint32_t, 6> publishedSlot{};
    /// How far to the right of its slot it stands, to make room for a float.
    int roomShift = 0;
    /// Its client asked for a size and waits to hear of one.
    bool awaitsPlace = true;
    bool hasDamage = true;

    /// Of a window's item: its program wants it to be shown, and nothing stands for it.
    bool wantsPlace() const { return (xembed.present ? xembed.wantsMapped : isMapped) && !isTwin; }
    bool isStatusItem() const { return statusLength.has_value(); }
    /// The width of its slot.
    double length() const {
        if (statusLength && *statusLength != lengthOfContent) return *statusLength;
        return requestedWidth;
    }
};

}  // namespace nevo::menubar
