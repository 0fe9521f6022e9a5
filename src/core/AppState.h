#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/RuleStore.h"
#include "core/ShelfAppearanceTheme.h"
#include "core/Signal.h"
#include "platform/Platform.h"

namespace nevo {

/// The one shared state of the program: what the user interface shows of the menu bar, and every
/// setting.
///
/// Settings are read from the store at each use and written to it at once, so that a change from
/// outside counts at the next use; only the custom icon is kept, until the store notifies of a
/// change. A value of the wrong kind reads as the default. Published fields live for the process
/// only; each change of one sends `objectWillChange`. Main thread only.
class AppState {
public:
    using IconRule = nevo::IconRule;
    using AppRule = nevo::AppRule;

    /// A scanned item as the user interface sees it, identified by `id`.
    struct SnapshotItem {
        std::string id;
        std::string bundleID;
        std::string label;
        std::optional<Image> icon;
        bool isHidden = false;
    };

    /// Carries an older icon setting over and writes the spacing that this process's status items
    /// get.
    explicit AppState(const Platform& platform);

    Signal objectWillChange;
    /// Sent after `isExpanded` has taken another value.
    Signal isExpandedDidChange;
    RuleStore rules;

    // Published, not stored.
    bool isExpanded() const { return expanded; }
    void setIsExpanded(bool value);
    /// The recorded x of the toggle, 0 before any.
    double toggleX() const { return recordedToggleX; }
    void setToggleX(double value);
    const std::set<std::string>& hiddenBundleIDs() const { return hiddenBundles; }
    void setHiddenBundleIDs(std::set<std::string> value);
    const std::vector<SnapshotItem>& snapshotItems() const { return snapshot; }
    void setSnapshotItems(std::vector<SnapshotItem> value);
    const std::string& activeAppBundleID() const { return activeApp; }
    void setActiveAppBundleID(std::string value);

    // Stored.
    /// "push" or "shelf": the mode asked for. The one in force is `isShelfMode`.
    std::string displayMode() const;
    void setDisplayMode(const std::string& value);
    bool hideSecondaryMenuBar() const;
    void setHideSecondaryMenuBar(bool value);
    bool autoHideEnabled() const;
    void setAutoHideEnabled(bool value);
    double autoHideDelay() const;  ///< seconds
    void setAutoHideDelay(double value);
    bool showOnHover() const;
    void setShowOnHover(bool value);
    double hoverDelay() const;  ///< seconds
    void setHoverDelay(double value);
    bool launchAtLogin() const;
    void setLaunchAtLogin(bool value);
    std::string toggleShortcut() const;
    bool showSeparator() const;
    bool animationsEnabled() const;
    void setAnimationsEnabled(bool value);
    std::string legacyMenuBarIconName() const;
    std::string menuBarIconName() const;
    /// "compact", "relaxed" or "default"; counts from the next start.
    std::string iconSpacing() const;
    /// "click", "clickBlank" or "hoverBlank"; any other value acts as "click".
    std::string triggerMode() const;
    std::string shelfAppearance() const;
    std::string shelfBarStyle() const;
    std::string shelfCustomColorHex() const;
    void setShelfCustomColorHex(const std::string& value);
    double shelfCustomOpacity() const;
    void setShelfCustomOpacity(double value);

    // Worked out.
    ShelfBarStyle effectiveShelfBarStyle() const;
    ShelfAppearanceMode shelfAppearanceMode() const;
    ShelfAppearanceTheme shelfAppearanceTheme() const;
    /// The toggle's icon: the custom one if there is one and it decodes, else the one chosen by
    /// name. Cheap: a custom icon is decoded once.
    std::optional<Image> menuBarIconImage() const;
    bool hasCustomIcon() const;

    /// The rule for an item of the bar, also one that is stored under its application or under a
    /// name that it had before.
    IconRule iconRule(const std::string& persistedID) const;
    /// Sets it under the item's own id. `automatic` takes away every rule that holds the item.
    void setIconRule(IconRule rule, const std::string& persistedID);

    void selectMenuBarIcon(const std::string& name);
    /// Nothing takes the custom icon away.
    void setCustomIcon(std::optional<Bytes> data);
    /// An unknown raw value is stored as "system".
    void setShelfAppearance(const std::string& raw);
    /// An unknown raw value changes nothing.
    void setShelfBarStyle(const std::string& raw);
    /// Writes the two spacing keys, or removes them, as `iconSpacing` says.
    void applyIconSpacing();

private:
    std::optional<MatchedRule> matchedRule(const IconRules& of,
                                           const std::string& persistedID) const;
    struct CustomIcon {
        Bytes data;
        std::optional<Image> image;
    };
    /// Reads the store only after it has changed, and decodes only other bytes than before.
    const CustomIcon& customIcon() const;
    void migrateIconName();
    void iconChanged();
    std::string stringSetting(const char* key, const char* fallback) const;
    double numberSetting(const char* key, double fallback) const;

    DefaultsDomain& store;
    NotificationCenter& notifications;
    const Images& images;

    bool expanded = true;
    double recordedToggleX = 0;
    std::set<std::string> hiddenBundles;
    std::vector<SnapshotItem> snapshot;
    std::string activeApp;

    mutable CustomIcon readIcon;
    mutable bool isIconCurrent = false;
    Registration storeObserver;
};

/// Whether hidden items go to the shelf: the main screen has a notch, or the user has asked for it.
/// Worked out anew at each use, since displays come and go.
bool isShelfMode(const Screens& screens, const AppState& appState);

}  // namespace nevo
