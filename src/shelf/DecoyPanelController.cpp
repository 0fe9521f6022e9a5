#include "shelf/DecoyPanelController.h"

namespace nevo {

namespace {
/// The bar's layout has settled by then.
constexpr double collapseSettle = 0.4;
constexpr double snapshotAge = 3.0;
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
    decoys->expandedCancellable =
        appState.isExpandedDidChange.observe([weak = std::weak_ptr(decoys)] {
            if (auto self = weak.lock()) self->isExpandedChanged();
        });
    return decoys;
}

void DecoyPanelController::isExpandedChanged() {
    if (appState.isExpanded()) return;
    spawn(platform.runLoop, rebuildAfterCollapse(weak_from_this()));
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
    if (self) self->sectionManager.lastExpandedSnapshot = self->sectionManager.classify(items);
}

}  // namespace nevo
