#include "platform/sim/SimDesktop.h"

#include <fmt/format.h>

namespace nevo {

SimDesktop::SimDesktop()
    : trace(loop),
      log(trace),
      defaults(loop, notifications, faults, trace),
      bar(loop, windows, screens, defaults, trace),
      statusBar(bar, windows, screens, faults, program),
      windowServer(bar, windows, screens, faults, permissions, trace),
      panels(loop, windows, screens, program, trace),
      events(loop, bar, statusBar, panels, screens, faults, trace),
      hotKeys(loop, faults),
      applications(bar, windows, trace),
      workspace(loop, workspaceNotifications, applications, program, faults, trace),
      accessibility(applications, windows, faults, permissions),
      screenCapture(loop, windows, windowServer, permissions, faults, trace),
      images(faults),
      menus(trace),
      controlWindows(trace),
      popovers(controlWindows),
      alerts(trace),
      files(faults, trace),
      loginItem(faults, trace),
      updaters(trace),
      childProcesses(faults, trace),
      application(loop, program, workspace, trace),
      rowNotices(loop, bar, application, notifications) {
    bar.rowChanged = [this] { rowNotices.rowChanged(); };
    bar.laidOut = [this] {
        loop.post([this] { notifications.post(statusItemsMovedNotification); });
    };
    bar.pointerLocation = [this] { return events.state().location; };
    defaults.setOwnDomain(program.bundleIdentifier);
    events.pressedElsewhere = [this] { popovers.closeAll(); };
    layBars();
}

Platform SimDesktop::platform() {
    return Platform{loop,          notifications,  workspaceNotifications,
                    defaults,      application,    statusBar,
                    windowServer,  events,         hotKeys,
                    screens,       workspace,      accessibility,
                    screenCapture, images,         panels,
                    menus,         popovers,       controlWindows,
                    alerts,        files,          loginItem,
                    updaters,      childProcesses, log};
}

bool SimDesktop::start(const std::function<std::shared_ptr<void>(Platform)>& make) {
    reap();
    if (application.isRunning()) return false;
    defaults.setOwnDomain(program.bundleIdentifier);
    running = make(platform());
    rowNotices.restart();
    application.launch();
    return true;
}

void SimDesktop::reap() {
    if (application.isRunning() || !running) return;
    // Tasks and pending work go first: they may refer to what the program owns. Its end may leave
    // new work behind.
    loop.clearProgram();
    running.reset();
    loop.clearProgram();
    if (!application.hasCrashed()) return;
    for (WindowNumber window : bar.order()) windows.find(window)->alpha = 1;
    bar.rejoinAll();
}

void SimDesktop::putDisplay(const SimDisplay& display) {
    screens.put(display);
    displaysChanged();
}

bool SimDesktop::removeDisplay(std::uint32_t id) {
    if (!screens.remove(id)) return false;
    displaysChanged();
    return true;
}

void SimDesktop::displaysChanged() {
    trace.note("displays", fmt::format("{}", screens.displays().size()));
    layBars();
    bar.layOutLater();
    loop.post([this] { notifications.post(screenParametersChangedNotification); });
}

void SimDesktop::layBars() {
    for (WindowNumber window : barWindows) windows.destroy(window);
    barWindows.clear();
    for (const SimDisplay& display : screens.displays()) {
        SimWindow window;
        window.ownerName = "Window Server";
        window.name = "Menubar";
        window.layer = menuBarWindowLevel;
        window.frame = {display.frame.x, display.frame.y, display.frame.width, screens.barHeight()};
        barWindows.push_back(windows.create(window));
    }
}

std::vector<std::string> SimDesktop::hiddenItems() const {
    std::vector<std::string> result;
    for (WindowNumber number : bar.order()) {
        const SimBar::Item* item = bar.find(number);
        bool seen = bar.isOnScreen(number) && windows.find(number)->alpha >= 1 && !item->floating;
        if (!item->own && !seen) result.push_back(item->label);
    }
    return result;
}

}  // namespace nevo
