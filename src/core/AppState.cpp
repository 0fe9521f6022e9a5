#include "core/AppState.h"

#include <algorithm>
#include <utility>

#include "core/MenuBarIcon.h"
#include "core/StoredValues.h"
#include "core/notificationNames.h"

namespace nevo {

namespace {
constexpr const char* displayModeKey = "displayMode";
constexpr const char* hideSecondaryMenuBarKey = "hideSecondaryMenuBar";
constexpr const char* autoHideEnabledKey = "autoHideEnabled";
constexpr const char* autoHideDelayKey = "autoHideDelay";
constexpr const char* showOnHoverKey = "showOnHover";
constexpr const char* hoverDelayKey = "hoverDelay";
constexpr const char* launchAtLoginKey = "launchAtLogin";
constexpr const char* toggleShortcutKey = "toggleShortcut";
constexpr const char* showSeparatorKey = "showSeparator";
constexpr const char* animationsEnabledKey = "animationsEnabled";
constexpr const char* legacyIconNameKey = "menuBarIcon";
constexpr const char* iconNameKey = "nevo_custom_icon_name";
constexpr const char* customIconDataKey = "nevo_custom_icon_data";
constexpr const char* iconSpacingKey = "nevo_icon_spacing";
constexpr const char* triggerModeKey = "nevo_trigger_mode";
constexpr const char* shelfAppearanceKey = "nevo_shelf_appearance";
constexpr const char* shelfBarStyleKey = "nevo_shelf_bar_style";
constexpr const char* shelfCustomColorKey = "nevo_shelf_custom_color";
constexpr const char* shelfCustomOpacityKey = "nevo_shelf_custom_opacity";
constexpr const char* statusItemSpacingKey = "NSStatusItemSpacing";
constexpr const char* statusItemPaddingKey = "NSStatusItemSelectionPadding";
}  // namespace

AppState::AppState(const Platform& platform)
    : rules(platform.defaults.standard(), platform.notifications, objectWillChange),
      store(platform.defaults.standard()),
      notifications(platform.notifications),
      images(platform.images),
      // Posted for changes by other programs, too.
      storeObserver(platform.notifications.addObserver(
          userDefaultsDidChangeNotification,
          [this](const Notification&) { isIconCurrent = false; })) {
    migrateIconName();
    applyIconSpacing();
}

void AppState::setIsExpanded(bool value) {
    objectWillChange.send();
    bool changes = value != expanded;
    expanded = value;
    if (changes) isExpandedDidChange.send();
}

void AppState::setToggleX(double value) {
    objectWillChange.send();
    recordedToggleX = value;
}

void AppState::setHiddenBundleIDs(std::set<std::string> value) {
    objectWillChange.send();
    hiddenBundles = std::move(value);
}

void AppState::setSnapshotItems(std::vector<SnapshotItem> value) {
    objectWillChange.send();
    snapshot = std::move(value);
}

void AppState::setActiveAppBundleID(std::string value) {
    objectWillChange.send();
    activeApp = std::move(value);
}

std::optional<MatchedRule> AppState::matchedRule(const IconRules& of,
                                                 const std::string& persistedID) const {
    ScannedBarItems all;
    for (const SnapshotItem& each : snapshot) {
        ScannedBarItem& item = all.emplace_back();
        item.persistedID = each.id;
        item.bundleID = each.bundleID;
        item.label = each.label;
    }
    auto item = std::find_if(all.begin(), all.end(), [&](const ScannedBarItem& each) {
        return each.persistedID == persistedID;
    });
    if (item != all.end()) return matchIconRule(*item, of, all);
    auto exact = of.find(persistedID);
    return exact == of.end() ? std::nullopt : std::optional<MatchedRule>(*exact);
}

AppState::IconRule AppState::iconRule(const std::string& persistedID) const {
    auto match = matchedRule(rules.loadIconRules(), persistedID);
    return match ? match->second : IconRule::automatic;
}

void AppState::setIconRule(IconRule rule, const std::string& persistedID) {
    rules.setIconRule(rule, persistedID);
    if (rule != IconRule::automatic) return;
    // What it has covered would hold the item next.
    for (std::size_t left = rules.loadIconRules().size(); left > 0; --left) {
        auto match = matchedRule(rules.loadIconRules(), persistedID);
        if (!match) return;
        rules.setIconRule(rule, match->first);
    }
}

std::string AppState::displayMode() const { return stringSetting(displayModeKey, "push"); }
void AppState::setDisplayMode(const std::string& value) { store.set(displayModeKey, value); }
bool AppState::hideSecondaryMenuBar() const { return storedBool(store, hideSecondaryMenuBarKey); }
void AppState::setHideSecondaryMenuBar(bool value) { store.set(hideSecondaryMenuBarKey, value); }
bool AppState::autoHideEnabled() const { return storedBool(store, autoHideEnabledKey); }
void AppState::setAutoHideEnabled(bool value) { store.set(autoHideEnabledKey, value); }
double AppState::autoHideDelay() const { return numberSetting(autoHideDelayKey, 5.0); }
void AppState::setAutoHideDelay(double value) { store.set(autoHideDelayKey, value); }
bool AppState::showOnHover() const { return storedBool(store, showOnHoverKey); }
void AppState::setShowOnHover(bool value) { store.set(showOnHoverKey, value); }
double AppState::hoverDelay() const { return numberSetting(hoverDelayKey, 0.3); }
void AppState::setHoverDelay(double value) { store.set(hoverDelayKey, value); }
bool AppState::launchAtLogin() const { return storedBool(store, launchAtLoginKey); }
void AppState::setLaunchAtLogin(bool value) { store.set(launchAtLoginKey, value); }
std::string AppState::toggleShortcut() const { return stringSetting(toggleShortcutKey, "⌘⇧B"); }
bool AppState::showSeparator() const { return storedBool(store, showSeparatorKey, true); }
bool AppState::animationsEnabled() const { return storedBool(store, animationsEnabledKey, true); }
void AppState::setAnimationsEnabled(bool value) { store.set(animationsEnabledKey, value); }
std::string AppState::legacyMenuBarIconName() const {
    return stringSetting(legacyIconNameKey, "line.3.horizontal.decrease");
}
std::string AppState::menuBarIconName() const {
    return stringSetting(iconNameKey, defaultMenuBarIconName);
}
std::string AppState::iconSpacing() const { return stringSetting(iconSpacingKey, "default"); }
std::string AppState::triggerMode() const { return stringSetting(triggerModeKey, "click"); }
std::string AppState::shelfAppearance() const {
    return stringSetting(shelfAppearanceKey, "system");
}
std::string AppState::shelfBarStyle() const { return stringSetting(shelfBarStyleKey, "classic"); }
std::string AppState::shelfCustomColorHex() const {
    return stringSetting(shelfCustomColorKey, "#0A0D12");
}
void AppState::setShelfCustomColorHex(const std::string& value) {
    store.set(shelfCustomColorKey, value);
}
double AppState::shelfCustomOpacity() const { return numberSetting(shelfCustomOpacityKey, 0.88); }
void AppState::setShelfCustomOpacity(double value) { store.set(shelfCustomOpacityKey, value); }

ShelfBarStyle AppState::effectiveShelfBarStyle() const {
    return shelfBarStyleFrom(shelfBarStyle()).value_or(ShelfBarStyle::classic);
}

ShelfAppearanceMode AppState::shelfAppearanceMode() const {
    return shelfAppearanceModeFrom(shelfAppearance()).value_or(ShelfAppearanceMode::system);
}

ShelfAppearanceTheme AppState::shelfAppearanceTheme() const {
    Color custom = colorFromHex(shelfCustomColorHex()).value_or(defaultCustomColor);
    return makeTheme(shelfAppearanceMode(), custom, shelfCustomOpacity());
}

std::optional<Image> AppState::menuBarIconImage() const {
    const auto& custom = customIcon().image;
    return custom ? custom : nevo::menuBarIconImage(images, menuBarIconName());
}

bool AppState::hasCustomIcon() const { return !customIcon().data.empty(); }

const AppState::CustomIcon& AppState::customIcon() const {
    if (std::exchange(isIconCurrent, true)) return readIcon;
    Bytes stored = storedBytes(store, customIconDataKey).value_or(Bytes{});
    if (stored == readIcon.data) return readIcon;
    readIcon.image = stored.empty() ? std::nullopt : customIconImage(images, stored);
    readIcon.data = std::move(stored);
    return readIcon;
}

void AppState::selectMenuBarIcon(const std::string& name) {
    store.set(iconNameKey, name);
    store.set(legacyIconNameKey, name);
    store.set(customIconDataKey, Bytes{});
    iconChanged();
}

void AppState::setCustomIcon(std::optional<Bytes> data) {
    store.set(customIconDataKey, data.value_or(Bytes{}));
    store.set(legacyIconNameKey, menuBarIconName());
    iconChanged();
}

void AppState::iconChanged() {
    objectWillChange.send();
    notifications.post(nevoIconChanged);
}

void AppState::setShelfAppearance(const std::string& raw) {
    store.set(shelfAppearanceKey,
              rawValue(shelfAppearanceModeFrom(raw).value_or(ShelfAppearanceMode::system)));
    objectWillChange.send();
    notifications.post(nevoShelfAppearanceChanged);
}

void AppState::setShelfBarStyle(const std::string& raw) {
    auto style = shelfBarStyleFrom(raw);
    if (!style) return;
    store.set(shelfBarStyleKey, rawValue(*style));
    objectWillChange.send();
    notifications.post(nevoShelfAppearanceChanged);
}

void AppState::applyIconSpacing() {
    std::string spacing = iconSpacing();
    for (const char* key : {statusItemSpacingKey, statusItemPaddingKey}) {
        if (spacing == "compact") {
            store.set(key, std::int64_t{4});
        } else if (spacing == "relaxed") {
            store.set(key, std::int64_t{12});
        } else {
            store.remove(key);
        }
    }
}

void AppState::migrateIconName() {
    if (store.object(iconNameKey)) return;
    store.set(iconNameKey, storedString(store, legacyIconNameKey).value_or(defaultMenuBarIconName));
}

std::string AppState::stringSetting(const char* key, const char* fallback) const {
    return storedString(store, key).value_or(fallback);
}

double AppState::numberSetting(const char* key, double fallback) const {
    return storedNumber(store, key).value_or(fallback);
}

bool isShelfMode(const Screens& screens, const AppState& appState) {
    auto mainScreen = screens.mainScreen();
    if (mainScreen && mainScreen->safeAreaTop > 0) return true;
    return appState.displayMode() == "shelf";
}

}  // namespace nevo
