#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/AppState.h"
#include "discovery/MenuBarScanner.h"
#include "placement/SectionManager.h"

namespace nevo {

enum class DecoyState {
    /// The picture is current.
    clean,
    /// It is to be taken again at the next refresh.
    dirty,
    /// Counts as a state with a picture; nothing sets it.
    needsScromble,
    /// The item is left out of the panel.
    nonDecoyable
};

/// A picture of a hidden item.
struct DecoyEntry {
    std::string persistedID;
    ProcessId ownerPID = 0;
    WindowNumber windowID = 0;
    std::optional<Image> image;
    DecoyState state = DecoyState::dirty;
    /// Seconds on the run loop's clock.
    double lastCaptureTime = 0;
    /// Where a click goes when the item's window can't be found.
    double realCenterX = 0;
    double realWidth = 0;
};

/// Keeps the section snapshot fresh while the hidden section is closed, and in shelf mode shows
/// pictures of the hidden items in the menu bar, left of the toggle. A click on one is sent on to
/// the real item, which stays where it is. Main thread only; its tasks hold it weakly.
class DecoyPanelController : public std::enable_shared_from_this<DecoyPanelController> {
public:
    /// From here on each change of `isExpanded` counts. The arguments outlive it, or their owner
    /// keeps it no longer than them.
    static std::shared_ptr<DecoyPanelController> create(const Platform& platform,
                                                        AppState& appState,
                                                        SectionManager& sectionManager,
                                                        MenuBarScanner& scanner);

    /// Takes the panel away. The entries stay.
    void hide();
    void stopRefreshing() { refreshTimer.reset(); }
    void clearEntries() { entries.clear(); }
    /// Puts the panel beside the toggle again after the bar's row has changed, lest it cover it.
    void followToggle();
    /// Whether a decoy can be seen there; origin at the bottom left.
    bool shows(Point place) const {
        return panel && panel->isVisible() && panel->frame().contains(place);
    }
    /// Takes a recent scan into the snapshot, and in shelf mode shows what it says is hidden.
    static Task<> rebuild(std::weak_ptr<DecoyPanelController> owner);
    /// To be called when a rule has been applied to an item.
    void handleRuleChange(const std::string& persistedID, IconRule rule);

    /// Whether the floating bar is open: it shows the same items, so that no decoy does.
    std::function<bool()> isBarOpen;

private:
    DecoyPanelController(const Platform& platform, AppState& appState,
                         SectionManager& sectionManager, MenuBarScanner& scanner);
    void isExpandedChanged();
    static Task<> rebuildAfterCollapse(std::weak_ptr<DecoyPanelController> owner);
    void makeEntries(const std::vector<DecoyEntry>& former);
    void updatePanel();
    void showPanel(const std::vector<DecoyEntry>& shown);
    std::vector<DecoyEntry> shownEntries() const;
    void installClickMonitors();
    std::optional<double> offsetInPanel() const;
    void forwardClickAt(double offset);
    void forwardClick(const std::string& persistedID);
    void refresh();
    bool updateEntry(DecoyEntry& entry, const ScannedBarItem* item);
    bool isCurrent(const DecoyEntry& entry) const;
    void capture(DecoyEntry& entry);
    ScannedBarItems snapshotItems() const;

    const Platform& platform;
    AppState& appState;
    SectionManager& sectionManager;
    MenuBarScanner& scanner;
    std::vector<DecoyEntry> entries;
    std::unique_ptr<Panel> panel;
    /// The item that each view of the panel stands for, whatever its window is by now.
    std::map<std::string, std::string> itemViews;
    /// From the press of a forwarded click to its release.
    bool isForwardingClick = false;
    Registration refreshTimer;
    Registration globalClickMonitor;
    Registration localClickMonitor;
    Registration expandedCancellable;
};

}  // namespace nevo
