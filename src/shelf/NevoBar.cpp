#include "shelf/NevoBar.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {
constexpr Animation fadeIn{0.15};
constexpr Animation fadeOut{0.12};
constexpr double refreshInterval = 0.5;
}  // namespace

NevoBar::NevoBar(const Platform& desktop) : platform(desktop) {}

std::shared_ptr<NevoBar> NevoBar::create(const Platform& platform) {
    return std::shared_ptr<NevoBar>(new NevoBar(platform));
}

void NevoBar::show(std::vector<BarItem> newItems, bool takesKeys) {
    dismiss();
    hasKeys = takesKeys;
    items = std::move(newItems);
    auto screen = platform.screens.mainScreen();
    if (items.empty() || !screen) {
        debugLog("[NevoBar] No items found, not showing panel");
        return;
    }
    // A panel that still fades goes at once: its fade must not end in the new one's place.
    buildPanel(*screen);
    watchPictures();
    if (!animationsEnabled) return;
    panel->setAlpha(0.0);
    panel->animateAlpha(1.0, fadeIn);
}

void NevoBar::dismiss() {
    if (isOpen()) hadKeys = hasKeys;
    giveKeysBack();
    clearViews();
    if (!panel) return;
    isClosing = true;
    if (!animationsEnabled) {
        closePanel();
        return;
    }
    // The panel takes this along when it goes before its time.
    panel->animateAlpha(0.0, fadeOut, [weak = weak_from_this()] {
        auto self = weak.lock();
        if (!self) return;
        // The animation is the panel's own: it isn't destroyed from inside of it.
        self->platform.runLoop.post([weak, fading = self->panel.get()] {
            auto held = weak.lock();
            if (held && held->panel.get() == fading) held->closePanel();
        });
    });
}

void NevoBar::clearViews() {
    refreshTimer.reset();
    pictureWatches.clear();
    stalePictures.clear();
    itemImageViews.clear();
    itemRenderPolicies.clear();
    itemSlotViews.clear();
    itemTextFields.clear();
    backgrounds.clear();
    draggingWindowID.reset();
}

void NevoBar::closePanel() {
    panel->orderOut();
    panel.reset();
}

void NevoBar::relayoutForStyle() {
    if (!isPanelVisible()) return;
    if (isClosing) {
        // It would come back for good: its fade goes with the old panel.
        closePanel();
        return;
    }
    auto screen = panel->screen();
    if (!screen) screen = platform.screens.mainScreen();
    if (!screen) return;
    clearViews();
    closePanel();
    buildPanel(*screen);
    watchPictures();
}

/// Also what the slots were given isn't from now: each picture is read once, and then when it has
/// changed.
void NevoBar::watchPictures() {
    std::erase_if(pictureWatches, [&](const auto& watch) { return !indexOf(watch.first); });
    for (const auto& [window, slot] : itemImageViews) {
        if (pictureWatches.contains(window)) continue;
        pictureWatches[window] =
            platform.windows.watchImage(window, [weak = weak_from_this(), number = window] {
                if (auto self = weak.lock()) self->pictureChanged(number);
            });
        stalePictures.insert(window);
    }
    refreshSoon();
}

void NevoBar::pictureChanged(WindowNumber window) {
    stalePictures.insert(window);
    refreshSoon();
}

/// However often pictures change, they are read twice a second at most.
void NevoBar::refreshSoon() {
    if (refreshTimer || stalePictures.empty()) return;
    refreshTimer = platform.runLoop.timer(refreshInterval, true, [weak = weak_from_this()] {
        auto self = weak.lock();
        if (!self) return;
        self->platform.runLoop.post([weak] {
            if (auto held = weak.lock()) held->refreshPictures();
        });
    });
}

void NevoBar::refreshPictures() {
    if (!isPanelVisible()) return;
    for (WindowNumber window : std::exchange(stalePictures, {})) {
        auto found = itemImageViews.find(window);
        if (found == itemImageViews.end()) continue;
        auto picture = platform.windows.windowImage(window);
        if (!picture || !pictureWatches[window]) stalePictures.insert(window);
        if (!picture) continue;
        // Looking at each pixel again would be for nothing where it is the same after all.
        ClickableItemView& slot = *found->second;
        const auto& shown = slot.view.image;
        double scale = platform.windows.pixelsPerPoint();
        picture->size = {picture->bitmap->width / scale, picture->bitmap->height / scale};
        bool isSame = shown && shown->size == picture->size && *shown->bitmap == *picture->bitmap;
        if (isSame) continue;
        setImage(slot, window, *picture);
        panel->setView(slot.view);
    }
    if (stalePictures.empty()) refreshTimer.reset();
}

void NevoBar::setImage(ClickableItemView& slot, WindowNumber window, const Image& image) {
    ShelfIconRenderPolicy policy = renderPolicy(image);
    itemRenderPolicies[window] = policy;
    bool isTinted = policy == ShelfIconRenderPolicy::templateTint;
    slot.view.image = image;
    slot.view.image->isTemplate = isTinted;
    slot.view.contentTintColor =
        isTinted ? std::optional(appearanceTheme.templateIconTintColor) : std::nullopt;
}

void NevoBar::slotClicked(const BarItem& item) {
    debugLog(fmt::format("[NevoBar] Item clicked: {} wid={} callback={}", item.label, item.windowID,
                         describe(static_cast<bool>(onItemClicked))));
    auto callback = onItemClicked;
    dismiss();
    if (callback) callback(item);
}

void NevoBar::slotRightClicked(const BarItem& item, Point onScreen) {
    debugLog(fmt::format("[NevoBar] Item right-clicked: {} wid={} callback={}", item.label,
                         item.windowID, describe(static_cast<bool>(onItemRightClicked))));
    auto callback = onItemRightClicked;
    if (callback) callback(item, onScreen);
}

}  // namespace nevo
