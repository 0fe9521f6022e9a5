#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/debugLog.h"
#include "core/describe.h"
#include "core/screenOf.h"
#include "shelf/DecoyPanelController.h"

namespace nevo {

namespace {

constexpr double smallestSlot = 30.0;
constexpr double panelInset = 2.0;
constexpr double smallestHeight = 22.0;
/// Between the panel and the toggle, or what else can be seen left of that.
constexpr double gapBeforeItems = 2.0;
constexpr double clickHold = 0.05;

constexpr unsigned nonActivatingPanel = 0x80;
/// One above the status bar.
constexpr int panelLevel = 26;
/// All spaces, ignore the cycle.
constexpr unsigned panelCollection = 0x41;
/// Nearly nothing, but enough for the pointer.
constexpr Color touchable = Color::white(1, 0.001);

constexpr const char* viewPrefix = "decoy:";

double slotWidth(const DecoyEntry& entry) { return std::max(smallestSlot, entry.width); }

/// What follows a press; nothing for what is no press.
std::optional<EventType> releaseOf(EventType type) {
    switch (type) {
        case EventType::leftMouseDown:
            return EventType::leftMouseUp;
        case EventType::rightMouseDown:
            return EventType::rightMouseUp;
        case EventType::otherMouseDown:
            return EventType::otherMouseUp;
        default:
            return std::nullopt;
    }
}

/// As many as fit, whole, the ones beside the toggle first; in their order.
std::vector<DecoyEntry> fitting(const std::vector<DecoyEntry>& entries, double width) {
    std::vector<DecoyEntry> result;
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
        if (slotWidth(*entry) > width) continue;
        width -= slotWidth(*entry);
        result.push_back(*entry);
    }
    std::reverse(result.begin(), result.end());
    return result;
}

}  // namespace

void DecoyPanelController::hide() {
    if (panel) panel->orderOut();
    panel.reset();
    shownWindows.clear();
}

/// From the left edge of the toggle's screen to the leftmost of what can be seen left of it.
std::optional<DecoyPanelController::Room> DecoyPanelController::room() const {
    auto toggle = sectionManager.shownFrame(*sectionManager.toggleItem);
    auto screen = toggle ? screenOf(platform.screens, *toggle) : std::nullopt;
    if (!screen) return std::nullopt;
    Room result{screen->frame.minX(), toggle->x, toggle->y,
                std::max(smallestHeight, toggle->height)};
    for (const ScannedBarItem& item : snapshotSection(SectionName::hidden)) {
        if (auto place = placeInSight(item)) result.right = std::min(result.right, place->x);
    }
    result.right -= gapBeforeItems;
    return result;
}

void DecoyPanelController::showPanel(bool hasNewPicture) {
    auto free = entries.empty() ? std::nullopt : room();
    if (!entries.empty() && !free) debugLog("[Decoy] no toggle frame, skip panel");
    std::vector<DecoyEntry> shown;
    if (free) shown = fitting(entries, free->right - free->left - 2 * panelInset);
    if (shown.empty()) {
        hide();
        return;
    }
    std::vector<PanelView> views;
    std::vector<WindowNumber> windows;
    double x = panelInset;
    for (const DecoyEntry& entry : shown) {
        PanelView view;
        view.key = viewPrefix + std::to_string(entry.windowID);
        view.frame = {x, 0, slotWidth(entry), free->height};
        view.image = entry.image;
        view.takesMouse = true;
        x += view.frame.width;
        windows.push_back(entry.windowID);
        views.push_back(std::move(view));
    }
    double width = x + panelInset;
    Rect frame{free->right - width, free->y, width, free->height};
    bool isSame = panel && panel->frame() == frame && windows == shownWindows;
    if (isSame && !hasNewPicture) return;
    makePanel(frame);
    shownWindows = std::move(windows);
    panel->setViews(std::move(views));
    panel->orderFront();
    if (isSame) return;
    debugLog(
        fmt::format("[Decoy] panel shown with {} items, frame={}", shown.size(), describe(frame)));
}

void DecoyPanelController::makePanel(const Rect& frame) {
    if (panel) {
        panel->setFrame(frame);
        return;
    }
    PanelConfiguration made;
    made.frame = frame;
    made.styleMask = nonActivatingPanel;
    made.level = panelLevel;
    made.background = touchable;
    made.collectionBehavior = panelCollection;
    made.canBecomeKey = true;
    panel = platform.panels.create(made);
    panel->onEvent = [weak = weak_from_this()](const PanelEvent& event) {
        auto self = weak.lock();
        // A forwarded click may land on the panel itself; sent on again it would never end.
        bool isClick = event.type == EventType::scrollWheel || releaseOf(event.type);
        if (!self || !isClick || self->isForwardingClick) return;
        std::string number = event.view.substr(std::string(viewPrefix).size());
        self->forward(event, static_cast<WindowNumber>(std::stoul(number)));
    };
}

void DecoyPanelController::forward(const PanelEvent& event, WindowNumber window) {
    auto entry = std::find_if(entries.begin(), entries.end(),
                              [&](const DecoyEntry& each) { return each.windowID == window; });
    auto frame = platform.windows.windowFrame(window);
    if (entry == entries.end() || !frame || frame->isEmpty()) {
        debugLog(fmt::format("[Decoy] click: entry not found for wid={}", window));
        return;
    }
    Point at = frame->center();
    std::vector<EventType> types{event.type};
    if (auto release = releaseOf(event.type)) types.push_back(*release);
    auto source = platform.events.createEventSource();
    std::vector<MouseEvent> made;
    for (EventType type : types) {
        auto one = source ? platform.events.createMouseEvent(*source, type, at) : std::nullopt;
        if (!one) {
            debugLog("[Decoy] click: failed to create events for " + entry->persistedID);
            return;
        }
        for (EventField field :
             {EventField::windowUnderPointer, EventField::windowUnderPointerThatCanHandle,
              EventField::windowNumber})
            one->fields[field] = window;
        one->fields[EventField::clickState] = 1;
        one->fields[EventField::scrollDeltaX] = std::llround(event.scroll.x);
        one->fields[EventField::scrollDeltaY] = std::llround(event.scroll.y);
        made.push_back(*one);
    }
    platform.events.post(made.front());
    if (made.size() > 1) {
        isForwardingClick = true;
        platform.runLoop.postAfter(
            clickHold, [weak = weak_from_this(), &events = platform.events, release = made.back()] {
                events.post(release);
                if (auto self = weak.lock()) self->isForwardingClick = false;
            });
    }
    debugLog(fmt::format("[Decoy] click forwarded: {} wid={} at={}", entry->persistedID, window,
                         describe(at)));
}

}  // namespace nevo
