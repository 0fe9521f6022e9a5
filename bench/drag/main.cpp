// Drags another program's item to and fro along the bar as Nevo does, and tells how long each drag
// took and how much of that it was told to wait.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "WaitCount.h"
#include "core/debugLog.h"
#include "placement/ItemMover.h"
#include "platform/x11/X11Desktop.h"

namespace nevo::bench {
namespace {

constexpr const char* usage =
    "Usage: bench-drag OWNER COUNT   drag the item of that program along the bar and back\n";
/// Seconds from one look at the drag to the next.
constexpr double turn = 0.1;
/// Points; a shorter drag isn't taken for one that has moved its item.
constexpr double leastDistance = 100;

[[noreturn]] void giveUp(const std::string& why) {
    std::fprintf(stderr, "%s\n", why.c_str());
    std::exit(1);
}

/// The same desktop with another loop.
Platform withLoop(RunLoop& loop, const Platform& p) {
    return {loop,
            p.notifications,
            p.workspaceNotifications,
            p.defaults,
            p.application,
            p.statusBar,
            p.windows,
            p.events,
            p.hotKeys,
            p.screens,
            p.workspace,
            p.accessibility,
            p.screenCapture,
            p.images,
            p.panels,
            p.menus,
            p.popovers,
            p.surfaceWindows,
            p.alerts,
            p.files,
            p.loginItem,
            p.updaters,
            p.childProcesses,
            p.log};
}

class Row {
public:
    Row(const WindowServer& server, const std::string& owner) : windows(server) {
        for (const WindowDescription& window : list()) {
            if (window.ownerName == owner) item = *window.number;
        }
        if (item == 0) giveUp("There is no item of " + owner + ".");
    }

    WindowNumber window() const { return item; }
    Rect frame() const { return windows.windowFrame(item).value_or(Rect()); }

    /// Just beyond the end of the row that the item isn't at.
    Point farEnd() const {
        auto all = list();
        auto [first, last] = std::minmax_element(
            all.begin(), all.end(),
            [](const auto& a, const auto& b) { return a.bounds->x < b.bounds->x; });
        bool isAtLeft = *first->number == item;
        return {isAtLeft ? last->bounds->maxX() : first->bounds->minX(), frame().midY()};
    }

private:
    std::vector<WindowDescription> list() const {
        auto all = windows.windowList(WindowListOption::onScreenOnly).value();
        std::erase_if(all,
                      [](const auto& window) { return window.layer != statusItemWindowLevel; });
        return all;
    }

    const WindowServer& windows;
    WindowNumber item = 0;
};

struct Drag {
    ItemMover& mover;
    WaitCount& loop;
    WindowNumber window;
    Point target;
    bool moved = false;
    /// Seconds from the call to its return.
    double whole = 0;
};

Task<> perform(Drag* drag) {
    drag->loop.told = drag->loop.taken = 0;
    double start = drag->loop.now();
    bool moved = co_await drag->mover.moveItem(drag->window, drag->target);
    drag->whole = drag->loop.now() - start;
    drag->moved = moved;
}

void dragAcross(const Row& row, ItemMover& mover, WaitCount& loop) {
    double from = row.frame().x;
    Drag drag{mover, loop, row.window(), row.farEnd()};
    spawn(loop, perform(&drag));
    do {
        loop.turnFor(turn);
    } while (loop.tasks().liveCount() > 0 || mover.programmaticMoveCount() > 0);
    if (!drag.moved || std::abs(row.frame().x - from) < leastDistance)
        giveUp("A drag came to nothing.");
    std::printf("whole %.3f\ntold %.3f\ntaken %.3f\n", 1000 * drag.whole, 1000 * loop.told,
                1000 * loop.taken);
}

int numberOf(const std::string& text) {
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

int run(int argc, char** argv) {
    std::string failure;
    auto connection = xcb::Connection::open(failure);
    if (!connection) giveUp(failure);
    XServer server(std::move(connection));
    X11Desktop desktop(server, argc, argv);
    WaitCount loop(desktop.platform().runLoop);
    Platform platform = withLoop(loop, desktop.platform());
    DebugLogScope log(platform.log);
    Row row(platform.windows, argv[1]);
    ItemMover mover(platform);
    for (int left = numberOf(argv[2]); left > 0; --left) dragAcross(row, mover, loop);
    return 0;
}

}  // namespace
}  // namespace nevo::bench

int main(int argc, char** argv) {
    using namespace nevo::bench;
    if (argc == 3 && numberOf(argv[2]) > 0) return run(argc, argv);
    std::fputs(usage, stderr);
    return 2;
}
