#include <fmt/format.h>

#include <algorithm>

#include "shelf/NevoBar.h"

namespace nevo {

namespace {

constexpr double smallestSlot = 20.0;
constexpr double largestLabelSlot = 28.0;
/// Between the bar and the menu bar above it.
constexpr double gapBelowMenuBar = 2.0;
constexpr double labelSize = 9.0;
constexpr std::size_t labelCharacters = 4;

/// Non-activating panel and full-size content view.
constexpr unsigned panelStyle = 0x8080;
/// One above the main menu.
constexpr int panelLevel = 25;
constexpr int noAnimation = 2;
/// Move to the active space, ignore the cycle, stand beside full screen.
constexpr unsigned panelCollection = 0x142;

/// The first characters of UTF-8 text, none of them cut. What several of them make together (a
/// flag, an accent of its own) may be: a table of all such would outweigh the label that it is for.
std::string firstCharacters(const std::string& text, std::size_t count) {
    std::size_t end = 0;
    while (end < text.size() && count > 0) {
        do ++end;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U);
        --count;
    }
    return text.substr(0, end);
}

double slotWidth(const BarItem& item) {
    return item.icon ? std::max(smallestSlot, item.width)
                     : std::clamp(item.width, smallestSlot, largestLabelSlot);
}

}  // namespace

std::string NevoBar::slotKey(const BarItem& item) { return fmt::format("slot:{}", item.windowID); }

/// What the items take, in one row or in several.
ShelfLayout NevoBar::layoutOn(const Screen& screen) const {
    const ShelfBarStyleConfiguration& c = configuration();
    double oneRow = 2 * c.horizontalPadding - c.spacing;
    std::vector<double> widths;
    for (const BarItem& item : items) {
        oneRow += std::max(smallestSlot, item.width) + c.spacing;
        widths.push_back(slotWidth(item));
    }
    double height = screen.visibleFrame.height - gapBelowMenuBar - c.screenInset;
    return layOutShelf(widths, oneRow, c, {screen.frame.width - 2 * c.screenInset, height});
}

/// From the toggle to the right, as far as the screen has room there.
Rect NevoBar::frameFor(Size size, const Screen& screen) const {
    double rightmost = screen.frame.maxX() - size.width - configuration().screenInset;
    double y = screen.visibleFrame.maxY() - size.height - gapBelowMenuBar;
    return {std::min(nevoIconX, rightmost), y, size.width, size.height};
}

void NevoBar::buildPanel(const Screen& screen) {
    const ShelfBarStyleConfiguration& c = configuration();
    layout = layoutOn(screen);
    PanelConfiguration made;
    made.frame = frameFor(layout.size, screen);
    made.styleMask = panelStyle;
    made.level = panelLevel;
    made.isFloatingPanel = true;
    made.hasShadow = c.hasShadow;
    made.animationBehavior = noAnimation;
    made.collectionBehavior = panelCollection;
    made.canBecomeKey = true;
    isClosing = false;
    panel = platform.panels.create(made);
    panel->onEvent = [weak = weak_from_this()](const PanelEvent& event) {
        if (auto self = weak.lock()) self->handle(event);
    };

    for (std::size_t i = 0; i < items.size(); ++i) addSlot(items[i], layout.slots[i]);
    fillPanel();
    panel->orderFront();
    if (hasKeys) takeKeys();
}

void NevoBar::fillPanel() {
    backgrounds = backgroundViews(layout.size);
    std::vector<PanelView> views = backgrounds;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!isEmptySlot(items[i])) views.push_back(itemSlotViews[i]->view);
    }
    views.push_back(focusRing());
    panel->setViews(std::move(views));
}

std::vector<PanelView> NevoBar::backgroundViews(Size size) {
    const ShelfBarStyleConfiguration& c = configuration();
    PanelView blur;
    blur.key = "blur";
    blur.frame = {0, 0, size.width, size.height};
    blur.material = c.material;
    blur.cornerRadius = c.cornerRadius;
    PanelView overlay = blur;
    overlay.key = "overlay";
    overlay.material.reset();
    overlay.background = overlayColor();
    overlay.borderWidth = effectiveBorderWidth();
    overlay.borderColor = effectiveBorderColor();
    return {blur, overlay};
}

void NevoBar::addSlot(const BarItem& item, const Rect& frame) {
    PanelView view;
    view.key = slotKey(item);
    view.frame = frame;
    view.cornerRadius = configuration().slotCornerRadius;
    view.toolTip = item.label;
    auto slot = std::make_shared<ClickableItemView>(std::move(view), normalSlotColor(),
                                                    appearanceTheme.highlightedSlotBackgroundColor);
    itemSlotViews.push_back(slot);
    if (isEmptySlot(item)) return;
    if (item.icon) {
        setImage(*slot, item.windowID, *item.icon);
        itemImageViews[item.windowID] = slot;
    } else if (!item.label.empty()) {
        slot->view.text = firstCharacters(item.label, labelCharacters);
        slot->view.fontSize = labelSize;
        slot->view.textColor = appearanceTheme.textColor;
        itemTextFields.push_back(slot);
    }
    bindSlot(*slot, item);
}

void NevoBar::bindSlot(ClickableItemView& slot, const BarItem& item) {
    auto weak = weak_from_this();
    slot.onClick = [weak, item] {
        if (auto self = weak.lock()) self->slotClicked(item);
    };
    slot.onRightClick = [weak, item](Point onScreen) {
        if (auto self = weak.lock()) self->slotRightClicked(item, onScreen);
    };
    slot.onDragBegin = [weak, item] {
        if (auto self = weak.lock()) self->dragBegins(item);
    };
    slot.onDrag = [weak, item](Point inPanel) {
        if (auto self = weak.lock()) self->dragged(item, inPanel);
    };
    slot.onDragEnd = [weak, item] {
        if (auto self = weak.lock()) self->dragEnds(item);
    };
}

void NevoBar::handle(const PanelEvent& event) {
    auto found = std::find_if(itemSlotViews.begin(), itemSlotViews.end(),
                              [&](const auto& slot) { return slot->view.key == event.view; });
    // The slots of a fading panel are gone already.
    if (found == itemSlotViews.end()) return;
    auto slot = *found;
    slot->handle(event, panelFrame(), [this](const PanelView& view) { panel->setView(view); });
}

Color NevoBar::overlayColor() const {
    if (appearanceTheme.mode == ShelfAppearanceMode::system) {
        if (barStyle == ShelfBarStyle::floatingGlass) return Color::white(1, 0.08);
        if (barStyle == ShelfBarStyle::capsule) return {0.30, 0.31, 0.54, 0.62};
    }
    return appearanceTheme.backgroundOverlayColor;
}

Color NevoBar::effectiveBorderColor() const {
    bool isSystemCapsule =
        barStyle == ShelfBarStyle::capsule && appearanceTheme.mode == ShelfAppearanceMode::system;
    return isSystemCapsule ? Color::white(1, 0.34) : appearanceTheme.borderColor;
}

double NevoBar::effectiveBorderWidth() const {
    bool isSystemClassic =
        barStyle == ShelfBarStyle::classic && appearanceTheme.mode == ShelfAppearanceMode::system;
    return isSystemClassic ? 0.0 : configuration().borderWidth;
}

Color NevoBar::normalSlotColor() const {
    return configuration().showsSlots ? appearanceTheme.slotBackgroundColor : Color::clear();
}

void NevoBar::applyAppearance() {
    if (!panel) return;
    if (!backgrounds.empty()) {
        backgrounds = backgroundViews(layout.size);
        for (const PanelView& view : backgrounds) panel->setView(view);
    }
    for (const auto& slot : itemTextFields) slot->view.textColor = appearanceTheme.textColor;
    for (const auto& [window, slot] : itemImageViews) {
        if (itemRenderPolicies[window] == ShelfIconRenderPolicy::templateTint)
            slot->view.contentTintColor = appearanceTheme.templateIconTintColor;
    }
    for (const auto& slot : itemSlotViews) {
        slot->normalBackgroundColor = normalSlotColor();
        slot->highlightedBackgroundColor = appearanceTheme.highlightedSlotBackgroundColor;
        slot->paint();
        panel->setView(slot->view);
    }
}

}  // namespace nevo
