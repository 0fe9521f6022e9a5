#pragma once

#include <optional>

#include "platform/menubar/MenuBarRow.h"
#include "platform/sim/SimDefaults.h"
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
        /// The frame's origin while it floats above the row.
        std::optional<Point> floating;
        /// Points that it jumps at each settling of a bar that can't make up its mind.
        double jitter = 0;
    };

    SimBar(SimRunLoop& runLoop, SimWindows& allWindows, SimScreens& allScreens,
           SimDefaults& allDefaults, SimTrace& to)
        : loop(runLoop),
          windows(allWindows),
          screens(allScreens),
          defaults(allDefaults),
          trace(to) {}

    /// An item stands where the row remembers it; one that is new, or whose saved position somebody
    /// has changed, by that position, and without one at the left end. An own item has no name yet
    /// and starts at the left end.
    void insert(Item item);
    /// Takes the item out of the row and saves its position, 9999 or more if it is pushed off.
    void remove(WindowNumber window);
    /// An own item that grows from nothing is placed anew by its saved position; one that was long
    /// and opens sends all floating items back to their slots.
    void setLength(WindowNumber window, double length);
    /// Gives an item another name, and the place that is remembered or saved under it, if one is.
    void rename(WindowNumber window, const std::string& name);
    /// Takes an item out of the row, or puts it back at its saved position, without saving.
    void setShown(WindowNumber window, bool shown);

    /// Floats the item with its origin there, within the bar; near its slot or off the bar it
    /// rejoins the row. False for an unknown window.
    bool moveDirectly(WindowNumber window, Point origin);
    /// All floating items go back to their slots.
    void rejoinAll();

    /// A drag keeps the pointer where it was on the item, or at the item's centre when it began
    /// elsewhere. Only one is under way at a time.
    void beginDrag(WindowNumber window, Point pointer);
    bool isDragging() const { return dragged != 0; }
    /// 0 outside of a drag.
    WindowNumber draggedWindow() const { return dragged; }
    void dragTo(Point pointer);
    /// Drops the item and saves its position.
    void endDrag(Point pointer);

    /// The item under a place of the screen. Dividers take no clicks, nor do they where the bar
    /// hasn't laid out yet.
    const Item* itemAt(Point place) const;
    const Item* find(WindowNumber window) const;
    const Item* findLabel(const std::string& label) const;
    /// The windows of the row's items, left to right, those of length 0 too.
    std::vector<WindowNumber> order() const;
    bool isOnScreen(WindowNumber window) const;

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
    void place(Item& item, bool newcomer);
    /// Whether nobody but the bar has written the item's saved position, so that the row's own
    /// memory counts.
    bool isUntouched(const MenuBarRow::Item& slot) const;
    void layOut();
    void jump(WindowNumber window, double points, int step, double until);
    Rect slotFrame(WindowNumber window) const;
    void savePosition(const Item& item, bool leaving);
    void rememberOrder();
    /// What the row order is kept by, over restarts of the item's program.
    static std::string identity(const Item& item) {
        return item.own && !item.name.empty() ? item.name : item.label;
    }

    SimRunLoop& loop;
    SimWindows& windows;
    SimScreens& screens;
    SimDefaults& defaults;
    SimTrace& trace;
    MenuBarRow row;
    std::map<WindowNumber, Item> items;
    /// Identities from left to right, also of programs that aren't running now.
    std::vector<std::string> knownOrder;
    /// By identity: what the bar itself wrote last.
    std::map<std::string, double> lastSaved;
    int pendingLayouts = 0;
    WindowNumber dragged = 0;
    /// From the dragged item's centre to the pointer.
    double grabOffset = 0;
    std::string lastTraced;
};

}  // namespace nevo
