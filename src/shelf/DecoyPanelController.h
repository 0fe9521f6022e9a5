#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/AppState.h"
#include "discovery/MenuBarScanner.h"
#include "placement/SectionManager.h"

namespace nevo {

/// A picture of a hidden item.
struct DecoyEntry {
    std::string persistedID;
    WindowNumber windowID = 0;
    /// The item's; points.
    double width = 0;
    std::optional<Image> image;
    /// When the picture was taken; seconds on the run loop's clock.
    double captureTime = 0;
};

/// Keeps the section snapshot fresh while the hidden section is closed, and in shelf mode shows
/// pictures of the items that the user wants in sight in the menu bar, left of the toggle. A click
/// on one is sent on to the real item, which stays where it is. Main thread only; its tasks hold it
/// weakly.
class DecoyPanelController : public std::enable_shared_from_this<DecoyPanelController> {
public:
    /// From here on each change of the section and of the settings counts. The arguments outlive
    /// it, or their owner keeps it no longer than them.
    static std::shared_ptr<DecoyPanelController> create(const Platform& platform,
                                                        AppState& appState,
                                                        SectionManager& sectionManager,
                                                        MenuBarScanner& scanner);

    /// Shows what is to be seen now: by the snapshot, the settings and the places of what stands in
    /// the bar. To be called whenever one of these may have changed, and now and then.
    void update();
    /// Takes the panel away, until the next update.
    void hide();
    /// Whether a decoy can be seen there; origin at the bottom left.
    bool shows(Point place) const {
        return panel && panel->isVisible() && panel->frame().contains(place);
    }
    /// Takes a recent scan into the snapshot, and updates.
    static Task<> rebuild(std::weak_ptr<DecoyPanelController> owner);

    /// Whether the floating bar is open: it shows the same items, so that no decoy does.
    std::function<bool()> isBarOpen;

private:
    /// What is free in the bar left of the toggle.
    struct Room {
        double left = 0;
        double right = 0;
        double y = 0;
        double height = 0;
    };

    DecoyPanelController(const Platform& platform, AppState& appState,
                         SectionManager& sectionManager, MenuBarScanner& scanner);
    void observe();
    void dividerChanged();
    void updateSoon();
    static Task<> rebuildAfterCollapse(std::weak_ptr<DecoyPanelController> owner);
    bool isClosed() const;
    bool isWanted() const;
    ScannedBarItems itemsToShow() const;
    std::optional<Rect> placeInSight(const ScannedBarItem& item) const;
    ScannedBarItems snapshotSection(SectionName section) const;
    bool takeEntries(const ScannedBarItems& items);
    bool capture(DecoyEntry& entry) const;

    // The panel.
    std::optional<Room> room() const;
    void showPanel(bool hasNewPicture);
    void makePanel(const Rect& frame);
    /// Sends a press, or a turn of the wheel, on to the item of that window.
    void forward(const PanelEvent& event, WindowNumber window);

    const Platform& platform;
    AppState& appState;
    SectionManager& sectionManager;
    MenuBarScanner& scanner;
    /// Of the items that are to be seen, from left to right.
    std::vector<DecoyEntry> entries;
    std::unique_ptr<Panel> panel;
    /// What the panel's views show, from left to right.
    std::vector<WindowNumber> shownWindows;
    /// From the press of a forwarded click to its release.
    bool isForwardingClick = false;
    /// The divider has just closed, and the bar may still move items away.
    bool isSettling = false;
    /// Counts how often it has.
    int closings = 0;
    bool isUpdatePending = false;
    std::vector<Registration> observers;
};

}  // namespace nevo
