#include "menubar/Bar.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <utility>

#include "menubar/Log.h"
#include "menubar/Monitors.h"
#include "menubar/Stacking.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/menubar/BarScale.h"
#include "platform/xcb/Properties.h"

namespace nevo::menubar {

using namespace std::chrono_literals;

namespace {
/// Sixty times a second is as often as anyone can see.
constexpr auto workInterval = 16ms;
/// What was left undone in quiet times may be done at once: a program that docks takes several
/// passes, one for each of its steps.
constexpr auto workCredit = 8 * workInterval;
/// Finding a font takes milliseconds, and items are waited for more than the clock is.
constexpr auto firstClockDelay = 100ms;
constexpr auto raiseInterval = 250ms;
constexpr int smallestSystemArea = 120;
constexpr int clockMargin = 12;
/// More than the widest date with its margins takes, so that items needn't make room for the clock
/// when it comes, or at midnight; and an item that is shown beside the row for a while stands left
/// of it.
constexpr int clockWidthOfHeight = 8;
constexpr std::size_t docksPerPass = 16;

bool hasMonitorAbove(const PixelRect& monitor, const std::vector<PixelRect>& all) {
    return std::any_of(all.begin(), all.end(), [&](const PixelRect& other) {
        return other.y < monitor.y && other.x < monitor.x + monitor.width &&
               monitor.x < other.x + other.width;
    });
}
}  // namespace

Bar::Bar(const Display& x, const Options& chosen, std::unique_ptr<TrayHost> trayHost)
    : display(x),
      options(chosen),
      host(std::move(trayHost)),
      owners(desktopEntries),
      rowStore(RowStore::defaultPath()),
      keeper(rowStore, pixelsPerPoint(chosen.height)),
      leases(x),
      syntheticInput(x),
      clockFace(x, chosen.height),
      toolTip(x) {
    openSignals();
    selectMonitorEvents(display);
    if (options.clock) {
        minuteDescriptor = openMinuteTimer();
        clockDue = Clock::now() + firstClockDelay;
        systemAreaWidth = options.height * clockWidthOfHeight;
    }
    updateMonitors();
    grabDragButton();
    layout();
    host->announce();
    openNotifiers();
    adoptionDue = Clock::now() + adoptionDelay;
}

Bar::~Bar() {
    // Their items go with the rest.
    notifiers->gone = [](statusnotifier::Item&) {};
    if (!display.server().isBroken()) {
        host->announceEnd();
        for (BarItem* item : items.all()) removeItem(*item, true);
    }
    while (keeper.save()) {
    }
    if (signalDescriptor >= 0) ::close(signalDescriptor);
    if (minuteDescriptor >= 0) ::close(minuteDescriptor);
}

void Bar::openSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    for (int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&ending, number);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    signalDescriptor = ::signalfd(-1, &ending, SFD_NONBLOCK | SFD_CLOEXEC);
    // Standard error may be a pipe that nobody reads any more.
    std::signal(SIGPIPE, SIG_IGN);
}

/// With every other modifier and lock key as well: a held Shift must not turn a drag into a click.
void Bar::grabDragButton() const {
    for (unsigned modifiers = 0; modifiers < 256; ++modifiers) {
        if ((modifiers & options.dragModifier) == 0) continue;
        xcb_grab_button(display.get(), 0, windows.front()->window(),
                        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                            XCB_EVENT_MASK_BUTTON_MOTION,
                        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE,
                        XCB_BUTTON_INDEX_1, static_cast<std::uint16_t>(modifiers));
    }
}

int Bar::run() {
    while (!isEnding) {
        drainEvents();
        if (isEnding) break;
        notifiers->process();
        icons->process();
        work();
        if (!waitForSomething()) break;
    }
    return exitStatus;
}

/// Sleeps until there is something to do. False when the display is gone.
bool Bar::waitForSomething() {
    display.server().flush();
    if (display.server().isBroken()) {
        logLine("the connection to the X server was lost.");
        exitStatus = 1;
        return false;
    }
    // Waiting for an answer may have brought events along, which poll doesn't see.
    if (!heldEvent) heldEvent.reset(xcb_poll_for_queued_event(display.get()));
    int timeout = -1;
    if (heldEvent) {
        timeout = 0;
    } else if (auto deadline = nextDeadline()) {
        auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
        timeout = static_cast<int>(std::max<std::int64_t>(left, 0));
    }
    std::vector<pollfd> descriptors{{display.server().fileDescriptor(), POLLIN, 0},
                                    {signalDescriptor, POLLIN, 0},
                                    {minuteDescriptor, POLLIN, 0}};
    notifiers->appendTo(descriptors);
    icons->appendTo(descriptors);
    if (menuHelper) descriptors.push_back({menuHelper->endDescriptor(), POLLIN, 0});
    std::size_t last = descriptors.size() - 1;
    ::poll(descriptors.data(), descriptors.size(), timeout);
    if (menuHelper && (descriptors[last].revents & POLLIN) != 0) onMenuEnded();
    if ((descriptors[1].revents & POLLIN) != 0) isEnding = true;
    if ((descriptors[2].revents & (POLLIN | POLLERR)) != 0) tick();
    return true;
}

Bar::Deadline Bar::nextDeadline() const {
    Deadline next;
    auto consider = [&](Clock::time_point time) {
        if (!next || time < *next) next = time;
    };
    if (hasWork()) consider(nextWork - workCredit);
    if (isCovered) consider(nextRaise);
    if (monitorsDue) consider(*monitorsDue);
    if (clockDue) consider(*clockDue);
    if (adoptionDue) consider(*adoptionDue);
    if (takeBackDue) consider(*takeBackDue);
    if (toolTipDue) consider(*toolTipDue);
    if (roomDue) consider(*roomDue);
    if (auto time = notifiers->deadline()) consider(*time);
    if (auto time = icons->deadline()) consider(*time);
    return next;
}

bool Bar::hasWork() const {
    return needsLayout || needsPaint || needsSave || hasStaleItems || !dockRequests.empty();
}

void Bar::work() {
    auto now = Clock::now();
    if (monitorsDue && now >= *monitorsDue) {
        monitorsDue.reset();
        updateMonitors();
    }
    if (clockDue && now >= *clockDue) {
        clockDue.reset();
        tick();
    }
    if (toolTipDue && now >= *toolTipDue) showToolTip();
    if (roomDue && now >= *roomDue) needsLayout = true;
    if (adoptionDue && now >= *adoptionDue) {
        adoptionDue.reset();
        adoptStranded();
    }
    if (takeBackDue && now >= *takeBackDue) {
        takeBackDue.reset();
        takeBack();
    }
    if (isCovered && now >= nextRaise) {
        isCovered = false;
        nextRaise = now + raiseInterval;
        raiseAbovePrograms(display, windows.front()->window());
    }
    if (now < nextWork - workCredit) return;
    bool worked = hasWork();
    for (std::size_t i = 0; i < docksPerPass && !dockRequests.empty(); ++i) {
        auto request = dockRequests.front();
        dockRequests.pop_front();
        dock(request.client, request.adopted);
    }
    if (std::exchange(hasStaleItems, false)) {
        for (BarItem* item : items.all()) {
            if (std::exchange(item->isStale, false)) refresh(*item);
        }
    }
    if (std::exchange(needsLayout, false)) {
        layout();
        needsSave = true;
    }
    if (needsSave) needsSave = keeper.save();
    if (std::exchange(needsPaint, false)) paint();
    if (worked) nextWork = std::max(now, nextWork) + workInterval;
}

/// One bar for each monitor; the items' bar moves along with the primary one.
void Bar::updateMonitors() {
    auto monitors = activeMonitors(display);
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        const PixelRect& monitor = monitors[i];
        PixelRect rect{monitor.x, monitor.y, monitor.width,
                       std::min(options.height, monitor.height)};
        bool reservesSpace = !hasMonitorAbove(monitor, monitors);
        if (i < windows.size()) {
            windows[i]->setRect(rect, reservesSpace);
        } else {
            windows.push_back(std::make_unique<BarWindow>(display, rect, reservesSpace));
        }
    }
    windows.resize(monitors.size());
    monitorHeight = monitors.front().height;
    needsLayout = true;
    needsPaint = true;
}

void Bar::tick() {
    armMinuteTimer(minuteDescriptor);
    if (!clockFace.update()) return;
    needsPaint = true;
    if (clockFace.width() + 2 * clockMargin > systemAreaWidth) needsLayout = true;
}

int Bar::systemAreaLeft() const {
    const PixelRect& bar = windows.front()->rect();
    return bar.x + bar.width - systemAreaWidth;
}

MenuBarRow::Room Bar::room() const {
    const PixelRect& bar = windows.front()->rect();
    return {static_cast<double>(bar.x), static_cast<double>(systemAreaLeft()),
            static_cast<double>(bar.x + bar.width)};
}

void Bar::publishGeometry() {
    systemAreaWidth =
        std::max({systemAreaWidth, smallestSystemArea, clockFace.width() + 2 * clockMargin});
    std::vector<std::uint32_t> values;
    auto add = [&values](int value) { values.push_back(static_cast<std::uint32_t>(value)); };
    for (const auto& window : windows) {
        const PixelRect& bar = window->rect();
        for (int value : {bar.x, bar.y, bar.width, bar.height}) add(value);
        if (window == windows.front()) add(systemAreaLeft());
    }
    if (values == publishedGeometry) return;
    publishedGeometry = values;
    xcb_window_t control = host->controlWindow();
    constexpr std::size_t numbersOfFirst = 5;
    auto write = [&](const char* property, std::span<const std::uint32_t> numbers) {
        xcb::writeNumbers(display.get(), control, display.atom(property), XCB_ATOM_INTEGER,
                          numbers);
    };
    write(barprotocol::geometry, std::span(values).first(numbersOfFirst));
    write(barprotocol::otherBars, std::span(values).subspan(numbersOfFirst));
    xcb_window_t window = windows.front()->window();
    xcb::writeNumbers(display.get(), control, display.atom(barprotocol::barWindow), XCB_ATOM_WINDOW,
                      std::span(&window, 1));
}

}  // namespace nevo::menubar
