#include "randomrun/Stage.h"

#include <fmt/format.h>

#include <algorithm>

#include "entry/NevoApp.h"
#include "scenario/commandSupport.h"

namespace nevo {

namespace {
/// More than stand on a desktop at any time and are made up by one event.
constexpr int mostHandles = 60;
}  // namespace

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result + '"';
}

Stage::Stage(ScenarioRun& of, RandomSource& from) : run(of), desktop(of.desktop()), random(from) {}

std::string Stage::anyItem() {
    std::vector<std::string> names;
    for (WindowNumber window : desktop.bar.order()) {
        const SimBar::Item* item = desktop.bar.find(window);
        if (!item->own) names.push_back(item->label);
    }
    return names.empty() ? "" : random.oneOf(names);
}

std::string Stage::anyBarItem() {
    std::vector<std::string> names;
    for (WindowNumber window : desktop.bar.order()) {
        const SimBar::Item* item = desktop.bar.find(window);
        if (item->length > 0 && isInReach(window)) names.push_back(run.shortName(item->label));
    }
    return names.empty() ? "" : random.oneOf(names);
}

std::string Stage::anyItemInReach() {
    std::vector<std::string> names;
    for (WindowNumber window : desktop.bar.order()) {
        const SimBar::Item* item = desktop.bar.find(window);
        if (!item->own && isInReach(window)) names.push_back(item->label);
    }
    return names.empty() ? "" : random.oneOf(names);
}

bool Stage::isToggleInReach() const {
    SimStatusItem* toggle = run.ownItem("toggle");
    return toggle != nullptr && isInReach(toggle->window());
}

std::string Stage::anyPicture(const char* kind) {
    std::vector<std::string> names;
    for (WindowNumber window : desktop.bar.order()) {
        if (pictureOf(run, kind, window)) names.push_back(desktop.bar.find(window)->label);
    }
    return names.empty() ? "" : random.oneOf(names);
}

bool Stage::isShelfInForce() const {
    auto nevo = run.nevo();
    return nevo && isShelfMode(desktop.screens, nevo->delegate().state());
}

bool Stage::isInReach(WindowNumber window) const {
    Point place = desktop.windows.find(window)->frame.center();
    const auto& displays = desktop.screens.displays();
    return std::any_of(displays.begin(), displays.end(),
                       [&](const SimDisplay& display) { return display.frame.contains(place); });
}

std::string Stage::anyProgram(bool running) {
    std::vector<std::string> handles;
    for (const SimOtherProgram& program : desktop.applications.all()) {
        if (program.running == running) handles.push_back(program.handle);
    }
    return handles.empty() ? "" : random.oneOf(handles);
}

std::string Stage::anyBundle() {
    const auto& programs = desktop.applications.all();
    if (programs.empty() || random.chance(5)) return "org.example.absent";
    return random.oneOf(programs).application.bundleIdentifier;
}

std::vector<std::string> Stage::seenIds() const {
    std::vector<std::string> ids;
    auto nevo = run.nevo();
    if (!nevo) return ids;
    for (const auto& item : nevo->delegate().state().snapshotItems()) ids.push_back(item.id);
    return ids;
}

std::string Stage::anyRuleId() {
    std::vector<std::string> ids = seenIds();
    if (!ids.empty() && random.chance(85)) return quoted(random.oneOf(ids));
    switch (random.below(5)) {
        case 0:
            return quoted("Control Center >>> com.apple.controlcenter");
        case 1:
            return quoted(anyBundle());
        case 2:
            return quoted("Item-" + std::to_string(random.below(4)) + " >>> " + anyBundle());
        case 3:
            return quoted("Absent >>> " + anyBundle());
        default:
            return quoted("no bundle");
    }
}

std::string Stage::placeOnBar() {
    return fmt::format("{} {}", random.between(0, static_cast<int>(mainWidth()) - 1),
                       random.between(0, 23));
}

std::string Stage::placeBelowBar() {
    return fmt::format("{} {}", random.between(0, static_cast<int>(mainWidth()) - 1),
                       random.between(60, 600));
}

double Stage::mainWidth() const {
    const auto& displays = desktop.screens.displays();
    return displays.empty() ? 1440 : displays.front().frame.width;
}

std::string Stage::newHandle(const char* prefix) {
    // Names come back after their bearers have gone: what is remembered by name stays bounded.
    std::string handle;
    do {
        handlesGiven = handlesGiven % mostHandles + 1;
        handle = prefix + std::to_string(handlesGiven);
    } while (desktop.applications.find(handle) != nullptr ||
             desktop.applications.findItem(handle) != nullptr || run.plainWindows.contains(handle));
    return handle;
}

}  // namespace nevo
