#include "platform/sim/SimStatusBar.h"

#include "platform/WindowServer.h"

namespace nevo {

namespace {
/// Points that the bar leaves around an item's content, both sides together.
constexpr double contentPadding = 16;
constexpr double titleCharacterWidth = 7;
}  // namespace

SimStatusBar::SimStatusBar(SimBar& row, SimWindows& allWindows, SimScreens& allScreens,
                           SimFaults& scripted, SimProgram& self)
    : bar(row), windows(allWindows), screens(allScreens), faults(scripted), program(self) {}
SimStatusBar::~SimStatusBar() = default;

std::unique_ptr<StatusItem> SimStatusBar::statusItem(double length) {
    return std::make_unique<SimStatusItem>(*this, length);
}

SimStatusItem* SimStatusBar::find(const std::string& name) {
    for (const auto& [window, item] : items) {
        if (item->autosaveName() == name) return item;
    }
    return nullptr;
}

void SimStatusBar::click(WindowNumber window) {
    auto found = items.find(window);
    if (found != items.end()) found->second->shownButton().click();
}

SimStatusItem::SimStatusItem(SimStatusBar& of, double length)
    : owner(of), face(*this), askedLength(length) {
    SimWindow window;
    window.pid = owner.program.pid;
    window.ownerName = owner.program.name;
    window.name = "Item-0";
    window.layer = statusItemWindowLevel;
    window.inMenuBarList = true;
    number = owner.windows.create(window);
    owner.items.emplace(number, this);
    SimBar::Item item;
    item.window = number;
    item.label = "own-" + std::to_string(number);
    item.domain = owner.program.bundleIdentifier;
    item.own = true;
    item.length = askedLength < 0 ? face.contentWidth() : askedLength;
    owner.bar.insert(item);
}

SimStatusItem::~SimStatusItem() {
    owner.items.erase(number);
    owner.bar.remove(number);
    owner.windows.destroy(number);
}

void SimStatusItem::setLength(double length) {
    askedLength = length;
    applyLength();
}

void SimStatusItem::applyLength() {
    double wanted = askedLength < 0 ? face.contentWidth() : askedLength;
    const SimBar::Item* item = owner.bar.find(number);
    if (item != nullptr && item->length != wanted) owner.bar.setLength(number, wanted);
}

void SimStatusItem::setVisible(bool value) {
    visible = value;
    owner.bar.setShown(number, value);
}

void SimStatusItem::setAutosaveName(const std::string& value) {
    if (name == value) return;
    name = value;
    if (SimWindow* held = owner.windows.find(number)) held->name = name;
    owner.bar.rename(number, name);
}

StatusItemButton* SimStatusItem::button() {
    return owner.faults.strikes(SimOperation::statusItemButton, number) ? nullptr : &face;
}

void SimStatusItemButton::setImage(std::optional<Image> image) {
    shownImage = std::move(image);
    item.applyLength();
}

void SimStatusItemButton::setTitle(const std::string& title) {
    shownTitle = title;
    item.applyLength();
}

std::optional<WindowNumber> SimStatusItemButton::windowNumber() const {
    bool lost = item.owner.faults.strikes(SimOperation::statusItemWindow, item.number);
    if (lost || !item.visible) return std::nullopt;
    return item.number;
}

Rect SimStatusItemButton::bounds() const {
    const SimWindow* held = item.owner.windows.find(item.number);
    if (held == nullptr) return {};
    return {0, 0, held->frame.width, held->frame.height};
}

std::optional<Rect> SimStatusItemButton::screenFrame() const {
    if (!windowNumber()) return std::nullopt;
    Rect frame = item.owner.windows.find(item.number)->frame;
    frame.x -= item.owner.bar.find(item.number)->aside;
    return item.owner.screens.flipped(frame);
}

std::optional<Rect> SimStatusItemButton::windowScreenFrame() const {
    auto frame = screenFrame();
    if (!frame) return std::nullopt;
    for (const Screen& screen : item.owner.screens.screens()) {
        if (screen.frame.contains(frame->center())) return screen.frame;
    }
    for (const Screen& screen : item.owner.screens.screens()) {
        if (screen.frame.intersects(*frame)) return screen.frame;
    }
    return std::nullopt;
}

double SimStatusItemButton::contentWidth() const {
    double width = titleCharacterWidth * static_cast<double>(shownTitle.size());
    return contentPadding + width + (shownImage ? shownImage->size.width : 0);
}

void SimStatusItemButton::click() const {
    if (!enabled || hidden || !action) return;
    auto call = action;
    call();
}

}  // namespace nevo
