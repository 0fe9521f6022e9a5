#pragma once

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
    /// it directly. True when a drag moved the window's x by more than 100 points, or the direct
    /// move reported success. Blocks the main thread for its waits, so that no other event comes
    /// between press and release.
    Task<bool> moveItem(WindowNumber windowID, Point target);

    /// The shelf's move, into the visible part and back: directly, else by a drag from off the
    /// screen.
    Task<bool> moveForShelf(BarItem item, Point target);

    /// Moves the window so that its centre comes to `targetCenterX`. Blocks for 100 ms. True when
    /// it has arrived.
    bool moveWindowDirectly(WindowNumber windowID, const std::string& label, Rect frame,
                            double targetCenterX);

    /// A drag that starts far off the screen, so that it can't catch anything else on its way.
    Task<bool> offscreenSyntheticDrag(BarItem item, Rect frame, Point target);

    /// Above 0 while a synthetic move is under way and for 0.3 s after it: others then stand back.
    int programmaticMoveCount() const { return moveCount; }
    void beginProgrammaticMove();
    void endProgrammaticMove();

    /// The window's frame; nothing when it can't be read or is empty.
    std::optional<Rect> readableFrame(WindowNumber windowID) const;
    /// Makes a window transparent or opaque, whoever owns it.
    bool setWindowAlpha(WindowNumber windowID, double alpha);

private:
    enum class Attempt { moved, notMoved, eventFailed };
    Attempt dragOnce(EventSource& source, WindowNumber windowID, int number, Point start, Point mid,
                     Point target);
    bool moveByFallback(WindowNumber windowID, Point target);
    std::optional<MouseEvent> moveEvent(EventSource& source, EventType type, Point at,
                                        WindowNumber windowID);
    Point cursorAtTopLeftOrigin() const;
    void restoreCursor(Point place);

    const Platform& platform;
    int moveCount = 0;
};

}  // namespace nevo
