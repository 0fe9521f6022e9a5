#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "core/BarItem.h"
#include "core/ShelfAppearanceTheme.h"
#include "platform/Platform.h"
#include "shelf/ClickableItemView.h"
#include "shelf/ShelfIconRenderPolicy.h"
#include "shelf/ShelfLayout.h"

namespace nevo {

/// The floating bar under the toggle: slots with live pictures, one for each hidden item, in a row
/// or, where one isn't enough, in several. Knows nothing of sections or rules; what is done with it
/// is told by callbacks. Its panel exists while it is open and for the time of its fade. Main
/// thread only.
class NevoBar : public std::enable_shared_from_this<NevoBar> {
public:
    static std::shared_ptr<NevoBar> create(const Platform& platform);

    /// Opens the bar with these items; with none it closes. One that `takesKeys` is operated by
    /// keys too, and shows which slot they are for.
    void show(std::vector<BarItem> items, bool takesKeys = false);
    /// Takes over what has come and gone while the bar is open: the slot of an item without a
    /// window is empty until the item, known by its identity, is among `latest` again. Items that
    /// had no slot come at the end if `addsNew`. All other slots stay as they are, where they are.
    /// While a slot is dragged nothing happens.
    void renew(const std::vector<BarItem>& latest, bool addsNew);
    /// Closes the bar. Safe when it is closed.
    void dismiss();
    /// Applies `appearanceTheme` and the style's border to what is on the screen.
    void applyAppearance();
    /// Rebuilds an open panel after `barStyle` has changed.
    void relayoutForStyle();

    /// Whether the panel exists and can be seen, which it can while it fades.
    bool isPanelVisible() const { return panel && panel->isVisible(); }
    /// The same, and it isn't on its way out.
    bool isOpen() const { return isPanelVisible() && !isClosing; }
    /// Origin at the bottom left of the main display; empty without a panel.
    Rect panelFrame() const { return panel ? panel->frame() : Rect{}; }
    /// nullptr without a panel.
    Panel* openPanel() { return panel.get(); }

    ShelfAppearanceTheme appearanceTheme = makeTheme(ShelfAppearanceMode::system, {}, 1);
    ShelfBarStyle barStyle = ShelfBarStyle::classic;
    bool isReorderingEnabled = false;
    /// Fades of the whole bar.
    bool animationsEnabled = true;
    /// The bar has closed itself by then.
    std::function<void(const BarItem&)> onItemClicked;
    /// With the place on the screen; the bar stays open.
    std::function<void(const BarItem&, Point)> onItemRightClicked;
    /// The user wants it closed; it is still open.
    std::function<void()> onCancelled;
    /// All items in their new order.
    std::function<void(const std::vector<BarItem>&)> onItemsReordered;
    /// The toggle's x: the bar's anchor.
    double nevoIconX = 0;

    /// Whether it was operated by keys when it closed last.
    bool wasKeyed() const { return hadKeys; }

private:
    explicit NevoBar(const Platform& platform);

    // The panel.
    void buildPanel(const Screen& screen);
    std::vector<PanelView> backgroundViews(Size size);
    void addSlot(const BarItem& item, const Rect& frame);
    void fillPanel();
    bool takeOver(const std::vector<BarItem>& latest, bool addsNew);
    static std::string slotKey(const BarItem& item);
    static bool isEmptySlot(const BarItem& item) { return item.windowID == 0; }
    ShelfLayout layoutOn(const Screen& screen) const;
    Rect frameFor(Size size, const Screen& screen) const;
    void bindSlot(ClickableItemView& slot, const BarItem& item);
    void handle(const PanelEvent& event);
    void clearViews();
    void closePanel();
    Color overlayColor() const;
    Color effectiveBorderColor() const;
    double effectiveBorderWidth() const;
    Color normalSlotColor() const;
    const ShelfBarStyleConfiguration& configuration() const { return configurationOf(barStyle); }

    // Pictures.
    void watchPictures();
    void pictureChanged(WindowNumber window);
    void refreshSoon();
    void refreshPictures();
    void setImage(ClickableItemView& slot, WindowNumber window, const Image& image);

    // What a slot's user does.
    void slotClicked(const BarItem& item);
    void slotRightClicked(const BarItem& item, Point onScreen);
    void dragBegins(const BarItem& item);
    void dragged(const BarItem& item, Point inPanel);
    void dragEnds(const BarItem& item);
    std::optional<std::size_t> indexOf(WindowNumber window) const;
    std::size_t dropIndex(std::size_t from, Point inPanel) const;
    void slideSlots(std::optional<std::size_t> leftOut);
    void settleSlot(WindowNumber window);

    // Keys.
    void takeKeys();
    void giveKeysBack();
    void keyPressed(PanelKey key);
    std::size_t neighbour(std::size_t of, PanelKey towards) const;
    std::size_t nearestFullSlot(std::size_t to) const;
    void focusSlot(std::size_t index);
    PanelView focusRing() const;

    const Platform& platform;
    std::unique_ptr<Panel> panel;
    ShelfLayout layout;
    /// In slot order. One whose program has gone has no window.
    std::vector<BarItem> items;
    /// Same order as `items`.
    std::vector<std::shared_ptr<ClickableItemView>> itemSlotViews;
    /// The slots that show a picture, by window.
    std::map<WindowNumber, std::shared_ptr<ClickableItemView>> itemImageViews;
    std::map<WindowNumber, ShelfIconRenderPolicy> itemRenderPolicies;
    /// The slots that show a label instead.
    std::vector<std::shared_ptr<ClickableItemView>> itemTextFields;
    /// The blur, and the tint above it; none without slots.
    std::vector<PanelView> backgrounds;
    std::optional<WindowNumber> draggingWindowID;
    bool hasKeys = false;
    bool hadKeys = false;
    /// The slot that keys are for, while the bar has them.
    std::optional<WindowNumber> focusedWindowID;
    Registration idleKeysTimer;
    std::map<WindowNumber, Registration> pictureWatches;
    /// To be read at the next refresh: those that have changed, and those of which nobody tells.
    std::set<WindowNumber> stalePictures;
    Registration refreshTimer;
    /// The panel fades away.
    bool isClosing = false;
};

}  // namespace nevo
