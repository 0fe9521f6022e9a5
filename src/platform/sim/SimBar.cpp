#include "platform/sim/SimBar.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "platform/menubar/BarProtocol.h"

namespace nevo {

namespace {
/// A floating item that is moved this close to its slot rejoins the row.
constexpr double rejoinDistance = 50;
constexpr double jitterPeriod = 0.1;

std::string positionKey(const std::string& name) {
    return barprotocol::preferredPositionPrefix + name;
}
}  // namespace

void SimBar::insert(Item item) {
    WindowNumber window = item.window;
    Item& held = items[window] = std::move(item);
    place(held, true);
    layOutLater();
}

void SimBar::place(Item& item, bool newcomer) {
    std::optional<double> saved;
    if (!item.name.empty()) saved = defaults.readNumber(item.domain, positionKey(item.name));
    MenuBarRow::Item slot{item.window,
                          item.domain,
                          identity(item),
                          std::max(0.0, item.length),
                          saved,
                          MenuBarRow::roleOf(item.own, item.name),
                          saved && *saved >= MenuBarRow::markedPosition};
    row.insert(slot, knownOrder, !newcomer || !isUntouched(slot));
    rememberOrder();
}

bool SimBar::isUntouched(const MenuBarRow::Item& slot) const {
    auto written = lastSaved.find(slot.identity);
    return !slot.storedPosition ||
           (written != lastSaved.end() && written->second == *slot.storedPosition);
}

void SimBar::remove(WindowNumber window) {
    auto found = items.find(window);
    if (found == items.end()) return;
    if (row.find(window) != nullptr) savePosition(found->second, true);
    if (dragged == window) dragged = 0;
    row.remove(window);
    items.erase(found);
    layOutLater();
}

void SimBar::setLength(WindowNumber window, double length) {
    auto found = items.find(window);
    if (found == items.end()) return;
    Item& item = found->second;
    double before = std::exchange(item.length, std::max(0.0, length));
    row.setLength(window, item.length);
    if (item.own && before == 0 && item.length > 0 && row.find(window) != nullptr) {
        auto saved = defaults.readNumber(item.domain, positionKey(item.name));
        if (saved) row.placeByPosition(window, *saved);
        rememberOrder();
    }
    if (item.own && before >= MenuBarRow::collapsedLength &&
        item.length < MenuBarRow::collapsedLength) {
        rejoinAll();
    }
    layOutLater();
}

void SimBar::rename(WindowNumber window, const std::string& name) {
    auto found = items.find(window);
    if (found == items.end()) return;
    Item& item = found->second;
    std::string formerly = identity(item);
    item.name = name;
    item.label = name;
    std::erase(knownOrder, formerly);
    const MenuBarRow::Item* inRow = row.find(window);
    if (inRow == nullptr) return;
    MenuBarRow::Item slot = *inRow;
    slot.identity = name;
    slot.role = MenuBarRow::roleOf(item.own, name);
    slot.storedPosition = defaults.readNumber(item.domain, positionKey(name));
    std::vector<std::string> order;
    for (const MenuBarRow::Item& other : row.items()) {
        order.push_back(other.key == slot.key ? name : other.identity);
    }
    row.remove(window);
    // Where it stood before its program ended counts, unless somebody has changed its saved place
    // since; a name that the bar has never seen keeps the place that it has.
    auto written = lastSaved.find(name);
    bool foreign = slot.storedPosition &&
                   (written == lastSaved.end() || written->second != *slot.storedPosition);
    bool isKnown = std::find(knownOrder.begin(), knownOrder.end(), name) != knownOrder.end();
    row.insert(slot, isKnown ? knownOrder : order, foreign);
    rememberOrder();
    layOutLater();
}

void SimBar::setShown(WindowNumber window, bool shown) {
    auto found = items.find(window);
    if (found == items.end() || shown == (row.find(window) != nullptr)) return;
    if (shown) {
        place(found->second, false);
    } else {
        row.remove(window);
    }
    if (SimWindow* held = windows.find(window)) held->mapped = shown;
    layOutLater();
}

bool SimBar::moveDirectly(WindowNumber window, Point origin) {
    auto found = items.find(window);
    if (found == items.end() || screens.displays().empty()) return false;
    Rect slot = slotFrame(window);
    Rect bar = screens.displays().front().frame;
    bool onBar = bar.contains({origin.x + slot.width * 0.5, origin.y});
    if (!onBar || std::abs(origin.x - slot.x) <= rejoinDistance) {
        found->second.floating.reset();
    } else {
        double right = std::max(bar.minX(), bar.maxX() - slot.width);
        found->second.floating = Point{std::clamp(origin.x, bar.minX(), right), origin.y};
    }
    layOutLater();
    return true;
}

void SimBar::rejoinAll() {
    for (auto& [window, item] : items) item.floating.reset();
    layOutLater();
}

void SimBar::beginDrag(WindowNumber window, Point pointer) {
    auto found = items.find(window);
    const SimWindow* held = windows.find(window);
    if (found == items.end() || held == nullptr || dragged != 0) return;
    dragged = window;
    found->second.floating.reset();
    grabOffset = held->frame.contains(pointer) ? pointer.x - held->frame.midX() : 0;
    trace.note("bar", fmt::format("drag of {} begins", found->second.label));
}

void SimBar::dragTo(Point pointer) {
    SimWindow* held = windows.find(dragged);
    if (held != nullptr) held->frame.x = pointer.x - grabOffset - held->frame.width * 0.5;
}

void SimBar::endDrag(Point pointer) {
    WindowNumber window = std::exchange(dragged, 0);
    auto found = items.find(window);
    if (found == items.end() || row.find(window) == nullptr) return;
    row.drop(window, pointer.x - grabOffset, room());
    rememberOrder();
    trace.note("bar", fmt::format("{} dropped at {}", found->second.label, pointer.x));
    savePosition(found->second, false);
    layOutLater();
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
    for (const MenuBarRow::Item& item : row.items()) {
        result.push_back(static_cast<WindowNumber>(item.key));
    }
    return result;
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

MenuBarRow::Room SimBar::room() const {
    if (screens.displays().empty()) return {};
    const Rect& frame = screens.displays().front().frame;
    return {frame.x, frame.maxX() - systemAreaWidth};
}

Rect SimBar::slotFrame(WindowNumber window) const {
    auto slot = row.slot(window, room());
    if (!slot) return {};
    return {slot->x, 0, slot->width, screens.barHeight()};
}

void SimBar::layOut() {
    // Without a display the windows stay where they were.
    if (screens.displays().empty()) return;
    std::string text;
    for (const MenuBarRow::Slot& slot : row.slots(room())) {
        auto number = static_cast<WindowNumber>(slot.key);
        SimWindow* held = windows.find(number);
        const Item& item = items.at(number);
        if (held == nullptr) continue;
        if (number != dragged) {
            held->frame = {slot.x, 0, slot.width, screens.barHeight()};
            held->frame.x += item.jitter;
            if (item.floating) held->frame.x = item.floating->x;
            if (item.floating) held->frame.y = item.floating->y;
        }
        text += fmt::format("{}{}@{}+{}", text.empty() ? "" : "  ", item.label, held->frame.x,
                            held->frame.width);
        if (item.floating) text += " floating";
    }
    if (text != lastTraced) trace.note("bar", text.empty() ? "empty" : text);
    lastTraced = text;
}

void SimBar::savePosition(const Item& item, bool leaving) {
    if (item.name.empty()) return;
    // What leaves while it is pushed off is to come back there; a divider's own length doesn't
    // count.
    bool isDivider = item.length >= MenuBarRow::collapsedLength;
    auto position = leaving && !isDivider ? row.distance(item.window) : row.position(item.window);
    if (!position) return;
    defaults.write(item.domain, positionKey(item.name), *position);
    lastSaved[identity(item)] = *position;
    row.setStoredPosition(item.window, position);
}

void SimBar::rememberOrder() {
    std::vector<std::string> merged;
    for (const MenuBarRow::Item& item : row.items()) {
        merged.push_back(item.identity);
    }
    // Who isn't running keeps its place right of its former left neighbour.
    auto previous = merged.begin();
    for (const std::string& known : knownOrder) {
        auto present = std::find(merged.begin(), merged.end(), known);
        previous = present != merged.end() ? present + 1 : merged.insert(previous, known) + 1;
    }
    knownOrder = std::move(merged);
}

}  // namespace nevo
