#include <fmt/format.h>

#include <algorithm>

#include "core/debugLog.h"
#include "core/describe.h"
#include "shelf/DecoyPanelController.h"

namespace nevo {

namespace {

constexpr double slotWidth = 30.0;
constexpr double slotGap = 0.0;
constexpr double panelInset = 2.0;
constexpr double smallestHeight = 22.0;
constexpr double gapBeforeToggle = 2.0;
constexpr double clickHold = 0.05;

constexpr unsigned nonActivatingPanel = 0x80;
/// One above the status bar.
constexpr int panelLevel = 26;
/// All spaces, ignore the cycle.
constexpr unsigned panelCollection = 0x41;
/// Nearly nothing, but enough for the pointer.
constexpr Color touchable = Color::white(1, 0.001);

std::string viewKey(const DecoyEntry& entry) { return fmt::format("decoy:{}", entry.windowID); }

/// Where the entry of that number stands in a panel of that height, and what it shows.
PanelView viewOf(const DecoyEntry& entry, std::size_t index, double height) {
    PanelView view;
    view.key = viewKey(entry);
    view.frame = {panelInset + static_cast<double>(index) * (slotWidth + slotGap), 0, slotWidth,
                  height};
    view.image = entry.image;
    view.takesMouse = true;
    return view;
}

}  // namespace

void DecoyPanelController::hide() {
    globalClickMonitor.reset();
    localClickMonitor.reset();
    if (panel) panel->orderOut();
    panel.reset();
    itemViews.clear();
}

std::vector<DecoyEntry> DecoyPanelController::shownEntries() const {
    std::vector<DecoyEntry> shown;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(shown),
                 [](const DecoyEntry& entry) { return entry.state != DecoyState::nonDecoyable; });
    return shown;
}

void DecoyPanelController::updatePanel() {
    std::vector<DecoyEntry> shown = shownEntries();
    // A rule may have closed a section that counts as open: whoever opens it tells no change then.
    bool isClosed = sectionManager.isHiddenDividerCollapsed() && !appState.isExpanded();
    bool isWanted = isClosed && !(isBarOpen && isBarOpen());
    if (shown.empty() || !isWanted) {
        hide();
    } else {
        showPanel(shown);
    }
}

void DecoyPanelController::showPanel(const std::vector<DecoyEntry>& shown) {
    auto toggle = sectionManager.shownFrame(*sectionManager.toggleItem);
    if (!toggle) {
        debugLog("[Decoy] no toggle frame, skip panel");
        return;
    }
    auto count = static_cast<double>(shown.size());
    double width = count * slotWidth + std::max(0.0, count - 1) * slotGap + 2 * panelInset;
    double height = std::max(smallestHeight, toggle->height);
    Rect frame{toggle->x - width - gapBeforeToggle, toggle->y, width, height};
    if (panel) {
        panel->setFrame(frame);
    } else {
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
            bool isClick = event.type == EventType::leftMouseDown;
            if (!self || !isClick || self->isForwardingClick) return;
            auto clicked = self->itemViews.find(event.view);
            if (clicked != self->itemViews.end()) self->forwardClick(clicked->second);
        };
        installClickMonitors();
    }
    std::vector<PanelView> views;
    itemViews.clear();
    for (std::size_t i = 0; i < shown.size(); ++i) {
        views.push_back(viewOf(shown[i], i, height));
        itemViews[views.back().key] = shown[i].persistedID;
    }
    panel->setViews(std::move(views));
    panel->orderFront();
    debugLog(
        fmt::format("[Decoy] panel shown with {} items, frame={}", shown.size(), describe(frame)));
}

void DecoyPanelController::followToggle() {
    auto toggle = panel ? sectionManager.shownFrame(*sectionManager.toggleItem) : std::nullopt;
    if (!toggle) return;
    Rect frame = panel->frame();
    frame.x = toggle->x - frame.width - gapBeforeToggle;
    frame.y = toggle->y;
    panel->setFrame(frame);
}

/// Both hear of a click on the panel before its views do; the local one keeps it from them.
void DecoyPanelController::installClickMonitors() {
    EventMask mask = maskOf(EventType::leftMouseDown);
    auto weak = weak_from_this();
    globalClickMonitor = platform.events.addGlobalMonitor(mask, [weak](const Event&) {
        auto self = weak.lock();
        auto offset = self ? self->offsetInPanel() : std::nullopt;
        if (!offset) return;
        self->platform.runLoop.post([weak, at = *offset] {
            if (auto held = weak.lock()) held->forwardClickAt(at);
        });
    });
    localClickMonitor = platform.events.addLocalMonitor(mask, [weak](const Event&) {
        auto self = weak.lock();
        auto offset = self ? self->offsetInPanel() : std::nullopt;
        if (!offset) return false;
        self->platform.runLoop.post([weak, at = *offset] {
            if (auto held = weak.lock()) held->forwardClickAt(at);
        });
        return true;
    });
}

/// How far the pointer is from the panel's left edge; nothing outside of it.
std::optional<double> DecoyPanelController::offsetInPanel() const {
    // A forwarded click may land on the panel itself; sent on again it would never end.
    if (!panel || !panel->isVisible() || isForwardingClick) return std::nullopt;
    Point mouse = platform.events.mouseLocation();
    if (!panel->frame().contains(mouse)) return std::nullopt;
    return mouse.x - panel->frame().x;
}

void DecoyPanelController::forwardClickAt(double offset) {
    std::vector<DecoyEntry> shown = shownEntries();
    // Cut off towards zero: the panel's inset belongs to the first slot.
    auto index = static_cast<int>((offset - panelInset) / slotWidth);
    if (index < 0 || index >= static_cast<int>(shown.size())) return;
    forwardClick(shown[static_cast<std::size_t>(index)].persistedID);
}

void DecoyPanelController::forwardClick(const std::string& persistedID) {
    auto entry = std::find_if(entries.begin(), entries.end(), [&](const DecoyEntry& each) {
        return each.persistedID == persistedID;
    });
    if (entry == entries.end()) {
        debugLog("[Decoy] click: entry not found for " + persistedID);
        return;
    }
    ScannedBarItems all = snapshotItems();
    if (const ScannedBarItem* item = findByPersistedID(all, persistedID)) {
        entry->ownerPID = item->ownerPID;
        entry->windowID = item->windowID;
        entry->realCenterX = item->centerX;
    }
    Point at{entry->realCenterX, platform.statusBar.thickness() * 0.5};
    auto frame = platform.windows.windowFrame(entry->windowID);
    if (frame && !frame->isEmpty()) at = frame->center();

    auto source = platform.events.createEventSource();
    std::optional<MouseEvent> down;
    std::optional<MouseEvent> up;
    if (source) {
        down = platform.events.createMouseEvent(*source, EventType::leftMouseDown, at);
        up = platform.events.createMouseEvent(*source, EventType::leftMouseUp, at);
    }
    if (!down || !up) {
        debugLog("[Decoy] click: failed to create events for " + persistedID);
        return;
    }
    for (MouseEvent* event : {&*down, &*up}) {
        for (EventField field :
             {EventField::windowUnderPointer, EventField::windowUnderPointerThatCanHandle,
              EventField::windowNumber})
            event->fields[field] = entry->windowID;
        event->fields[EventField::clickState] = 1;
    }
    isForwardingClick = true;
    platform.events.post(*down);
    platform.runLoop.postAfter(clickHold,
                               [weak = weak_from_this(), &events = platform.events, release = *up] {
                                   events.post(release);
                                   if (auto self = weak.lock()) self->isForwardingClick = false;
                               });
    debugLog(fmt::format("[Decoy] click forwarded: {} wid={} at={}", persistedID, entry->windowID,
                         describe(at)));
}

void DecoyPanelController::capture(DecoyEntry& entry) {
    auto image = platform.windows.windowImage(entry.windowID);
    if (!image) {
        debugLog(
            fmt::format("[Decoy] capture failed for {} wid={}", entry.persistedID, entry.windowID));
        return;
    }
    double scale = platform.windows.pixelsPerPoint();
    image->size = {image->bitmap->width / scale, image->bitmap->height / scale};
    image->isTemplate = false;
    entry.image = std::move(image);
    entry.state = DecoyState::clean;
    entry.lastCaptureTime = platform.runLoop.now();
    if (!panel) return;
    // The panel's view of it, if it has one yet.
    std::vector<DecoyEntry> shown = shownEntries();
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (shown[i].persistedID != entry.persistedID) continue;
        panel->setView(viewOf(entry, i, panel->frame().height));
    }
}

}  // namespace nevo
