#include "platform/sim/SimMenus.h"

#include <algorithm>

namespace nevo {

namespace {
constexpr const char* popoverName = "popover";
}

void SimMenus::popUp(const std::vector<MenuItem>& items, Point, StatusItemButton&) {
    show(items);
    for (const MenuItem& item : items) {
        if (!chosen.empty() && item.key == chosen && item.action) item.action();
    }
}

void SimMenus::popUp(const std::vector<MenuItem>& items, Point, Panel&,
                     std::function<void(std::optional<std::size_t> highlighted)> didClose) {
    show(items);
    auto row = std::find_if(items.begin(), items.end(), [this](const MenuItem& item) {
        return !chosen.empty() && item.key == chosen;
    });
    std::optional<std::size_t> index;
    if (row != items.end()) index = static_cast<std::size_t>(row - items.begin());
    didClose(index);
}

void SimMenus::show(const std::vector<MenuItem>& items) {
    std::string text;
    for (const MenuItem& item : items) {
        text += text.empty() ? "" : ", ";
        text += item.isSeparator() ? "-" : item.key;
    }
    trace.note("menu", "shown: " + text);
    rows = items;
    chosen.clear();
    isOpen = true;
    if (whileOpen) whileOpen();
    isOpen = false;
    trace.note("menu", chosen.empty() ? "dismissed" : "chosen: " + chosen);
}

bool SimMenus::choose(const std::string& key) {
    auto found =
        std::find_if(rows.begin(), rows.end(), [&](const MenuItem& m) { return m.key == key; });
    if (!isOpen || key.empty() || found == rows.end() || !found->isEnabled) return false;
    chosen = key;
    isOpen = false;
    return true;
}

void SimMenus::dismiss() { isOpen = false; }

class SimPopovers::SimPopover : public Popover {
public:
    explicit SimPopover(SimPopovers& owner) : popovers(owner) { popovers.all.push_back(this); }
    ~SimPopover() override { std::erase(popovers.all, this); }
    SimPopover(const SimPopover&) = delete;
    SimPopover& operator=(const SimPopover&) = delete;

    void setContentSize(Size) override {}
    void setBehavior(int) override {}
    void setAnimates(bool) override {}
    void setContent(Control newContent) override {
        content = std::move(newContent);
        if (window) window->setContent(content);
    }
    bool isShown() const override { return window != nullptr; }
    void performClose() override { window.reset(); }
    void show(Rect, StatusItemButton&, int) override {
        WindowConfiguration made;
        made.name = popoverName;
        made.isBare = true;
        window = popovers.windows.create(made);
        window->setContent(content);
        window->makeKeyAndOrderFront();
    }

private:
    SimPopovers& popovers;
    Control content;
    std::unique_ptr<Window> window;
};

std::unique_ptr<Popover> SimPopovers::create() { return std::make_unique<SimPopover>(*this); }

const Control* SimPopovers::shown() const {
    const SimControlWindows::Shown* window = windows.named(popoverName);
    return window ? &window->content : nullptr;
}

void SimPopovers::closeAll() {
    for (SimPopover* popover : all) popover->performClose();
}

}  // namespace nevo
