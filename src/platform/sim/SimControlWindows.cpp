#include "platform/sim/SimControlWindows.h"

#include <algorithm>
#include <utility>

namespace nevo {

class SimControlWindows::SimWindow : public Window {
public:
    SimWindow(SimControlWindows& all, const WindowConfiguration& configuration) : owner(all) {
        shown.configuration = configuration;
        shown.level = configuration.level;
        owner.windows.push_back(this);
    }
    ~SimWindow() override {
        hide();
        std::erase(owner.windows, this);
    }
    SimWindow(const SimWindow&) = delete;
    SimWindow& operator=(const SimWindow&) = delete;

    void setContent(Control content, Transition transition) override {
        shown.content = std::move(content);
        if (!shown.isVisible || transition == Transition::none) return;
        note(transition == Transition::move ? "moves on" : "cross-fades");
        owner.last = transition;
    }
    bool isVisible() const override { return shown.isVisible; }
    void makeKeyAndOrderFront() override {
        ++shown.timesInFront;
        std::erase(owner.windows, this);
        owner.windows.push_back(this);
        if (!std::exchange(shown.isVisible, true)) note("shown");
    }
    void orderBack() override {
        std::erase(owner.windows, this);
        owner.windows.insert(owner.windows.begin(), this);
        note("to the back");
    }
    void setLevel(int level) override {
        if (std::exchange(shown.level, level) != level) note("level " + std::to_string(level));
    }
    void close() override { hide(); }

    void hide() {
        if (std::exchange(shown.isVisible, false)) note("closed");
    }

    Shown shown;

private:
    void note(const std::string& what) const {
        owner.trace.note("window", shown.configuration.name + " " + what);
    }

    SimControlWindows& owner;
};

namespace {

/// Calls `visit` for each control that can be seen, until it gives true.
bool walk(const Control& control, const std::function<bool(const Control&)>& visit) {
    if (visit(control)) return true;
    return std::any_of(control.children.begin(), control.children.end(), [&](const Control& child) {
        bool isBehind = control.kind == Control::Kind::tabs && child.key != control.selected;
        return !isBehind && walk(child, visit);
    });
}

}  // namespace

std::unique_ptr<Window> SimControlWindows::create(const WindowConfiguration& configuration) {
    return std::make_unique<SimWindow>(*this, configuration);
}

const SimControlWindows::Shown* SimControlWindows::front() const {
    auto found = std::find_if(windows.rbegin(), windows.rend(),
                              [](const SimWindow* window) { return window->isVisible(); });
    return found == windows.rend() ? nullptr : &(*found)->shown;
}

const SimControlWindows::Shown* SimControlWindows::named(const std::string& name) const {
    auto found = std::find_if(windows.begin(), windows.end(), [&](const SimWindow* window) {
        return window->isVisible() && window->shown.configuration.name == name;
    });
    return found == windows.end() ? nullptr : &(*found)->shown;
}

std::optional<Control> SimControlWindows::control(const std::string& key) const {
    std::optional<Control> found;
    for (auto window = windows.rbegin(); window != windows.rend() && !found; ++window) {
        if (!(*window)->isVisible()) continue;
        walk((*window)->shown.content, [&](const Control& each) {
            if (each.key == key) found = each;
            return found.has_value();
        });
    }
    return found;
}

std::vector<std::string> SimControlWindows::keys() const {
    std::vector<std::string> all;
    for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
        if (!(*window)->isVisible()) continue;
        walk((*window)->shown.content, [&](const Control& each) {
            if (!each.key.empty()) all.push_back(each.key);
            return false;
        });
    }
    return all;
}

bool SimControlWindows::closeFront() {
    constexpr unsigned closable = 2;
    auto found = std::find_if(windows.rbegin(), windows.rend(),
                              [](const SimWindow* window) { return window->isVisible(); });
    if (found == windows.rend()) return false;
    const WindowConfiguration& configuration = (*found)->shown.configuration;
    if (configuration.isBare || (configuration.styleMask & closable) == 0) return false;
    (*found)->hide();
    // A copy: the window may be destroyed in it.
    auto told = (*found)->didClose;
    if (told) told();
    return true;
}

void SimControlWindows::setReducedMotion(bool reduced) {
    reducedMotion = reduced;
    // A copy: the listener may let go of itself.
    auto told = reducedMotionDidChange;
    if (told) told();
}

}  // namespace nevo
