#include "platform/sim/SimMenus.h"

#include <algorithm>

namespace nevo {

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
    SimPopover(SimTrace& to, std::shared_ptr<Shown> place) : trace(to), shown(std::move(place)) {}
    ~SimPopover() override {
        if (isShown()) *shown = Shown{};
    }

    void setContentSize(Size) override {}
    void setBehavior(int) override {}
    void setAnimates(bool) override {}
    void setContent(std::function<std::vector<PopoverRow>()> rows) override {
        content = std::move(rows);
    }
    bool isShown() const override { return shown->which == this; }
    void performClose() override {
        if (!isShown()) return;
        *shown = Shown{};
        trace.note("popover", "closed");
    }
    void show(Rect, StatusItemButton&, int) override {
        shown->which = this;
        shown->rows = content ? content() : std::vector<PopoverRow>{};
        std::string text;
        for (const PopoverRow& row : *shown->rows) text += " " + row.key;
        trace.note("popover", "shown:" + text);
    }

private:
    SimTrace& trace;
    std::shared_ptr<Shown> shown;
    std::function<std::vector<PopoverRow>()> content;
};

std::unique_ptr<Popover> SimPopovers::create() {
    return std::make_unique<SimPopover>(trace, shown);
}

void SimPopovers::closeAll() {
    if (shown->which == nullptr) return;
    *shown = Shown{};
    trace.note("popover", "closed");
}

}  // namespace nevo
