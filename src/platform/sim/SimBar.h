#pragma once

#include <functional>
#include <optional>

#include "platform/menubar/FloatRoom.h"
#include "platform/menubar/RowKeeper.h"
#include "platform/sim/SimRowStore.h"
#include "platform/sim/SimRunLoop.h"
#include "platform/sim/SimScreens.h"
#include "platform/sim/SimTrace.h"
#include "platform/sim/SimWindows.h"

namespace nevo {

/// The menu bar of the main display: the row of all programs' status items, their drags and their
/// saved positions. Items are named by their window's number; places have their origin at the top
/// left.
///
/// A change of the row shows in the windows' frames only after `layoutDelay`, as the real bar takes
/// its time to lay out.
class SimBar {
public:
    struct Item {
        WindowNumber window = 0;
        /// How scripts and the trace name it.
        std::string label;
        /// Whose stored values keep its position, and under which name.
        std::string domain;
        std::string name;
        /// Whether it is one of the program's own.
        bool own = false;
        double length = 0;
        /// Where the last layout had it, as the bar tells it.
        Rect slot;
        /// It floats above the row.
        bool floating = false;
        /// How far the layout has it to the right of its slot, to make room for a float.
        double aside = 0;
        /// Points that it jumps at each settling of a bar that can't make up its mind.
        double jitter = 0;
    };

    SimBar(SimRunLoop& runLoop, SimWindows& allWindows, SimScreens& allScreens,
           SimDefaults& allDefaults, SimTrace& to)
        : loop(runLoop),
          windows(allWindows),
          screens(allScreens),
          trace(to),
          store(allDefaults),
          keeper(store, 1) {}

    /// Places the item as `RowKeeper` says. An own item has no name yet and starts at the left end.
    void insert(Item item);
    /// Takes the item out of the row and saves its position.
    void remove(WindowNumber window);
    /// An item that grows from nothing is placed anew by its saved position; an own one that was
    /// long and opens sends all floating items back to their slots.
    void setLength(WindowNumber window, double length);
    /// Gives an item another name, and the place that is remembered or saved under it.
    void rename(WindowNumber window, const std::string& name);
    /// Takes an item out of the row, or puts it back.
    void setShown(WindowNumber window, bool shown);

    /// Floats the item beside the one that is kept in sight; near its slot or off the bar it
    /// rejoins the row. False for an unknown window, and for one that can't float.
    bool moveDirectly(WindowNumber window, Point origin);
    /// All floating items go back to their slots.
    void rejoinAll();

    /// A drag keeps the pointer where it was on the item, or at the item's centre when it began
    /// elsewhere. Only one is under way at a time; one with the pointer takes over from one
    /// without, whose item stays in its place until it is dropped.
    void beginDrag(WindowNumber window, Point pointer, bool usesPointer);
    bool isDragging() const { return dragged != 0; }
    bool isPointerDragging() const { return dragged != 0 && dragUsesPointer; }
    /// 0 outside of a drag.
    WindowNumber draggedWindow() const { return dragged; }
    void dragTo(Point pointer);
    /// Drops the item. Its window is where it was dropped until the bar has laid out.
    void endDrag(Point pointer);

    /// The item under a place of the screen. Dividers take no clicks, nor do they where the bar
    /// hasn't laid out yet.
    const Item* itemAt(Point place) const;
    const Item* find(WindowNumber window) const;
    const Item* findLabel(const std::string& label) const;
    /// The windows of the row's items, left to right, those of length 0 too.
    std::vector<WindowNumber> order() const;
    bool isOnScreen(WindowNumber window) const;
    /// Where the row ends; nothing without a display.
    std::optional<double> systemAreaLeft() const;

    /// The items that can have a place in sight, left to right: those that have a width and are no
    /// collapsed dividers. Nothing while none of them is the program's own.
    std::optional<std::vector<WindowNumber>> placedItems() const;

    /// Where the pointer is; a room isn't opened or closed under it if that can be helped.
    std::function<Point()> pointerLocation;
    /// Called when an item has come, gone, moved in the order or changed its length.
    std::function<void()> rowChanged;
    /// Called when the windows stand in new places.
    std::function<void()> laidOut;

    /// Lays out after the delay: displays have changed.
    void layOutLater();
    /// Whether the windows show every change of the row.
    bool hasSettled() const { return pendingLayouts == 0; }
    /// The item jumps by up to `points` each 0.1 s, for `seconds`.
    void jitter(WindowNumber window, double points, double seconds);

    /// Seconds from a change to the new frames.
    double layoutDelay = 0.02;
    /// The width of the bar's own area at its right end, points.
    static constexpr double systemAreaWidth = 120;

private:
    MenuBarRow::Room room() const;
    /// With the one for a float.
    MenuBarRow::Room openRoom();
    bool isSeen(MenuBarRow::Key key) const;
    bool pointerRestsOnKept() const;
    void endFloat(Item& item);
    void closeLater();
    void place(const Item& item);
    /// Saves what has changed in the row, and shows it.
    void settle();
    void layOut();
    void followPointer(Point pointer);
    void jump(WindowNumber window, double points, int step, double until);
    Rect slotFrame(WindowNumber window) const;

    SimRunLoop& loop;
    SimWindows& windows;
    SimScreens& screens;
    SimTrace& trace;
    SimRowStore store;
    RowKeeper keeper;
    FloatRoom floatRoom;
    std::map<WindowNumber, Item> items;
    int pendingLayouts = 0;
    bool isClosePending = false;
    WindowNumber dragged = 0;
    bool dragUsesPointer = false;
    /// From the dragged item's centre to the pointer.
    double grabOffset = 0;
    std::string lastTraced;
};

}  // namespace nevo
