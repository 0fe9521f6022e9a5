#pragma once

#include <vector>

#include "platform/Windows.h"
#include "platform/sim/SimTrace.h"

namespace nevo {

/// The windows of this program with controls in them, which a script finds and operates by the
/// controls' keys.
class SimControlWindows : public Windows {
public:
    /// A window while it exists.
    struct Shown {
        WindowConfiguration configuration;
        Control content;
        int level = 0;
        bool isVisible = false;
        int timesInFront = 0;
    };

    explicit SimControlWindows(SimTrace& to) : trace(to) {}

    std::unique_ptr<Window> create(const WindowConfiguration& configuration) override;
    bool prefersReducedMotion() const override { return reducedMotion; }

    /// The visible window that was brought to the front last; nullptr without one.
    const Shown* front() const;
    /// A visible window by its name; nullptr when there is none.
    const Shown* named(const std::string& name) const;
    /// A copy of the control in any visible window, the frontmost first, that has that key and can
    /// be seen: what stands on another tab can't.
    std::optional<Control> control(const std::string& key) const;
    /// The keys of all controls that can be seen, in the order of the screen.
    std::vector<std::string> keys() const;
    /// How many exist, visible or not.
    std::size_t count() const { return windows.size(); }
    /// A person closes the frontmost window. False when there is none, or it has no close button.
    bool closeFront();
    void setReducedMotion(bool reduced);
    /// The one that was seen last.
    Transition lastTransition() const { return last; }

private:
    class SimWindow;

    SimTrace& trace;
    bool reducedMotion = false;
    Transition last = Transition::none;
    /// The frontmost last.
    std::vector<SimWindow*> windows;
};

}  // namespace nevo
