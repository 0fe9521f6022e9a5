#include <fmt/format.h>

#include "randomrun/EventKind.h"

namespace nevo {

namespace {

Lines wait(Stage& stage) {
    return {fmt::format("wait {}", stage.random.oneOf({"0.01", "0.03", "0.1", "0.1", "0.3", "0.5",
                                                       "1", "1", "2", "3", "6"}))};
}

Lines longWait(Stage& stage) {
    return {fmt::format("wait {}", stage.random.oneOf({"15", "40", "90"}))};
}

Lines putMainDisplay(Stage& stage) {
    const auto& displays = stage.desktop.screens.displays();
    std::uint32_t id = displays.empty() ? 1 : displays.front().id;
    static const std::vector<std::string> sizes = {"1440 900", "1440 900", "1920 1080", "1728 1117",
                                                   "1280 800"};
    std::string line = fmt::format("display {} 0 0 {}", id, stage.random.oneOf(sizes));
    if (stage.random.chance(30)) line += " scale 1";
    if (stage.random.chance(25)) line += " notch 32";
    return {line};
}

Lines putOtherDisplay(Stage& stage) {
    static const std::vector<std::string> places = {"1440 0 1920 1080", "-1920 0 1920 1080",
                                                    "0 -1080 1920 1080", "300 900 1280 800"};
    std::string id;
    for (const char* free : {"2", "3"}) {
        const auto& displays = stage.desktop.screens.displays();
        bool isMain = !displays.empty() && std::to_string(displays.front().id) == free;
        if (!isMain && (id.empty() || stage.random.chance(40))) id = free;
    }
    return {fmt::format("display {} {} scale {}", id, stage.random.oneOf(places),
                        stage.random.oneOf({"1", "2"}))};
}

Lines removeDisplay(Stage& stage) {
    const auto& displays = stage.desktop.screens.displays();
    if (displays.empty()) return {};
    // A desktop without any display lasts for a moment only.
    if (displays.size() == 1) {
        if (!stage.random.chance(20)) return {};
        return {fmt::format("remove-display {}", displays.front().id),
                fmt::format("wait {}", stage.random.oneOf({"0.1", "3"})), "display 1 0 0 1440 900"};
    }
    return {fmt::format("remove-display {}", stage.random.oneOf(displays).id)};
}

/// The notification that comes when the bar's layout has changed, displays or not.
Lines layoutNotification(Stage&) {
    return {"post NSApplicationDidChangeScreenParametersNotification"};
}

Lines wake(Stage& stage) {
    return {fmt::format("post-workspace {}",
                        stage.random.oneOf({"NSWorkspaceDidWakeNotification",
                                            "NSWorkspaceScreensDidWakeNotification",
                                            "NSWorkspaceSessionDidBecomeActiveNotification"}))};
}

Lines barHeight(Stage& stage) {
    return {fmt::format("bar-height {}", stage.random.oneOf({"24", "24", "22", "37"}))};
}

Lines layoutDelay(Stage& stage) {
    return {
        fmt::format("layout-delay {}", stage.random.oneOf({"0.02", "0.02", "0", "0.15", "0.6"}))};
}

Lines jitter(Stage& stage) {
    std::string item = stage.random.chance(50) ? stage.anyBarItem() : "";
    if (item.empty()) item = stage.isNevoRunning() ? "toggle" : stage.anyItem();
    if (item.empty()) return {};
    return {fmt::format("jitter {} {} {}", item, stage.random.oneOf({"3", "40", "300"}),
                        stage.random.oneOf({"0.5", "4", "12"}))};
}

Lines ownMoves(Stage& stage) {
    return {stage.random.chance(30) ? "own-moves allowed" : "own-moves refused"};
}

Lines disableTap(Stage& stage) {
    return {stage.random.chance(50) ? "disable-tap timeout" : "disable-tap user"};
}

Lines permission(Stage& stage) {
    const char* which = stage.random.oneOf({"accessibility", "screen-recording"});
    // What is taken away is mostly given back.
    return {fmt::format("permission {} {}", which, stage.random.chance(25) ? "denied" : "granted")};
}

}  // namespace

std::vector<EventKind> desktopEvents() {
    constexpr auto either = EventKind::Menu::either;
    return {
        {"wait", 30, wait, either},
        {"long wait", 1, longWait},
        {"main display", 1, putMainDisplay, either},
        {"other display", 1, putOtherDisplay, either},
        {"remove display", 1, removeDisplay},
        {"layout notification", 1, layoutNotification, either},
        {"wake", 2, wake, either},
        {"bar height", 1, barHeight},
        {"layout delay", 1, layoutDelay},
        {"jitter", 1, jitter, either},
        {"own moves", 1, ownMoves},
        {"disable tap", 1, disableTap, either},
        {"permission", 3, permission, either},
    };
}

}  // namespace nevo
