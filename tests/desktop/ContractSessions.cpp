#include "desktop/ContractSessions.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdlib>

#include "desktop/TestClients.h"

namespace nevo::desktoptest {

namespace {
/// Seconds from one look to the next.
constexpr double turn = 0.01;
constexpr int virtualTurns = 500;
}  // namespace

ProcessId SimSession::showItem(const std::string& label) {
    if (desktop.applications.find(label) == nullptr) {
        SimOtherProgram program;
        program.handle = label;
        program.application.bundleIdentifier = "org.example." + label;
        desktop.applications.add(program);
        desktop.applications.launch(label);
        SimItemPlan plan;
        plan.label = label;
        desktop.applications.addItem(label, plan);
    } else {
        desktop.applications.launch(label);
    }
    return desktop.applications.find(label)->application.pid;
}

Rect SimSession::standing(const std::string& label) {
    return desktop.windows.find(desktop.bar.findLabel(label)->window)->frame;
}

void SimSession::drag(Point from, Point to) {
    desktop.events.move(from);
    desktop.events.setModifiers(commandModifier);
    desktop.events.press(false);
    desktop.events.move(to);
    desktop.events.release(false);
    desktop.events.setModifiers(0);
}

bool SimSession::soon(const std::function<bool()>& condition) {
    for (int i = 0; i < virtualTurns && !condition(); ++i) desktop.loop.runFor(turn);
    return condition();
}

void SimSession::setScreens(Size main, const Rect& second) {
    desktop.putDisplay({1, {0, 0, main.width, main.height}, 0, 1});
    desktop.putDisplay({2, second, 0, 1});
}

void X11Session::SetUp() {
    DesktopSession::SetUp();
    startBar();
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "NO_AT_BRIDGE",
                             "DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"}) {
        ::setenv(name, environment().at(name).c_str(), 1);
    }
    xServer = std::make_unique<XServer>(connect());
    desktop = std::make_unique<X11Desktop>(*xServer, argc, argv.data());
}

void X11Session::TearDown() {
    desktop.reset();
    xServer.reset();
    DesktopSession::TearDown();
}

ProcessId X11Session::showItem(const std::string& label) {
    Process& process = startProgram(std::string(NEVO_BAD_CLIENT) + " plain");
    shown[label] = &process;
    return process.pid();
}

void X11Session::endProgram(const std::string& label) {
    kill(*shown.at(label), SIGKILL);
    shown.erase(label);
}

PlaceKey X11Session::placeKey(const std::string& label) const {
    Item item = itemOf(label);
    return {item.appId, item.name};
}

Item X11Session::itemOf(const std::string& label) const {
    for (const Item& item : items()) {
        if (item.pid == shown.at(label)->pid()) return item;
    }
    throw Failed("there is no item of " + label);
}

void X11Session::setScreens(Size main, const Rect& second) {
    auto geometry = [](const Rect& place) {
        return fmt::format("{}/200x{}/100+{}+{}", place.width, place.height, place.x, place.y);
    };
    // The main one needn't be in the corner.
    constexpr Point origin{600, 100};
    setMonitor(geometry({origin.x, origin.y, main.width, main.height}));
    addSecondMonitor(
        geometry({origin.x + second.x, origin.y + second.y, second.width, second.height}));
}

bool X11Session::soon(const std::function<bool()>& condition) {
    return holdsSoon([&] {
        desktop->platform().runLoop.turnFor(turn);
        return condition();
    });
}

}  // namespace nevo::desktoptest
