#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/x11/EventPump.h"
#include "platform/x11/WindowNumbers.h"
#include "platform/x11/XServer.h"

namespace nevo {

/// An item of the bar as the bar tells it. Root coordinates, pixels.
struct BarItemInfo {
    xcb_window_t frame = 0;
    WindowNumber number = 0;
    ProcessId pid = 0;
    std::string appId;
    std::string name;
    std::string ownerName;
    xcb_window_t client = 0;
    /// The place in the row, which may lie beyond what a window's coordinates can hold.
    Rect slot;
    bool floats = false;
    /// How far to the right of its slot it stands, to make room for one that floats.
    double roomShift = 0;
    /// Where the frame window is.
    Rect geometry;
    std::uint32_t opacity = 0xffffffff;

    /// Where the item really stands.
    Rect place() const { return floats ? geometry : slot; }
};

/// The bar, seen from its client: what it tells, kept until the server says that it has changed,
/// and read again with one wait for all that is stale.
class BarClient {
public:
    BarClient(XServer& x, EventPump& pump, WindowNumbers& windowNumbers);
    BarClient(const BarClient&) = delete;
    BarClient& operator=(const BarClient&) = delete;

    /// The window that takes requests; 0 while no bar runs.
    xcb_window_t control() const { return controlWindow; }
    /// Looks for a bar by itself, for one that may have come without a word. Waits for the server.
    void attach();
    /// Whether the last bar ended in order, or is about to.
    bool hasEnded() const { return endIsAnnounced; }
    /// The options that the present bar, or the last one, was started with.
    const std::vector<std::string>& options() const { return barOptions; }

    // Each brings what it tells up to date first.
    /// Left to right; good until the next question.
    const std::vector<const BarItemInfo*>& items();
    const BarItemInfo* itemOfClient(xcb_window_t client);
    const BarItemInfo* itemOfNumber(WindowNumber number);
    /// The primary monitor's bar; empty while there is none.
    Rect barFrame();
    /// Those on the other monitors.
    const std::vector<Rect>& otherBars();
    /// Where its row ends; nothing while there is none.
    std::optional<double> systemAreaLeft();
    xcb_window_t barWindow();

    /// A request about `frame` (the messages of BarProtocol.h), flushed.
    void send(const char* message, xcb_window_t frame, std::uint32_t a, std::uint32_t b,
              std::uint32_t c, std::uint32_t d);
    /// Reads the bar again until `holds` or 50 ms have gone by; the last answer of `holds`.
    bool waitUntil(const std::function<bool()>& holds);

    // Called at a turn of the loop.
    /// A bar is there to dock to.
    std::function<void()> appeared;
    /// The bar is gone, and hadn't announced its end.
    std::function<void()> crashed;

private:
    struct Item {
        BarItemInfo info;
        bool identityIsStale = true;
        bool placeIsStale = true;
    };
    struct Reading;

    void noteEarly(const xcb_generic_event_t& event);
    void noteProperty(const xcb_property_notify_event_t& event);
    void noteDestroyed(xcb_window_t window);
    void act(const xcb_generic_event_t& event);
    void detach();
    void refresh();
    void readBar();
    void readItems();
    void rebuildList(const std::vector<std::uint32_t>& frames);
    void forget(xcb_window_t frame);

    XServer& server;
    EventPump& events;
    WindowNumbers& numbers;
    xcb_window_t controlWindow = 0;
    xcb_window_t theBarWindow = 0;
    Rect frameOfBar;
    std::vector<Rect> framesOfOthers;
    std::optional<double> leftOfSystemArea;
    std::map<xcb_window_t, Item> known;
    std::vector<xcb_window_t> order;
    std::vector<const BarItemInfo*> list;
    std::vector<std::string> barOptions;
    bool barIsStale = true;
    bool anyItemIsStale = false;
    bool endIsAnnounced = false;
    bool crashIsNew = false;
};

}  // namespace nevo
