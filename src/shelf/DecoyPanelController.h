#pragma once

#include <memory>

#include "core/AppState.h"
#include "discovery/MenuBarScanner.h"
#include "placement/SectionManager.h"

namespace nevo {

/// Keeps the section snapshot fresh while the hidden section is closed: what stands in the menu bar
/// for the hidden items is made from it. Main thread only.
class DecoyPanelController : public std::enable_shared_from_this<DecoyPanelController> {
public:
    /// From here on each change of `isExpanded` counts. The arguments outlive it, or their owner
    /// keeps it no longer than them.
    static std::shared_ptr<DecoyPanelController> create(const Platform& platform,
                                                        AppState& appState,
                                                        SectionManager& sectionManager,
                                                        MenuBarScanner& scanner);

    /// Takes a recent scan into the snapshot.
    static Task<> rebuild(std::weak_ptr<DecoyPanelController> owner);

private:
    DecoyPanelController(const Platform& platform, AppState& appState,
                         SectionManager& sectionManager, MenuBarScanner& scanner);
    void isExpandedChanged();
    static Task<> rebuildAfterCollapse(std::weak_ptr<DecoyPanelController> owner);

    const Platform& platform;
    AppState& appState;
    SectionManager& sectionManager;
    MenuBarScanner& scanner;
    Registration expandedCancellable;
};

}  // namespace nevo
