#include <fmt/format.h>

#include <algorithm>

#include "core/debugLog.h"
#include "core/describe.h"
#include "discovery/ItemIdentity.h"
#include "shelf/ShelfController.h"

namespace nevo {

namespace {
/// The bar's fade.
constexpr double fadeTime = 0.18;
constexpr double presentationTime = 60.0;
/// How often is looked whether the item before is back.
constexpr double takeBackPoll = 0.02;
/// Between the toggle and the presented item.
constexpr double clearance = 12.0;
/// An x outside every screen.
constexpr double beyondTheBar = -20000.0;
}  // namespace

void ShelfController::presentItem(const ScannedBarItem& item) {
    if (!isIn(ShelfState::Kind::panelVisible)) {
        debugLog(fmt::format("[Shelf] presentItem ignored in state={} wid={}", describe(shelfState),
                             item.windowID));
        return;
    }
    startPresentation(item);
}

void ShelfController::bringOut(const ScannedBarItem& item) {
    auto frame = usableToggleFrame();
    if (!frame) return;
    take(*frame);
    startPresentation(item);
}

void ShelfController::startPresentation(const ScannedBarItem& item) {
    if (presentationTask) presentationTask->cancel();
    presentationTask =
        spawn(platform.runLoop, runPresentation(weak_from_this(), ++presentationRun, item));
}

Task<> ShelfController::runPresentation(std::weak_ptr<ShelfController> owner, int run,
                                        ScannedBarItem item) {
    auto self = owner.lock();
    if (!self) co_return;
    debugLog(fmt::format("[Shelf] presentItem begin wid={} label={}", item.windowID, item.label));
    self->begunRun = run;
    // The click on a slot has closed the bar already. One that a rule of the front application has
    // opened stays for what comes from elsewhere.
    if (self->isIn(ShelfState::Kind::panelVisible)) self->nevoBar->dismiss();
    ShelfBefore before{self->isIn(ShelfState::Kind::panelVisible), self->nevoBar->wasKeyed(),
                       self->openings};
    bool animated = self->appState.animationsEnabled();
    self.reset();
    if (animated) co_await sleep(fadeTime);
    self = owner.lock();
    if (!self) co_return;
    // What was out before is taken back first: its end must not be taken for this one's.
    while (self->activePresentation) {
        self.reset();
        co_await sleep(takeBackPoll);
        bool cancelled = co_await isCancelled();
        self = owner.lock();
        if (!self || cancelled) co_return;
    }
    ScannedBarItem resolved = self->resolveItem(item);
    if (resolved.windowID != item.windowID)
        debugLog(fmt::format("[Shelf] presentItem resolved wid={} -> {} via identity match",
                             item.windowID, resolved.windowID));
    auto destination = self->beginPresentation(resolved, before);
    if (!destination) co_return;
    ItemMover& itemMover = self->mover;
    self.reset();
    BarItem moved(resolved);
    Point target = *destination;
    bool ok = co_await itemMover.moveForShelf(moved, target);
    self = owner.lock();
    if (!self) co_return;
    if (self->activePresentation)
        self->activePresentation->floats = itemMover.isFloating(resolved.windowID);
    self.reset();
    if (!ok) {
        debugLog(fmt::format("[Shelf] presentItem failed to move wid={}", resolved.windowID));
        bool isCalledOff = co_await isCancelled();
        if (!isCalledOff)
            debugLog(fmt::format("[Shelf] the menu bar doesn't bring out an item of {} points",
                                 describe(resolved.width)));
    } else {
        debugLog("[Shelf] presentItem visible; awaiting user interaction or 60s timeout");
        co_await sleep(presentationTime);
        bool cancelled = co_await isCancelled();
        debugLog(cancelled
                     ? fmt::format("[Shelf] presentItem task cancelled wid={}", resolved.windowID)
                     : fmt::format("[Shelf] presentItem 60s timeout, retracting wid={}",
                                   resolved.windowID));
    }
    co_await finishPresentation(owner, run);
}

/// Notes that the item is out and gives the place beside the toggle where its centre is to
/// come. Nothing when its window has gone: a shelf in which it was clicked is open again then.
std::optional<Point> ShelfController::beginPresentation(const ScannedBarItem& item,
                                                        const ShelfBefore& before) {
    auto bounds = mover.readableFrame(item.windowID);
    if (!bounds) {
        debugLog(
            fmt::format("[Shelf] presentItem failed: missing hidden bounds wid={}", item.windowID));
        if (before.wasOpen && isShelfMode(platform.screens, appState)) {
            opensByKeys = before.hadKeys;
            showShelfPanel(displayItems());
        }
        return std::nullopt;
    }
    activePresentation = ActivePresentation{item};
    sectionManager.opacity.add(ItemOpacity::Reason::broughtOut, item.windowID);
    // Whoever has opened the bar again during its fade has it beside the item.
    bool isOpenAgain = isIn(ShelfState::Kind::panelVisible) && openings != before.openings;
    if (!isOpenAgain) shelfState = {ShelfState::Kind::presentingItem, item.windowID};
    double width = std::max(bounds->width, item.width);
    return Point{width * 0.5 + savedFrame.maxX() + clearance, bounds->midY()};
}

ScannedBarItem ShelfController::resolveItem(const ScannedBarItem& item) const {
    ScannedBarItems all = snapshotSection(SectionName::hidden);
    ScannedBarItems visible = snapshotSection(SectionName::visible);
    all.insert(all.end(), visible.begin(), visible.end());

    auto byNumber = std::find_if(all.begin(), all.end(), [&](const ScannedBarItem& each) {
        return each.windowID == item.windowID;
    });
    if (byNumber != all.end()) {
        auto frame = mover.readableFrame(item.windowID);
        if (frame && frame->y >= 0) return *byNumber;
    }
    if (auto* same = findByPersistedID(all, item.persistedID)) return *same;
    std::string tail = lastPartOfID(item.persistedID);
    if (tail.find('.') == std::string::npos) return item;
    std::string separator(persistedIDSeparator);
    auto byName = std::find_if(all.begin(), all.end(), [&](const ScannedBarItem& each) {
        return each.persistedID.ends_with(separator + tail) ||
               each.persistedID.starts_with(tail + separator);
    });
    return byName != all.end() ? *byName : item;
}

Task<> ShelfController::finishPresentation(std::weak_ptr<ShelfController> owner, int run) {
    bool cancelled = co_await isCancelled();
    auto self = owner.lock();
    if (!self) co_return;
    debugLog(fmt::format("[Shelf] finishPresentation called cancelled={} hasActive={} state={}",
                         describe(cancelled), describe(self->activePresentation.has_value()),
                         describe(self->shelfState)));
    self->takeBack();
    self->concludePresentation(run);
}

void ShelfController::concludePresentation(int run) {
    // The next item's run may have closed the bar for itself.
    bool wantsPanel =
        run == begunRun && isIn(ShelfState::Kind::panelVisible) && !nevoBar->isPanelVisible();
    if (run == presentationRun) presentationTask.reset();
    ScannedBarItems items = wantsPanel ? displayItems() : ScannedBarItems{};
    if (isIn(ShelfState::Kind::presentingItem)) {
        shelfState = {};
        debugLog("[Shelf] state -> collapsed");
    } else if (!items.empty()) {
        debugLog("[Shelf] restoring panel after presentation interrupt");
        showShelfPanel(items);
    } else {
        debugLog("[Shelf] keeping state=" + describe(shelfState));
    }
    if (isIn(ShelfState::Kind::collapsed) && onClosed) onClosed();
}

void ShelfController::takeBack() {
    if (!activePresentation) return;
    BarItem item(activePresentation->item);
    activePresentation.reset();
    // Beyond the bar an item goes back into its slot, wherever that is by then; also one of a slow
    // bar, which hasn't brought it out yet.
    if (auto frame = mover.readableFrame(item.windowID)) {
        mover.moveWindowDirectly(item.windowID, "direct", *frame, beyondTheBar);
        bool ok = !mover.isFloating(item.windowID);
        debugLog(fmt::format("[Shelf] move back wid={} ok={}", item.windowID, describe(ok)));
    }
    sectionManager.opacity.remove(ItemOpacity::Reason::broughtOut, item.windowID);
}

void ShelfController::endLostPresentation() {
    bool isLost = activePresentation && activePresentation->floats &&
                  !mover.isFloating(activePresentation->item.windowID);
    if (isLost && presentationTask) presentationTask->cancel();
}

void ShelfController::endPresentation() {
    if (presentationTask) presentationTask->cancel();
    presentationTask.reset();
    takeBack();
}

void ShelfController::resetForDisplayModeChange() {
    endPresentation();
    shelfState = {};
    nevoBar->dismiss();
}

}  // namespace nevo
