#include "shelf/ShelfController.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {
constexpr double snapshotAge = 3.0;
}  // namespace

std::string describe(ShelfState state) {
    switch (state.kind) {
        case ShelfState::Kind::presentingItem:
            return fmt::format("presentingItem({})", state.presented);
        case ShelfState::Kind::panelVisible:
            return "panelVisible";
        case ShelfState::Kind::collapsed:
            break;
    }
    return "collapsed";
}

ShelfController::ShelfController(const Platform& desktop, AppState& state,
                                 std::shared_ptr<NevoBar> bar, SectionManager& sections,
                                 MenuBarScanner& itemScanner, ItemMover& itemMover)
    : platform(desktop),
      appState(state),
      nevoBar(std::move(bar)),
      sectionManager(sections),
      scanner(itemScanner),
      mover(itemMover),
      openedAt(-std::numeric_limits<double>::infinity()) {}

std::shared_ptr<ShelfController> ShelfController::create(
    const Platform& platform, AppState& appState, std::shared_ptr<NevoBar> nevoBar,
    SectionManager& sectionManager, MenuBarScanner& scanner, ItemMover& mover) {
    std::shared_ptr<ShelfController> shelf(new ShelfController(
        platform, appState, std::move(nevoBar), sectionManager, scanner, mover));
    shelf->bindBarCallbacks();
    return shelf;
}

void ShelfController::toggle(const std::string& from, bool byKeys) {
    if (isTransitioning) {
        debugLog(fmt::format("[Shelf] toggle ignored: transition already running (from {})", from));
        return;
    }
    debugLog(fmt::format("[Shelf] toggle START from={} state={}", from, describe(shelfState)));
    isTransitioning = true;
    opensByKeys = byKeys;
    spawn(platform.runLoop, runToggle(weak_from_this()));
}

Task<> ShelfController::runToggle(std::weak_ptr<ShelfController> owner) {
    auto self = owner.lock();
    if (!self) co_return;
    self->performToggle();
    self->isTransitioning = false;
}

void ShelfController::performToggle() {
    auto frame = appState.isExpanded() ? usableToggleFrame() : std::nullopt;
    if (frame) take(*frame);
    copyAppearance();
    nevoBar->nevoIconX = savedFrame.x;
    switch (shelfState.kind) {
        case ShelfState::Kind::collapsed:
            showShelf();
            break;
        case ShelfState::Kind::panelVisible:
            debugLog("[Shelf] toggle panelVisible -> collapsed (items stay pushed)");
            nevoBar->dismiss();
            opensByKeys = false;
            shelfState = {};
            break;
        case ShelfState::Kind::presentingItem:
            debugLog(fmt::format(
                "[Shelf] toggle presentingItem -> panelVisible (keeping presentation) wid={}",
                shelfState.presented));
            showShelf();
            break;
    }
}

std::optional<Rect> ShelfController::usableToggleFrame() const {
    auto frame = sectionManager.shownFrame(*sectionManager.toggleItem);
    if (!frame || frame->isEmpty()) return std::nullopt;
    return frame;
}

void ShelfController::take(const Rect& toggleFrame) {
    savedFrame = toggleFrame;
    nevoBar->nevoIconX = toggleFrame.x;
}

void ShelfController::copyAppearance() {
    nevoBar->animationsEnabled = appState.animationsEnabled();
    refreshBarAppearance();
}

void ShelfController::refreshBarAppearance() {
    nevoBar->appearanceTheme = appState.shelfAppearanceTheme();
    nevoBar->applyAppearance();
    ShelfBarStyle style = appState.effectiveShelfBarStyle();
    bool changes = style != nevoBar->barStyle;
    nevoBar->barStyle = style;
    if (changes) nevoBar->relayoutForStyle();
    nevoBar->isReorderingEnabled = true;
}

void ShelfController::showShelf() {
    if (auto frame = usableToggleFrame()) {
        take(*frame);
    } else if (!(savedFrame.width > 0)) {
        debugLog("[Shelf] Cannot show shelf: missing toggle button frame");
        opensByKeys = false;
        return;
    }
    ScannedBarItems items = displayItems();
    if (items.empty()) {
        debugLog("[Shelf] no cached items, will wait for fresh scan");
    } else {
        nevoBar->nevoIconX = savedFrame.x;
        debugLog(fmt::format("[Shelf] showing panel cached={} (instant from cache)", items.size()));
        showShelfPanel(items);
    }
    spawn(platform.runLoop, refresh(weak_from_this(), items));
}

ScannedBarItems ShelfController::snapshotSection(SectionName section) const {
    auto found = sectionManager.lastExpandedSnapshot.find(section);
    return found == sectionManager.lastExpandedSnapshot.end() ? ScannedBarItems{} : found->second;
}

ScannedBarItems ShelfController::displayItems() const {
    ScannedBarItems items = snapshotSection(SectionName::hidden);
    ScannedBarItems alphaHiddenFromVisible = snapshotSection(SectionName::visible);
    std::set<WindowNumber> alphaHidden = sectionManager.opacity.alphaHiddenWindows();
    std::erase_if(alphaHiddenFromVisible,
                  [&](const ScannedBarItem& item) { return !alphaHidden.contains(item.windowID); });
    bool isEmpty = items.empty() && alphaHiddenFromVisible.empty();
    ScannedBarItems stillThere = cachedItems;
    std::erase_if(stillThere, [this](const ScannedBarItem& item) {
        return !mover.readableFrame(item.windowID);
    });
    if (sectionManager.isHiddenDividerCollapsed() && isEmpty && !stillThere.empty()) {
        debugLog(fmt::format("[Shelf] displayItems: using shelf cache fallback count={}",
                             stillThere.size()));
        return appState.rules.orderedShelfItems(stillThere);
    }
    if (!alphaHiddenFromVisible.empty()) {
        std::string names;
        for (const ScannedBarItem& item : alphaHiddenFromVisible) {
            if (!names.empty()) names += ",";
            names += fmt::format("{}(wid={})", item.label, item.windowID);
        }
        debugLog(fmt::format("[Shelf] displayItems: hidden={} alphaHiddenFromVisible={}",
                             items.size(), names));
    }
    items.insert(items.end(), alphaHiddenFromVisible.begin(), alphaHiddenFromVisible.end());
    return appState.rules.orderedShelfItems(items);
}

Task<> ShelfController::refresh(std::weak_ptr<ShelfController> owner, ScannedBarItems reference) {
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& itemScanner = self->scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    double openedBefore = self->openedAt;
    bool wasCollapsed = self->isIn(ShelfState::Kind::collapsed);
    self.reset();
    ScannedBarItems items = co_await itemScanner.scanCached(own, snapshotAge);
    self = owner.lock();
    if (!self) co_return;
    self->sectionManager.lastExpandedSnapshot = self->sectionManager.classify(items);
    self->cachedItems = self->snapshotSection(SectionName::hidden);
    if (self->nevoBar->isPanelVisible()) {
        self->renewSlots();
        co_return;
    }
    ScannedBarItems latest = self->displayItems();
    // The toggle found nothing to show and the user still waits for it: nothing was opened, closed
    // or presented since. A bar that did open and is closed now was closed by the user.
    bool stillWanted = reference.empty() && wasCollapsed && self->openedAt == openedBefore &&
                       self->isIn(ShelfState::Kind::collapsed) && !self->appState.isExpanded() &&
                       isShelfMode(self->platform.screens, self->appState);
    if (stillWanted && !latest.empty()) {
        debugLog("[Shelf] cache was empty; opening panel after fresh scan");
        self->showShelfPanel(latest);
    } else {
        debugLog("[Shelf] No items to show in shelf (after fresh scan)");
        self->opensByKeys = false;
    }
}

void ShelfController::showShelfPanel(const ScannedBarItems& items) {
    if (items.empty()) {
        debugLog("[Shelf] showShelfPanel skipped: no display items");
        return;
    }
    nevoBar->animationsEnabled = appState.animationsEnabled();
    nevoBar->nevoIconX = savedFrame.x;
    // What opens again by itself leaves the keys to the window in use.
    nevoBar->show(barItems(items), std::exchange(opensByKeys, false));
    shelfState = {ShelfState::Kind::panelVisible};
    openedAt = platform.runLoop.now();
    ++openings;
    debugLog(fmt::format("[Shelf] panel visible count={} panelFrame={}", items.size(),
                         describe(nevoBar->panelFrame())));
    if (onOpened) onOpened();
}

/// A bar that only shows what a rule of the front application has put into it gets nothing new.
void ShelfController::renewSlots() {
    if (nevoBar->isOpen())
        nevoBar->renew(barItems(displayItems()), isIn(ShelfState::Kind::panelVisible));
}

void ShelfController::onItemsPushed(const ScannedBarItems& items, const Rect& toggleFrame) {
    savedFrame = toggleFrame;
    cachedItems = items;
    nevoBar->nevoIconX = toggleFrame.x;
    copyAppearance();
    // Another collapse may have been under way when the user opened the bar.
    if (!isIn(ShelfState::Kind::panelVisible) || !nevoBar->isOpen()) shelfState = {};
    debugLog(fmt::format("[Shelf] onItemsPushed cached={} frame={}", items.size(),
                         describe(toggleFrame)));
}

void ShelfController::updateCachedItemsAfterDrag(const ScannedBarItems& items) {
    cachedItems = items;
    debugLog(fmt::format("[Shelf] updateCachedItemsAfterDrag count={}", items.size()));
}

void ShelfController::dismissShelf() {
    if (!isIn(ShelfState::Kind::panelVisible)) return;
    debugLog("[Shelf] dismissShelf (click outside)");
    nevoBar->dismiss();
    shelfState = {};
    if (onClosed) onClosed();
}

}  // namespace nevo
