#pragma once

#include <map>
#include <string>

#include "core/BarItem.h"
#include "platform/Platform.h"
#include "platform/Task.h"

namespace nevo {

/// Every way in which the program moves another application's item: what a person does, Command and
/// a drag, played by synthetic events, and the window server's direct move. One for the process,
/// which outlives every task. A move that fails shows in the log and in the next scan only.
class ItemMover {
public:
    explicit ItemMover(const Platform& platform);

    /// Drags the item to `target` (global, top-left origin), several times if need be, then moves
    /// it directly. True when its slot stands among the others as `target` did before, also when it
    /// did so from the start; nothing is dragged then. An item that only floats there is put back.
    /// Blocks the main thread for its waits, so that no other event comes between press and
    /// release.
    Task<bool> moveItem(WindowNumber windowID, Point target);

    /// The same without the pointer, for places that it can't reach: nothing is seen to move.
    Task<bool> reorderInPlace(WindowNumber windowID, Point target);

    /// The shelf's move, into the visible part and back: directly or not at all, since a drag would
    /// change the order of the row.
    Task<bool> moveForShelf(BarItem item, Point target);

    /// Asks for the window's centre to come to `targetCenterX`, for a float: the bar chooses its
    /// place. Blocks for 100 ms.
    void moveWindowDirectly(WindowNumber windowID, const std::string& label, Rect frame,
                            double targetCenterX);
    /// Whether the item stands elsewhere than in its slot.
    bool isFloating(WindowNumber windowID) const;

    /// A drag that starts far off the screen, so that it can't catch anything else on its way. True
    /// as for `moveItem`.
    Task<bool> offscreenSyntheticDrag(WindowNumber windowID, Point target);

    /// Above 0 while a synthetic move is under way and for 0.3 s after it: others then stand back.
    int programmaticMoveCount() const { return moveCount; }
    void beginProgrammaticMove();
    void endProgrammaticMove();

    /// The window's frame; nothing when it can't be read or is empty.
    std::optional<Rect> readableFrame(WindowNumber windowID) const;

private:
    enum class Attempt { moved, notMoved, eventFailed };
    /// Where an item is to stand: which of the others are to be left of it.
    struct Place {
        WindowNumber windowID = 0;
        /// Of the others, by window.
        std::map<WindowNumber, bool> isLeft;
    };
    Place placeAt(WindowNumber windowID, double targetX) const;
    bool hasArrived(const Place& place) const;
    /// Its slot is in the bar, left of the system area.
    bool standsInSight(WindowNumber windowID) const;
    Attempt dragOnce(EventSource& source, const Place& place, int number, Point start, Point mid,
                     Point target);
    bool moveByFallback(const Place& place, Point target);
    std::optional<MouseEvent> moveEvent(EventSource& source, EventType type, Point at,
                                        WindowNumber windowID);
    Point cursorAtTopLeftOrigin() const;
    void restoreCursor(Point place);

    const Platform& platform;
    int moveCount = 0;
};

}  // namespace nevo
