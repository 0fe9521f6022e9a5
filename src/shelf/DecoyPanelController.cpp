#include "shelf/DecoyPanelController.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/debugLog.h"
#include "core/screenOf.h"

namespace nevo {

namespace {
/// The bar's layout has settled by then.
constexpr double collapseSettle = 0.4;
constexpr double snapshotAge = 3.0;
/// A picture is taken again when it is older.
constexpr double pictureAge = 10.0;
}  // namespace

DecoyPanelController::DecoyPanelController(const Platform& desktop, AppState& state,
                                           SectionManager& sections, MenuBarScanner& itemScanner)
    : platform(desktop), appState(state), sectionManager(sections), scanner(itemScanner) {}

std::shared_ptr<DecoyPanelController> DecoyPanelController::create(const Platform& platform,
                                                                   AppState& appState,
                                                                   SectionManager& sectionManager,
                                                                   MenuBarScanner& scanner) {
    std::shared_ptr<DecoyPanelController> decoys(
        new DecoyPanelController(platform, appState, sectionManager, scanner));
    decoys->observe();
    return decoys;
}

void DecoyPanelController::observe() {
    auto weak = weak_from_this();
    observers.push_back(appState.isExpandedDidChange.observe([weak] {
        auto self = weak.lock();
        if (!self) return;
        self->update();
        if (!self->appState.isExpanded()) spawn(self->platform.runLoop, rebuildAfterCollapse(weak));
    }));
    // A drag or a rule may open the section while it counts as closed.
    observers.push_back(sectionManager.hiddenDividerDidChange.observe([weak] {
        if (auto self = weak.lock()) self->dividerChanged();
    }));
    // The places of Nevo's icon and of what is out; and what the user wants in sight, rules and the
    // mode, whoever has written them.
    for (const char* told : {statusItemsMovedNotification, userDefaultsDidChangeNotification}) {
        observers.push_back(platform.notifications.addObserver(told, [weak](const Notification&) {
            if (auto self = weak.lock()) self->updateSoon();
        }));
    }
}

void DecoyPanelController::dividerChanged() {
    // An opening is told before the bar has moved anything: no decoy stands above a real item.
    isSettling = sectionManager.isHiddenDividerCollapsed();
    update();
    if (!isSettling) return;
    platform.runLoop.postAfter(collapseSettle, [weak = weak_from_this(), closing = ++closings] {
        auto self = weak.lock();
        if (!self || self->closings != closing) return;
        self->isSettling = false;
        self->update();
    });
}

void DecoyPanelController::updateSoon() {
    // Settings are often written several at a time.
    if (std::exchange(isUpdatePending, true)) return;
    platform.runLoop.post([weak = weak_from_this()] {
        auto self = weak.lock();
        if (!self) return;
        self->isUpdatePending = false;
        self->update();
    });
}

Task<> DecoyPanelController::rebuildAfterCollapse(std::weak_ptr<DecoyPanelController> owner) {
    co_await sleep(collapseSettle);
    co_await rebuild(owner);
}

Task<> DecoyPanelController::rebuild(std::weak_ptr<DecoyPanelController> owner) {
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& itemScanner = self->scanner;
    std::set<WindowNumber> own = self->sectionManager.ownWindowIDs();
    self.reset();
    ScannedBarItems items = co_await itemScanner.scanCached(own, snapshotAge);
    self = owner.lock();
    if (!self) co_return;
    self->sectionManager.lastExpandedSnapshot = self->sectionManager.classify(items);
    self->update();
}

void DecoyPanelController::update() {
    if (!isWanted()) {
        hide();
        return;
    }
    bool hasNewPicture = takeEntries(itemsToShow());
    showPanel(hasNewPicture);
}

/// A rule may have closed a section that counts as open: whoever opens it tells no change then.
bool DecoyPanelController::isClosed() const {
    return sectionManager.isHiddenDividerCollapsed() && !appState.isExpanded();
}

/// In push mode a click brings the real items back.
bool DecoyPanelController::isWanted() const {
    return isShelfMode(platform.screens, appState) && isClosed() && !isSettling &&
           !(isBarOpen && isBarOpen());
}

ScannedBarItems DecoyPanelController::snapshotSection(SectionName section) const {
    auto found = sectionManager.lastExpandedSnapshot.find(section);
    return found == sectionManager.lastExpandedSnapshot.end() ? ScannedBarItems{} : found->second;
}

/// The hidden items that the user has marked. One that a rule hides, its own or that of the
/// application in front, is to stay out of sight, whichever was set last: its mark waits for the
/// rule's end.
ScannedBarItems DecoyPanelController::itemsToShow() const {
    std::set<std::string> marked = appState.rules.decoyItems();
    ScannedBarItems result;
    if (marked.empty()) return result;
    IconRules rules = appState.rules.loadIconRules();
    ScannedBarItems hidden = snapshotSection(SectionName::hidden);
    ScannedBarItems all = hidden;
    ScannedBarItems visible = snapshotSection(SectionName::visible);
    all.insert(all.end(), visible.begin(), visible.end());
    for (const ScannedBarItem& item : hidden) {
        if (!marked.contains(item.persistedID)) continue;
        auto match = matchIconRule(item, rules, all);
        bool isRuledOut = match && match->second == IconRule::alwaysHide;
        bool isHiddenInFront =
            sectionManager.opacity.has(ItemOpacity::Reason::hiddenInFront, item.windowID);
        // One whose place can't be told may stand in sight.
        bool isKnown = platform.windows.slotFrame(item.windowID).has_value();
        if (!isRuledOut && !isHiddenInFront && isKnown && !placeInSight(item))
            result.push_back(item);
    }
    // The snapshot may be older than the row's order, or see an item where it is out.
    auto slotX = [this](const ScannedBarItem& item) {
        auto slot = platform.windows.slotFrame(item.windowID);
        return slot ? slot->x : item.centerX;
    };
    std::stable_sort(
        result.begin(), result.end(),
        [&](const ScannedBarItem& a, const ScannedBarItem& b) { return slotX(a) < slotX(b); });
    return result;
}

/// Where the item can be seen on the toggle's screen: brought out, or too narrow to be made
/// transparent. Nothing when it can't.
std::optional<Rect> DecoyPanelController::placeInSight(const ScannedBarItem& item) const {
    auto toggle = SectionManager::frame(*sectionManager.toggleItem);
    auto screen = toggle ? screenOf(platform.screens, *toggle) : std::nullopt;
    if (!screen || sectionManager.opacity.isTransparent(item.windowID)) return std::nullopt;
    // An item that gets a forwarded click is in the bar for a moment, unseen; its slot isn't.
    bool isOut = sectionManager.opacity.has(ItemOpacity::Reason::broughtOut, item.windowID);
    auto place = isOut ? platform.windows.windowFrame(item.windowID)
                       : platform.windows.slotFrame(item.windowID);
    bool isOnScreen =
        place && place->maxX() > screen->frame.minX() && place->minX() < screen->frame.maxX();
    return isOnScreen ? place : std::nullopt;
}

/// One entry an item; pictures are kept as long as they are good. True when there is a new one.
bool DecoyPanelController::takeEntries(const ScannedBarItems& items) {
    auto former = std::exchange(entries, {});
    bool hasNewPicture = false;
    for (const ScannedBarItem& item : items) {
        auto known = std::find_if(former.begin(), former.end(), [&](const DecoyEntry& each) {
            return each.windowID == item.windowID;
        });
        DecoyEntry entry;
        if (known != former.end()) entry = *known;
        entry.persistedID = item.persistedID;
        entry.windowID = item.windowID;
        entry.width = item.width;
        bool isOld = platform.runLoop.now() - entry.captureTime > pictureAge;
        if (!entry.image || isOld) hasNewPicture = capture(entry) || hasNewPicture;
        entries.push_back(std::move(entry));
    }
    return hasNewPicture;
}

/// True when the item looks different from its picture so far.
bool DecoyPanelController::capture(DecoyEntry& entry) const {
    auto image = platform.windows.windowImage(entry.windowID);
    if (!image) {
        debugLog(
            fmt::format("[Decoy] capture failed for {} wid={}", entry.persistedID, entry.windowID));
        return false;
    }
    double scale = platform.windows.pixelsPerPoint();
    image->size = {image->bitmap->width / scale, image->bitmap->height / scale};
    image->isTemplate = false;
    entry.captureTime = platform.runLoop.now();
    bool isSame =
        entry.image && entry.image->size == image->size && *entry.image->bitmap == *image->bitmap;
    if (!isSame) entry.image = std::move(image);
    return !isSame;
}

}  // namespace nevo
