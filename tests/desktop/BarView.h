#pragma once

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/xcb/Atoms.h"
#include "platform/xcb/Connection.h"

namespace nevo {
void PrintTo(const Rect& rect, std::ostream* out);
}

namespace nevo::desktoptest {

/// A status item as the bar tells it and the server has it. Root coordinates, pixels.
struct Item {
    xcb_window_t frame = 0;
    xcb_window_t client = 0;
    ProcessId pid = 0;
    std::string appId;
    std::string name;
    std::string ownerName;
    Rect slot;
    /// Where the frame window really is.
    Rect place;
    double opacity = 1;
    bool floating = false;
    /// Whether a person can see it: opaque, and wholly within the bar.
    bool onScreen = false;
};
std::ostream& operator<<(std::ostream& out, const Item& item);

/// Reads what the bar publishes, and speaks to it as any client may.
class BarView {
public:
    explicit BarView(const xcb::Connection& connection);

    /// The bar's window for messages; 0 while no bar of ours owns the tray.
    xcb_window_t control() const;
    /// The bar's process.
    ProcessId pid() const;
    Rect frame() const;
    /// Left edge of the bar's own area.
    double systemAreaLeft() const;
    /// Left to right; empty while no bar runs. Those that vanish while they are read are left out.
    std::vector<Item> items() const;

    void setOpacity(const Item& item, double opacity, xcb_window_t lease) const;
    void move(const Item& item, int x, int y, xcb_window_t lease) const;

private:
    struct Reading;
    std::optional<Rect> placeOf(const Reading& reading) const;
    std::vector<std::uint32_t> geometry() const;
    void send(const char* message, std::vector<std::uint32_t> values) const;

    const xcb::Connection& server;
    std::unique_ptr<xcb::Atoms> atoms;
};

}  // namespace nevo::desktoptest
