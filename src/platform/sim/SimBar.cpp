#include "platform/sim/SimBar.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nevo {

namespace {
/// A floating item that is moved this close to its slot rejoins the row.
constexpr double rejoinDistance = 50;
constexpr double jitterPeriod = 0.1;
/// How often is looked whether the pointer still rests.
constexpr double closeInterval = 0.1;
}  // namespace

void SimBar::insert(Item item) {
    WindowNumber window = item.window;
    Item& held = items[window] = std::move(item);
    place(held);
    settle();
}

void SimBar::place(const Item& item) {
    // A native item has its place by its name; it may still have none.
    std::string identity = item.own ? item.name : item.label;
    keeper.add({item.window, item.domain, item.name, "", identity, std::max(0.0, item.length),
                MenuBarRow::roleOf(item.own, item.name)});
}

void SimBar::settle() {
    keeper.save();
    if (rowChanged) rowChanged();
    layOutLater();
}

void SimBar::remove(WindowNumber window) {
    auto found = items.find(window);
    if (found == items.end()) return;
    if (dragged == window) dragged = 0;
    endFloat(found->second);
    keeper.leave(window);
    items.erase(found);
    settle();
}

void SimBar::setLength(WindowNumber window, double length) {
    auto found = items.find(window);
    if (found == items.end()) return;
    Item& item = found->second;
    double before = std::exchange(item.length, std::max(0.0, length));
    keeper.setLength(window, item.length);
    if (item.own && before >= MenuBarRow::collapsedLength &&
        item.length < MenuBarRow::collapsedLength) {
        rejoinAll();
    }
    settle();
}

void SimBar::rename(WindowNumber window, const std::string& name) {
    auto found = items.find(window);
    if (found == items.end()) return;
    Item& item = found->second;
    item.name = name;
    item.label = name;
    if (keeper.row().find(window) == nullptr) return;
    keeper.take(window);
    place(item);
    settle();
}

void SimBar::setShown(WindowNumber window, bool shown) {
    auto found = items.find(window);
    if (found == items.end() || shown == (keeper.row().find(window) != nullptr)) return;
    if (shown) {
        place(found->second);
    } else {
        keeper.leave(window);
    }
    if (SimWindow* held = windows.find(window)) held->mapped = shown;
    settle();
}

bool SimBar::moveDirectly(WindowNumber window, Point origin) {
    auto found = items.find(window);
    if (found == items.end() || screens.displays().empty()) return false;
    Rect slot = slotFrame(window);
    Rect bar = screens.displays().front().frame;
    bool onBar = bar.contains({origin.x + slot.width * 0.5, origin.y});
    if (!onBar || std::abs(origin.x - slot.x) <= rejoinDistance) {
        endFloat(found->second);
    } else {
        auto former = floatRoom.item();
        bool begins = floatRoom.begin(keeper.row(), window, room(), pointerRestsOnKept(),
                                      [this](MenuBarRow::Key key) { return isSeen(key); });
        if (!begins) return false;
        if (former) items.at(static_cast<WindowNumber>(*former)).floating = false;
        found->second.floating = true;
    }
    layOutLater();
    return true;
}

void SimBar::endFloat(Item& item) {
    if (!item.floating) return;
    item.floating = false;
    floatRoom.end();
}

void SimBar::rejoinAll() {
    for (auto& [window, item] : items) endFloat(item);
    layOutLater();
}

bool SimBar::isSeen(MenuBarRow::Key key) const {
    const SimWindow* held = windows.find(static_cast<WindowNumber>(key));
    return held != nullptr && held->mapped && held->alpha > 0;
}

bool SimBar::pointerRestsOnKept() const {
    return pointerLocation && std::any_of(items.begin(), items.end(), [this](const auto& entry) {
               const SimWindow* held = windows.find(entry.first);
               bool isKept = MenuBarRow::roleOf(entry.second.own, entry.second.name) ==
                             MenuBarRow::Role::keptInSight;
               return isKept && held != nullptr && held->mapped &&
                      held->frame.contains(pointerLocation());
           });
}

MenuBarRow::Room SimBar::openRoom() {
    return floatRoom.update(keeper.row(), room(),
                            [this](MenuBarRow::Key key) { return isSeen(key); });
}

void SimBar::closeLater() {
    if (std::exchange(isClosePending, true)) return;
    loop.desktopAfter(closeInterval, [this] {
        isClosePending = false;
        layOut();
    });
}

void SimBar::beginDrag(WindowNumber window, Point pointer, bool usesPointer) {
    auto found = items.find(window);
    const SimWindow* held = windows.find(window);
    if (found == items.end() || held == nullptr || isPointerDragging()) return;
    dragged = window;
    dragUsesPointer = usesPointer;
    if (usesPointer) endFloat(found->second);
    grabOffset = held->frame.contains(pointer) ? pointer.x - held->frame.midX() : 0;
    trace.note("bar", fmt::format("drag of {} begins", found->second.label));
}

void SimBar::dragTo(Point pointer) {
    if (isPointerDragging()) followPointer(pointer);
}

void SimBar::followPointer(Point pointer) {
    SimWindow* held = windows.find(dragged);
    if (held != nullptr) held->frame.x = pointer.x - grabOffset - held->frame.width * 0.5;
}

void SimBar::endDrag(Point pointer) {
    followPointer(pointer);
    WindowNumber window = std::exchange(dragged, 0);
    auto found = items.find(window);
    if (found == items.end() || keeper.row().find(window) == nullptr) return;
    endFloat(found->second);
    keeper.drop(window, pointer.x - grabOffset, openRoom());
    trace.note("bar", fmt::format("{} dropped at {}", found->second.label, pointer.x));
    settle();
}

const SimBar::Item* SimBar::itemAt(Point place) const {
    const Item* below = nullptr;
    for (const auto& [window, item] : items) {
        const SimWindow* held = windows.find(window);
        bool there = held != nullptr && held->mapped && held->frame.contains(place) &&
                     item.length > 0 && item.length < MenuBarRow::collapsedLength;
        if (!there) continue;
        if (item.floating) return &item;
        below = &item;
    }
    return below;
}

const SimBar::Item* SimBar::find(WindowNumber window) const {
    auto found = items.find(window);
    return found == items.end() ? nullptr : &found->second;
}

const SimBar::Item* SimBar::findLabel(const std::string& label) const {
    for (const auto& [window, item] : items) {
        if (item.label == label) return &item;
    }
    return nullptr;
}

std::vector<WindowNumber> SimBar::order() const {
    std::vector<WindowNumber> result;
    for (const MenuBarRow::Item& item : keeper.row().items()) {
        result.push_back(static_cast<WindowNumber>(item.key));
    }
    return result;
}

std::optional<std::vector<WindowNumber>> SimBar::placedItems() const {
    std::vector<WindowNumber> result;
    bool hasOwn = false;
    for (WindowNumber window : order()) {
        const Item& item = items.at(window);
        if (item.length <= 0 || item.length >= MenuBarRow::collapsedLength) continue;
        hasOwn = hasOwn || item.own;
        result.push_back(window);
    }
    return hasOwn ? std::optional(result) : std::nullopt;
}

bool SimBar::isOnScreen(WindowNumber window) const {
    const SimWindow* held = windows.find(window);
    if (held == nullptr || !held->mapped || screens.displays().empty()) return false;
    return held->frame.intersects(screens.displays().front().frame);
}

void SimBar::layOutLater() {
    ++pendingLayouts;
    loop.desktopAfter(layoutDelay, [this] {
        --pendingLayouts;
        layOut();
    });
}

void SimBar::jitter(WindowNumber window, double points, double seconds) {
    jump(window, points, 1, loop.now() + seconds);
}

void SimBar::jump(WindowNumber window, double points, int step, double until) {
    auto found = items.find(window);
    if (found == items.end()) return;
    bool over = loop.now() >= until;
    // Seven steps: readings 0.1 s apart and 0.3 s apart both find another place.
    found->second.jitter = over ? 0 : points * (step % 7) / 6.0;
    layOut();
    if (over) return;
    loop.desktopAfter(jitterPeriod, [this, window, points, step, until] {
        jump(window, points, step + 1, until);
    });
}

std::optional<double> SimBar::systemAreaLeft() const {
    if (screens.displays().empty()) return std::nullopt;
    return screens.displays().front().frame.maxX() - systemAreaWidth;
}

MenuBarRow::Room SimBar::room() const {
    auto right = systemAreaLeft();
    if (!right) return {};
    const Rect& display = screens.displays().front().frame;
    return {display.minX(), *right, display.maxX()};
}

Rect SimBar::slotFrame(WindowNumber window) const {
    auto slot = keeper.row().slot(window, room());
    if (!slot) return {};
    return {slot->x, 0, slot->width, screens.barHeight()};
}

void SimBar::layOut() {
    // Without a display the windows stay where they were.
    if (screens.displays().empty()) return;
    std::string text;
    MenuBarRow::Room open = openRoom();
    if (floatRoom.isLeftOpen() && !isPointerDragging()) {
        if (pointerRestsOnKept()) {
            closeLater();
        } else {
            floatRoom.close();
            open = openRoom();
        }
    }
    std::vector<MenuBarRow::Slot> slots = keeper.row().slots(room());
    std::vector<MenuBarRow::Slot> places = keeper.row().slots(open);
    for (std::size_t i = 0; i < slots.size(); ++i) {
        const MenuBarRow::Slot& slot = slots[i];
        auto number = static_cast<WindowNumber>(slot.key);
        SimWindow* held = windows.find(number);
        Item& item = items.at(number);
        if (held == nullptr) continue;
        item.floating = floatRoom.item() == slot.key;
        item.aside = places[i].x - slot.x;
        item.slot = {slot.x, 0, slot.width, screens.barHeight()};
        if (number != dragged || !dragUsesPointer) {
            double x = item.floating ? floatRoom.x(keeper.row(), open) : places[i].x + item.jitter;
            held->frame = {x, 0, slot.width, screens.barHeight()};
        }
        text += fmt::format("{}{}@{}+{}", text.empty() ? "" : "  ", item.label, held->frame.x,
                            held->frame.width);
        if (item.floating) text += " floating";
    }
    if (text == lastTraced) return;
    trace.note("bar", text.empty() ? "empty" : text);
    lastTraced = text;
    if (laidOut) laidOut();
}

}  // namespace nevo
