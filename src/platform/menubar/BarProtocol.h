#pragma once

#include <cstdint>

/// The words that `nevo-menubar` and its clients exchange over the X server, described in
/// docs/menubar-protocol.md. Everything is on the window that owns `_NET_SYSTEM_TRAY_Sn` ("the
/// bar's control window"), on the frame windows that it lists, or on a docked client's own window.
namespace nevo::barprotocol {

/// CARDINAL on the control window: the version spoken. A tray host without it isn't ours.
inline constexpr const char* version = "_NEVO_BAR_VERSION";
inline constexpr std::uint32_t currentVersion = 1;
/// CARDINAL on the control window: the process id of the bar.
inline constexpr const char* barPid = "_NEVO_BAR_PID";
/// CARDINAL on the control window of a bar that ends in order, written before anything is undone. A
/// bar whose control window goes without it has crashed.
inline constexpr const char* ending = "_NEVO_BAR_ENDING";
/// WINDOW[] on the control window: the frames of all items, left to right. Rewritten after each
/// layout, last.
inline constexpr const char* items = "_NEVO_BAR_ITEMS";
/// WINDOW on the control window: the window of the primary monitor's bar.
inline constexpr const char* barWindow = "_NEVO_BAR_WINDOW";
/// INTEGER[5] on the control window: bar's x, y, width, height (root coordinates, pixels), x of the
/// system area.
inline constexpr const char* geometry = "_NEVO_BAR_GEOMETRY";
/// INTEGER[4n] on the control window: x, y, width, height of the bar on each other monitor.
inline constexpr const char* otherBars = "_NEVO_BAR_OTHERS";

// On a frame.
inline constexpr const char* itemPid = "_NEVO_ITEM_PID";  ///< CARDINAL; absent when unknown
inline constexpr const char* itemAppId =
    "_NEVO_ITEM_APP_ID";  ///< UTF8_STRING, stable application id
inline constexpr const char* itemName =
    "_NEVO_ITEM_NAME";  ///< UTF8_STRING, the name its place is kept by
inline constexpr const char* itemOwnerName =
    "_NEVO_ITEM_OWNER_NAME";  ///< UTF8_STRING, the program's name for people
inline constexpr const char* itemTitle =
    "_NEVO_ITEM_TITLE";  ///< UTF8_STRING, what its program calls the item now; absent when it
                         ///< doesn't
inline constexpr const char* itemSigns =
    "_NEVO_ITEM_SIGNS";  ///< UTF8_STRING, what application id and name were taken from
inline constexpr const char* itemKind =
    "_NEVO_ITEM_KIND";  ///< CARDINAL: 0 XEmbed, 1 StatusNotifierItem
inline constexpr const char* itemClient =
    "_NEVO_ITEM_CLIENT";  ///< WINDOW: the embedded client of an XEmbed item
/// INTEGER[6]: the slot's x, y, width, height in root coordinates, 1 while the item floats above
/// the row, and how far to the right of its slot it stands while there is room for one that floats.
/// The frame's own geometry is where the item really stands.
inline constexpr const char* itemSlot = "_NEVO_ITEM_SLOT";
inline constexpr const char* itemOpacity =
    "_NEVO_ITEM_OPACITY";  ///< CARDINAL: 0 to 0xffffffff, in force

// Client messages, format 32, sent to the control window with no event mask. Unknown frames and
// leases are ignored.
/// frame, opacity (0 to 0xffffffff), lease window.
inline constexpr const char* setOpacity = "_NEVO_BAR_SET_OPACITY";
/// frame, x, y of the frame's origin (root coordinates, signed), lease window. In the bar the item
/// floats beside the one that is kept in sight, at whatever x.
inline constexpr const char* moveItem = "_NEVO_BAR_MOVE";
/// frame, phase, x, y of the pointer (root coordinates, signed), lease window.
inline constexpr const char* drag = "_NEVO_BAR_DRAG";
enum DragPhase : std::uint32_t {
    /// The next Command press of an XTEST device drags this frame, whatever lies under the pointer.
    dragAnnounced = 0,
    /// A drag without the pointer: press, motion, release.
    dragBegan = 1,
    dragMoved = 2,
    dragEnded = 3,
};

/// frame, 1 to come and 0 to go, x of its middle (root coordinates, signed), lease window.
inline constexpr const char* visit = "_NEVO_BAR_VISIT";

// On a docked client's own window, set by a program that plays a native status item.
/// CARDINAL/INTEGER: the slot's width in pixels times 1000; -1000 means as wide as the client asks.
/// No minimum.
inline constexpr const char* statusItemLength = "_NEVO_STATUS_ITEM_LENGTH";
/// UTF8_STRING: the name under which the item's place is saved; a change places the item anew.
inline constexpr const char* statusItemName = "_NEVO_STATUS_ITEM_NAME";
/// UTF8_STRING: the domain (application id) of the saved place.
inline constexpr const char* statusItemAppId = "_NEVO_STATUS_ITEM_APP_ID";

/// The names of the manager's status items that have a role in the row (`MenuBarRow::Role`).
inline constexpr const char* keptInSightName = "Nevo_Toggle";
inline constexpr const char* boundaryName = "Nevo_AlwaysHiddenDivider";

/// The key under which an application's domain keeps an item's position, before the item's name.
inline constexpr const char* preferredPositionPrefix = "NSStatusItem Preferred Position ";

}  // namespace nevo::barprotocol
