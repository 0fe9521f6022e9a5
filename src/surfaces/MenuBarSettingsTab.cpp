#include "surfaces/MenuBarSettingsTab.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/MenuBarIcon.h"
#include "core/Texts.h"
#include "core/notificationNames.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

/// More than any icon file; what is larger isn't one. The settings, where it is kept as text, have
/// room for it several times over.
constexpr std::size_t mostIconBytes = 4U << 20U;
const std::vector<std::string> iconTypes{"image/png", "image/x-icns", "image/icns"};

constexpr double leastOpacity = 0.4;
constexpr double mostOpacity = 1.0;
constexpr double opacityStep = 0.05;

/// System symbols that are offered as icons beside the program's own.
struct IconSymbol {
    const char* name;
    const char* displayName;
};
constexpr IconSymbol iconSymbols[] = {{"line.3.horizontal.decrease", "Lines"},
                                      {"switch.2", "Switches"},
                                      {"gearshape", "Gear"},
                                      {"app.dashed", "Dashed Square"},
                                      {"display", "Display"}};

std::string percentage(double part) { return fmt::format("{}%", std::lround(part * 100)); }

}  // namespace

MenuBarSettingsTab::MenuBarSettingsTab(const SettingsServices& given, const MenuBarItemList& list,
                                       std::function<void()> told)
    : services(given), items(list), changed(std::move(told)) {}

Control MenuBarSettingsTab::content() {
    return columnOf({icon(), displayMode(), shelf(), behavior()});
}

Control MenuBarSettingsTab::icon() {
    AppState& state = services.appState;
    const Images& images = services.platform.images;
    std::vector<ControlOption> options;
    for (const MenuBarIconOption& option : brandIconCatalogue()) {
        options.push_back(
            {option.id, text(option.displayName), menuBarIconImage(images, option.id)});
    }
    for (const IconSymbol& symbol : iconSymbols) {
        options.push_back(
            {symbol.name, text(symbol.displayName), menuBarIconImage(images, symbol.name)});
    }
    std::string selected = state.menuBarIconName();
    return sectionOf("settings.menu_bar.icon.section_title",
                     {pickerOf("settings.menu_bar.icon.style_label", std::move(options), selected,
                               [weak = weak_from_this()](const std::string& name) {
                                   if (auto self = weak.lock()) self->selectIcon(name);
                               }),
                      customIconDropZone()});
}

Control MenuBarSettingsTab::customIconDropZone() {
    AppState& state = services.appState;
    auto weak = weak_from_this();
    auto take = [weak](const std::string& path) {
        if (auto self = weak.lock()) self->takeIconFile(path);
    };
    Control zone;
    zone.kind = Control::Kind::dropZone;
    zone.key = "settings.menu_bar.icon.custom_label";
    zone.title = text("settings.menu_bar.icon.custom.dropzone_hint");
    zone.detail = text("settings.menu_bar.icon.custom.click_hint");
    zone.takeFile = take;
    zone.press = [&files = services.platform.files, take] {
        files.choose(iconTypes, [take](const std::optional<std::string>& path) {
            if (path) take(*path);
        });
    };
    if (state.hasCustomIcon()) zone.image = state.menuBarIconImage();
    Control group =
        columnOf({textOf("settings.menu_bar.icon.custom_label"), zone,
                  textOf("settings.menu_bar.icon.custom.spec_hint", Control::TextStyle::note)});
    group.children.front().key = "settings.menu_bar.icon.custom_label.title";
    if (!refusal.empty()) group.children.push_back(textOf(refusal, Control::TextStyle::warning));
    if (state.hasCustomIcon())
        group.children.push_back(textOf("settings.menu_bar.icon.custom.status_using_custom"));
    if (state.hasCustomIcon() || state.menuBarIconName() != defaultMenuBarIconName) {
        group.children.push_back(buttonOf("settings.menu_bar.icon.custom.reset_button", [weak] {
            if (auto self = weak.lock()) self->selectIcon(defaultMenuBarIconName);
        }));
    }
    return group;
}

void MenuBarSettingsTab::selectIcon(const std::string& name) {
    refusal.clear();
    services.appState.selectMenuBarIcon(name);
}

void MenuBarSettingsTab::takeIconFile(const std::string& path) {
    const Platform& platform = services.platform;
    std::string type = platform.files.contentType(path);
    if (std::find(iconTypes.begin(), iconTypes.end(), type) == iconTypes.end())
        return refuse("settings.menu_bar.icon.custom.refused_type");
    auto bytes = platform.files.read(path, mostIconBytes);
    if (!bytes) return refuse("settings.menu_bar.icon.custom.refused_size");
    if (!platform.images.decode(*bytes))
        return refuse("settings.menu_bar.icon.custom.refused_picture");
    platform.runLoop.post([weak = weak_from_this(), data = std::move(*bytes)] {
        auto self = weak.lock();
        if (!self) return;
        self->refusal.clear();
        self->services.appState.setCustomIcon(data);
    });
}

void MenuBarSettingsTab::refuse(const char* reason) {
    refusal = reason;
    changed();
}

Control MenuBarSettingsTab::displayMode() {
    AppState& state = services.appState;
    const Platform& platform = services.platform;
    auto screen = platform.screens.mainScreen();
    Control section = sectionOf("settings.menu_bar.display_mode.section_title", {});
    if (screen && screen->safeAreaTop > 0) {
        section.children.push_back(
            textOf("settings.menu_bar.display_mode.notch_auto_hint", Control::TextStyle::note));
    } else {
        Control modes = pickerOf("settings.menu_bar.display_mode.picker_label",
                                 {optionOf("push", "settings.menu_bar.display_mode.push_option"),
                                  optionOf("shelf", "settings.menu_bar.display_mode.shelf_option")},
                                 state.displayMode(), [&state, &platform](const std::string& mode) {
                                     state.setDisplayMode(mode);
                                     platform.notifications.post(nevoDisplayModeChanged);
                                 });
        modes.kind = Control::Kind::radioGroup;
        section.children.push_back(modes);
    }
    if (isShelfMode(platform.screens, state)) {
        section.children.push_back(
            textOf("settings.menu_bar.display_mode.shelf_hint", Control::TextStyle::note));
    }
    Control covers =
        toggleOf("settings.menu_bar.hide_secondary_menu_bar.label", state.hideSecondaryMenuBar(),
                 [&state](bool on) { state.setHideSecondaryMenuBar(on); });
    covers.detail = text("settings.menu_bar.hide_secondary_menu_bar.hint");
    section.children.push_back(covers);
    return section;
}

Control MenuBarSettingsTab::shelf() {
    AppState& state = services.appState;
    const std::string style = "settings.menu_bar.shelf_style.";
    const std::string mode = "settings.menu_bar.shelf_appearance.";
    std::vector<Control> controls{
        pickerOf(style + "label",
                 {optionOf("classic", style + "classic"), optionOf("capsule", style + "capsule"),
                  optionOf("floatingGlass", style + "floating_glass"),
                  optionOf("minimal", style + "minimal")},
                 rawValue(state.effectiveShelfBarStyle()),
                 [&state](const std::string& raw) { state.setShelfBarStyle(raw); }),
        shelfOrder(),
        pickerOf(
            mode + "background",
            {optionOf("system", mode + "system"), optionOf("dark", mode + "dark"),
             optionOf("highContrast", mode + "high_contrast"), optionOf("custom", mode + "custom")},
            rawValue(state.shelfAppearanceMode()),
            [&state](const std::string& raw) { state.setShelfAppearance(raw); })};
    if (state.shelfAppearanceMode() == ShelfAppearanceMode::custom) addCustomColor(controls);
    return sectionOf("settings.menu_bar.shelf_appearance.section_title", std::move(controls));
}

void MenuBarSettingsTab::addCustomColor(std::vector<Control>& controls) {
    AppState& state = services.appState;
    auto signal = [&state, &center = services.platform.notifications] {
        state.objectWillChange.send();
        center.post(nevoShelfAppearanceChanged);
    };
    Control well;
    well.kind = Control::Kind::colorWell;
    well.key = "settings.menu_bar.shelf_appearance.color";
    well.title = text(well.key);
    well.color = colorFromHex(state.shelfCustomColorHex()).value_or(defaultCustomColor);
    well.pickColor = [&state, signal](const Color& color) {
        state.setShelfCustomColorHex(hexFromColor(color));
        signal();
    };
    controls.push_back(well);
    double opacity = std::clamp(state.shelfCustomOpacity(), leastOpacity, mostOpacity);
    controls.push_back(
        sliderOf("settings.menu_bar.shelf_appearance.opacity", opacity, leastOpacity, mostOpacity,
                 opacityStep, percentage(opacity), [&state, signal](double value) {
                     state.setShelfCustomOpacity(std::clamp(value, leastOpacity, mostOpacity));
                     signal();
                 }));
}

/// The hidden items that are known, in the shelf's order.
Control MenuBarSettingsTab::shelfOrder() {
    AppState& state = services.appState;
    std::vector<std::string> stored = state.rules.shelfItemOrder();
    Control list;
    list.kind = Control::Kind::orderList;
    list.key = "settings.menu_bar.shelf_order.label";
    list.title = text(list.key);
    list.detail = text("settings.menu_bar.shelf_order.drag_hint");
    list.options = hiddenItems();
    auto place = [&](const ControlOption& option) {
        return std::find(stored.begin(), stored.end(), option.value) - stored.begin();
    };
    std::stable_sort(list.options.begin(), list.options.end(),
                     [&](const auto& a, const auto& b) { return place(a) < place(b); });
    auto save = [&state, told = changed](const std::vector<std::string>& ids) {
        state.rules.saveShelfItemOrder(ids);
        told();
    };
    list.reorder = save;
    Control group = columnOf({list});
    if (!stored.empty()) {
        Control reset = buttonOf("settings.menu_bar.shelf_order.reset", [save] { save({}); });
        reset.kind = Control::Kind::link;
        group.children.push_back(reset);
    }
    return group;
}

/// In shelf mode as the shelf has them: an item that it has brought out is still one of them.
std::vector<ControlOption> MenuBarSettingsTab::hiddenItems() const {
    std::vector<ControlOption> hidden;
    const auto& snapshot = services.appState.snapshotItems();
    if (isShelfMode(services.platform.screens, services.appState) && !snapshot.empty()) {
        for (const auto& item : snapshot) {
            if (item.isHidden) hidden.push_back({item.id, item.label, item.icon});
        }
        return hidden;
    }
    for (const MenuBarIconItem& item : items.items()) {
        if (item.isHidden.value_or(false)) hidden.push_back({item.id, item.label, item.icon});
    }
    return hidden;
}

Control MenuBarSettingsTab::behavior() {
    AppState& state = services.appState;
    auto told = changed;
    std::vector<Control> controls{toggleOf("settings.menu_bar.behavior.show_on_hover",
                                           state.showOnHover(), [&state, told](bool on) {
                                               state.setShowOnHover(on);
                                               told();
                                           })};
    if (state.showOnHover()) {
        double delay = state.hoverDelay();
        controls.push_back(sliderOf("settings.menu_bar.behavior.hover_delay", delay, 0.1, 1.0, 0.1,
                                    fmt::format("{:.1f}", delay),
                                    [&state](double value) { state.setHoverDelay(value); }));
    }
    controls.push_back(toggleOf("settings.menu_bar.behavior.auto_hide", state.autoHideEnabled(),
                                [&state, told](bool on) {
                                    state.setAutoHideEnabled(on);
                                    told();
                                }));
    if (state.autoHideEnabled()) {
        double delay = state.autoHideDelay();
        controls.push_back(sliderOf("settings.menu_bar.behavior.auto_hide_delay", delay, 1, 30, 1,
                                    fmt::format("{}", std::lround(delay)),
                                    [&state](double value) { state.setAutoHideDelay(value); }));
    }
    return sectionOf("settings.menu_bar.behavior.section_title", std::move(controls));
}

}  // namespace nevo
