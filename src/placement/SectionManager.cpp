#include "placement/SectionManager.h"

#include <fmt/format.h>

#include "core/debugLog.h"
#include "core/describe.h"

namespace nevo {

namespace {

constexpr const char* toggleName = "Nevo_Toggle";
constexpr const char* separatorName = "Nevo_Separator";
constexpr const char* alwaysHiddenDividerName = "Nevo_AlwaysHiddenDivider";
constexpr int imageOnly = 1;
constexpr int scaleProportionallyDown = 0;

/// Nothing to see and nothing to click; the slot in the bar stays.
void silence(StatusItem& item) {
    StatusItemButton* button = item.button();
    if (!button) return;
    button->setImage(std::nullopt);
    button->setTitle("");
    button->setEnabled(false);
    button->setHighlighted(false);
    button->setAction(nullptr);
}

void blank(StatusItem& item) {
    silence(item);
    if (StatusItemButton* button = item.button()) {
        button->setAlpha(0.0);
        button->setHidden(true);
    }
}

}  // namespace

SectionManager::SectionManager(const Platform& desktop)
    : toggleItem(desktop.statusBar.statusItem(variableStatusItemLength)),
      hiddenDivider(desktop.statusBar.statusItem(variableStatusItemLength)),
      alwaysHiddenDivider(desktop.statusBar.statusItem(variableStatusItemLength)),
      opacity(desktop.windows),
      platform(desktop),
      preferences(desktop.defaults) {
    // An item's first place comes from its saved position at the moment when it gets its name.
    preferences.seedSeparatorPosition();
    toggleItem->setAutosaveName(toggleName);
    hiddenDivider->setAutosaveName(separatorName);
    hiddenDivider->setVisible(true);
    blank(*hiddenDivider);
    setDividerLength(*hiddenDivider, false);
    alwaysHiddenDivider->setAutosaveName(alwaysHiddenDividerName);
    alwaysHiddenDivider->setVisible(false);
}

bool SectionManager::isCollapsed(const StatusItem& divider) {
    return divider.length() >= collapsedThreshold;
}

void SectionManager::configureToggle(std::optional<Image> image, std::function<void()> action) {
    toggleItem->setLength(variableStatusItemLength);
    toggleItem->setAutosaveName(toggleName);
    StatusItemButton* button = toggleItem->button();
    if (!button) return;
    button->setImage(std::move(image));
    button->setImagePosition(imageOnly);
    button->setImageScaling(scaleProportionallyDown);
    button->setAction(std::move(action));
}

void SectionManager::setDividerLength(StatusItem& divider, bool collapsed) {
    bool changes = isCollapsed(divider) != collapsed;
    divider.setLength(collapsed ? collapsedLength : 0.0);
    blank(divider);
    if (changes && &divider == hiddenDivider.get()) hiddenDividerDidChange.send();
}

void SectionManager::expand(bool restoreAlpha) {
    setDividerLength(*hiddenDivider, false);
    if (StatusItemButton* button = toggleItem->button()) button->setAlpha(1.0);
    if (restoreAlpha) opacity.removeAll(ItemOpacity::Reason::stray);
}

void SectionManager::markHidden(const std::vector<std::string>& ruleIDs,
                                const ScannedBarItems& items) {
    for (const std::string& id : ruleIDs) {
        const ScannedBarItem* item = findByPersistedID(items, id);
        if (!item) continue;
        if (auto mutation = preferences.markHidden(item->bundleID, id)) {
            debugLog(fmt::format("[SectionMgr] wrote {} {}={} (was {})", item->bundleID,
                                 mutation->key, describeWhole(mutation->newValue),
                                 describeWhole(mutation->previousValue)));
        }
    }
}

void SectionManager::recreateAlwaysHiddenDivider(const std::vector<std::string>& ruleIDs,
                                                 const ScannedBarItems& items, double position) {
    markHidden(ruleIDs, items);
    alwaysHiddenDivider.reset();
    preferences.writeAlwaysHiddenDividerPosition(position);
    alwaysHiddenDivider = platform.statusBar.statusItem(0.0);
    alwaysHiddenDivider->setAutosaveName(alwaysHiddenDividerName);
    silence(*alwaysHiddenDivider);
    alwaysHiddenDivider->setVisible(true);
    alwaysHiddenDivider->setLength(collapsedLength);
    debugLog("[SectionMgr] alwaysHiddenDivider recreated at position=" + describeWhole(position));
}

void SectionManager::deactivateAlwaysHiddenDivider() {
    alwaysHiddenDivider->setLength(variableStatusItemLength);
    alwaysHiddenDivider->setVisible(false);
    debugLog("[SectionMgr] alwaysHiddenDivider deactivated");
}

void SectionManager::reapplyDividerVisibilityAfterWake() {
    setDividerLength(*hiddenDivider, isCollapsed(*hiddenDivider));
    if (alwaysHiddenDivider->isVisible()) setDividerLength(*alwaysHiddenDivider, true);
    bool alwaysHiddenActive = alwaysHiddenDivider->isVisible() && isCollapsed(*alwaysHiddenDivider);
    debugLog(fmt::format(
        "[SectionMgr] reapplyDividerVisibilityAfterWake: hiddenCollapsed={}, alwaysHiddenActive={}",
        describe(isCollapsed(*hiddenDivider)), describe(alwaysHiddenActive)));
}

std::set<WindowNumber> SectionManager::ownWindowIDs() const {
    std::set<WindowNumber> numbers;
    for (StatusItem* item : {toggleItem.get(), hiddenDivider.get(), alwaysHiddenDivider.get()}) {
        // The always-hidden divider is gone for a moment while it is replaced.
        StatusItemButton* button = item != nullptr ? item->button() : nullptr;
        auto number = button ? button->windowNumber() : std::nullopt;
        if (number && *number >= 1) numbers.insert(*number);
    }
    return numbers;
}

std::optional<Rect> SectionManager::frame(StatusItem& item) {
    StatusItemButton* button = item.button();
    return button ? button->screenFrame() : std::nullopt;
}

std::optional<Rect> SectionManager::shownFrame(StatusItem& item) const {
    auto result = frame(item);
    StatusItemButton* button = item.button();
    auto number = button ? button->windowNumber() : std::nullopt;
    if (result && number) result->x += platform.windows.roomShift(*number);
    return result;
}

}  // namespace nevo
