#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/AppState.h"
#include "discovery/MenuBarScanner.h"
#include "placement/ItemMover.h"
#include "placement/SectionManager.h"
#include "platform/Task.h"
#include "shelf/NevoBar.h"

namespace nevo {

struct ShelfState {
    enum class Kind {
        /// A hidden item has been moved into view for the user to click.
        presentingItem,
        /// The bar is closed and nothing is presented.
        collapsed,
        /// The bar has been opened and not closed by the controller.
        panelVisible
    };
    Kind kind = Kind::collapsed;
    /// Of the presented item; 0 otherwise.
    WindowNumber presented = 0;
};

/// "collapsed", "panelVisible" or "presentingItem(12)", for the log.
std::string describe(ShelfState state);

/// Decides when the floating bar opens and closes in shelf mode, keeps the list of items that it
/// shows, answers what is done with its slots, and brings a clicked item out for a while. Main
/// thread only; its tasks hold it weakly.
class ShelfController : public std::enable_shared_from_this<ShelfController> {
public:
    /// The arguments outlive it. Takes over the bar's callbacks.
    static std::shared_ptr<ShelfController> create(const Platform& platform, AppState& appState,
                                                   std::shared_ptr<NevoBar> nevoBar,
                                                   SectionManager& sectionManager,
                                                   MenuBarScanner& scanner, ItemMover& mover);

    ShelfState state() const { return shelfState; }
    bool isIn(ShelfState::Kind kind) const { return shelfState.kind == kind; }
    /// Whether an item has been brought out and not been taken back, whatever the state is.
    bool hasItemOut() const { return activePresentation.has_value(); }
    /// Seconds on the run loop's clock; long ago before the first opening.
    double panelOpenedAt() const { return openedAt; }

    /// Called when the bar has opened, by whatever.
    std::function<void()> onOpened;
    /// Called when the bar has closed, or an item been taken back, by anything but `toggle`.
    std::function<void()> onClosed;

    /// Opens or closes the bar, in a task; `from` names the caller for the log. While one runs
    /// another is ignored. A bar that is opened `byKeys` takes them.
    void toggle(const std::string& from, bool byKeys);
    /// Takes the hidden items that a collapse has just pushed away, and the toggle's frame.
    void onItemsPushed(const ScannedBarItems& items, const Rect& toggleFrame);
    void updateCachedItemsAfterDrag(const ScannedBarItems& items);
    /// Brings the slots of an open bar up to date with the snapshot of the sections.
    void renewSlots();
    /// Copies the current appearance settings into the bar.
    void refreshBarAppearance();
    /// Closes the bar if it is open.
    void dismissShelf();
    /// Takes the bar's callbacks over again.
    void bindBarCallbacks();

    /// Brings the real item out beside the toggle, for the user to click; back after a minute, or
    /// when something else interrupts.
    void presentItem(const ScannedBarItem& item);
    /// The same where there is no open bar with a slot to click.
    void bringOut(const ScannedBarItem& item);
    /// Ends a presentation whose item no longer floats: a hand has dragged it into the row, or the
    /// bar has taken it back.
    void endLostPresentation();
    /// Ends what is presented and closes the bar, without waiting for the item to be back.
    void resetForDisplayModeChange();
    /// The first steps of the same, for the end of the program.
    void endPresentation();

private:
    struct ActivePresentation {
        ScannedBarItem item;
        /// It has been moved; else it is seen in its slot.
        bool floats = false;
    };

    /// What a presentation closes.
    struct ShelfBefore {
        bool wasOpen = false;
        bool hadKeys = false;
        int openings = 0;
    };

    ShelfController(const Platform& platform, AppState& appState, std::shared_ptr<NevoBar> bar,
                    SectionManager& sectionManager, MenuBarScanner& scanner, ItemMover& mover);
    static Task<> runToggle(std::weak_ptr<ShelfController> owner);
    void performToggle();
    void showShelf();
    void showShelfPanel(const ScannedBarItems& items);
    static Task<> refresh(std::weak_ptr<ShelfController> owner, ScannedBarItems reference);
    ScannedBarItems displayItems() const;
    ScannedBarItems snapshotSection(SectionName section) const;
    std::optional<Rect> usableToggleFrame() const;
    void take(const Rect& toggleFrame);
    void copyAppearance();

    void onItemClicked(const BarItem& item);
    void onItemRightClicked(const BarItem& item, Point onScreen);
    void presentSlot(const ScannedBarItem& item);
    static Task<> presentRenewed(std::weak_ptr<ShelfController> owner, ScannedBarItem item);
    std::vector<MenuItem> slotMenu(const BarItem& item) const;
    /// As scanned last, with what the bar knows where it wasn't.
    ScannedBarItem recordOf(const BarItem& item) const;
    void onSelect(std::size_t index, const BarItem& item);
    void onItemsReordered(const std::vector<BarItem>& items);

    // Presentation.
    static Task<> runPresentation(std::weak_ptr<ShelfController> owner, int run,
                                  ScannedBarItem item);
    static Task<> finishPresentation(std::weak_ptr<ShelfController> owner, int run);
    void startPresentation(const ScannedBarItem& item);
    /// Puts the item back into its slot and lets go of it.
    void takeBack();
    std::optional<Point> beginPresentation(const ScannedBarItem& item, const ShelfBefore& before);
    void concludePresentation(int run);
    ScannedBarItem resolveItem(const ScannedBarItem& item) const;

    const Platform& platform;
    AppState& appState;
    std::shared_ptr<NevoBar> nevoBar;
    SectionManager& sectionManager;
    MenuBarScanner& scanner;
    ItemMover& mover;

    /// The last usable screen frame of the toggle's button.
    Rect savedFrame;
    /// The hidden items as last pushed or scanned.
    ScannedBarItems cachedItems;
    std::optional<ActivePresentation> activePresentation;
    std::optional<TaskHandle> presentationTask;
    /// Counts the runs: one that was cancelled must not let go of the next one's handle.
    int presentationRun = 0;
    int begunRun = 0;
    /// From the start of `toggle` to the end of its task.
    bool isTransitioning = false;
    /// Whether the opening that is under way is for somebody at the keys.
    bool opensByKeys = false;
    double openedAt;
    /// How often the bar was opened.
    int openings = 0;
    ShelfState shelfState;
};

}  // namespace nevo
