#include "desktop/SettingsSession.h"

#include <fmt/format.h>

#include <algorithm>

namespace nevo::desktoptest {

namespace {

constexpr int wheelUp = 4;
constexpr int wheelDown = 5;
/// More than any page has.
constexpr int mostStops = 60;

/// The part of the window that a control scrolls in.
Rect sightOf(const std::vector<Accessible>& parts, const Accessible& part) {
    std::size_t around = part.parent;
    while (parts[around].role != "layered pane" && parts[around].parent != around) {
        around = parts[around].parent;
    }
    return parts[around].place;
}

}  // namespace

void SettingsSession::SetUp() {
    NevoSession::SetUp();
    startWindowManager();
    tree = std::make_unique<AccessibilityTree>(environment().at("DBUS_SESSION_BUS_ADDRESS"));
}

void SettingsSession::TearDown() {
    tree.reset();
    NevoSession::TearDown();
}

void SettingsSession::openSettings() {
    constexpr double firstRow = 12;
    auto others = windowsBelowBar().size();
    rightClick(toggleItem());
    waitFor("the menu is open", [&] { return windowsBelowBar().size() > others; });
    Rect menu = windowsBelowBar().back();
    hand->click({menu.midX(), menu.y + firstRow});
    waitFor("the window has the keys", [this] { return focusedOf(parts()).role == "page tab"; });
}

void SettingsSession::goTo(const std::string& name) {
    clickOn("page tab", name);
    waitFor("the page is there", [&] { return has("panel", name); });
}

std::vector<Accessible> SettingsSession::parts() const { return tree->read(nevo().pid()); }

Accessible SettingsSession::control(const std::string& role, const std::string& name,
                                    const std::string& group) const {
    Accessible result;
    std::vector<Accessible> all;
    bool isThere = holdsSoon([&] {
        all = parts();
        auto found = std::find_if(all.begin(), all.end(), [&](const Accessible& part) {
            if (part.role != role || part.name != name) return false;
            Names groups = groupsOf(all, part);
            return group.empty() || std::find(groups.begin(), groups.end(), group) != groups.end();
        });
        if (found == all.end()) return false;
        sight = sightOf(all, *found);
        result = *found;
        return true;
    });
    if (isThere) return result;
    std::string seen;
    for (const Accessible& part : all) seen += fmt::format("\n  {} \"{}\"", part.role, part.name);
    throw Failed(fmt::format("There is no {} \"{}\" {} among:{}", role, name, group, seen));
}

bool SettingsSession::has(const std::string& role, const std::string& name) const {
    auto all = parts();
    return std::any_of(all.begin(), all.end(), [&](const Accessible& part) {
        return part.role == role && part.name == name;
    });
}

Accessible SettingsSession::focusedOf(const std::vector<Accessible>& parts) {
    // The innermost: what holds it passes for focused, too.
    auto found = std::find_if(parts.rbegin(), parts.rend(),
                              [](const Accessible& part) { return part.is(Accessible::focused); });
    return found == parts.rend() ? Accessible() : *found;
}

Names SettingsSession::groupsOf(const std::vector<Accessible>& parts, const Accessible& part) {
    Names names;
    for (std::size_t i = part.parent; parts[i].parent != i; i = parts[i].parent) {
        if (!parts[i].name.empty()) names.insert(names.begin(), parts[i].name);
    }
    return names;
}

Accessible SettingsSession::inSight(const std::string& role, const std::string& name,
                                    const std::string& group) {
    Accessible part = control(role, name, group);
    waitFor(name + " is in sight", [&] {
        bool isBelow = part.place.maxY() > sight.maxY();
        if (!isBelow && part.place.y >= sight.y) return true;
        // At its edge: over a list in use the wheel would choose.
        hand->click({sight.x + 4, sight.midY()}, isBelow ? wheelDown : wheelUp);
        part = control(role, name, group);
        return false;
    });
    return part;
}

void SettingsSession::clickOn(const std::string& role, const std::string& name,
                              const std::string& group) {
    Rect place = inSight(role, name, group).place;
    // A box is as wide as its row, and takes clicks on its text alone.
    hand->click({place.x + std::min(place.width / 2, place.height), place.midY()});
}

void SettingsSession::choose(const std::string& list, const std::string& option,
                             const std::string& group) {
    clickOn("combo box", list, group);
    hand->click(control("list item", option).place.center());
    waitFor("the list is closed", [&] { return !has("list item", option); });
}

Accessible SettingsSession::tab() {
    Accessible before = focusedOf(parts());
    hand->press(tabKey);
    Accessible now;
    waitFor("Tab leads on from " + before.name, [&] {
        now = focusedOf(parts());
        return !now.path.isEmpty() && now.path != before.path;
    });
    return now;
}

void SettingsSession::tabTo(const std::string& role, const std::string& name,
                            const std::string& group) {
    auto wanted = control(role, name, group).path;
    Accessible now = focusedOf(parts());
    for (int i = 0; i < mostStops && now.path != wanted; ++i) now = tab();
    if (now.path == wanted) return;
    throw Failed("Tab doesn't lead to " + name);
}

void SettingsSession::waitForStored(const std::string& json) const {
    waitFor("the stored values have " + json, [&] {
        return readFile(defaultsFile("com.nevoapp.Nevo")).find(json) != std::string::npos;
    });
}

}  // namespace nevo::desktoptest
