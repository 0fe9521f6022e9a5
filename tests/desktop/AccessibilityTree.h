#pragma once

#include <QDBusConnection>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"

namespace nevo::desktoptest {

/// A part of a window as assistive technology has it.
struct Accessible {
    enum State { checked = 4, enabled = 8, focusable = 11, focused = 12, showing = 25 };

    /// Its number within what was read; that of the group around it, or its own for a window.
    std::size_t parent = 0;
    /// As the protocol has it: "push button", "check box".
    std::string role;
    /// Its own, or that of the label beside it.
    std::string name;
    /// Root coordinates, pixels; also of what is scrolled out of sight.
    Rect place;
    std::uint64_t states = 0;
    /// The object on the bus.
    QString path;

    bool is(State state) const { return (states >> state & 1) != 0; }
};

/// What a screen reader has of one program, over AT-SPI. The session's bus starts the services that
/// it takes.
class AccessibilityTree {
public:
    /// Switches assistive technology on in the session with this bus; `Failed` if it has none.
    explicit AccessibilityTree(const std::string& sessionBus);
    ~AccessibilityTree();
    AccessibilityTree(const AccessibilityTree&) = delete;
    AccessibilityTree& operator=(const AccessibilityTree&) = delete;

    /// All parts of the windows of `process`, in reading order; empty while it has none, or while
    /// it changes under the reader's eyes.
    std::vector<Accessible> read(std::int64_t process) const;

private:
    struct Reading;
    std::optional<QString> nameOnBus(std::int64_t process) const;

    QString sessionName, busName;
    QDBusConnection bus;
};

}  // namespace nevo::desktoptest
