#include "surfaces/RulesSettingsTab.h"

#include <algorithm>
#include <utility>

#include "core/Texts.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

constexpr const char* showValue = "alwaysShow";
constexpr const char* hideValue = "alwaysHide";

/// Where nothing is stored the item's present side counts.
bool isHiddenBy(const IconRules& rules, const AppState& state, const std::string& id) {
    auto rule = rules.find(id);
    if (rule != rules.end() && rule->second != IconRule::automatic)
        return rule->second == IconRule::alwaysHide;
    const auto& seen = state.snapshotItems();
    auto item =
        std::find_if(seen.begin(), seen.end(), [&](const auto& each) { return each.id == id; });
    return item != seen.end() && item->isHidden;
}

}  // namespace

RulesSettingsTab::RulesSettingsTab(const SettingsServices& given, std::function<void()> told)
    : services(given), changed(std::move(told)) {}

void RulesSettingsTab::scan() { spawn(services.platform.runLoop, runScan(weak_from_this())); }

Task<> RulesSettingsTab::runScan(std::weak_ptr<RulesSettingsTab> owner) {
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& scanner = self->services.scanner;
    self.reset();
    std::set<WindowNumber> none;
    ScannedBarItems found = co_await scanner.scan(none, true);
    self = owner.lock();
    if (!self) co_return;
    self->items.clear();
    // Items that share an id share their rule.
    std::set<std::string> seen;
    for (const ScannedBarItem& item : found) {
        if (item.persistedID.empty() || !seen.insert(item.persistedID).second) continue;
        self->items.push_back({item.persistedID, item.bundleID, item.label, item.icon});
    }
    self->changed();
}

Control RulesSettingsTab::content() {
    IconRules rules = services.appState.rules.loadIconRules();
    Control section = sectionOf(
        "settings.rules.menu_bar_icons.section_title",
        {rowOf({textOf("settings.rules.menu_bar_icons.column_icon", Control::TextStyle::note),
                textOf("settings.rules.menu_bar_icons.column_visibility",
                       Control::TextStyle::note)})});
    if (items.empty())
        section.children.push_back(textOf("settings.rules.menu_bar_icons.scanning_status"));
    for (const MenuBarIconItem& item : items) section.children.push_back(rowOfItem(item, rules));
    return columnOf({section});
}

Control RulesSettingsTab::rowOfItem(const MenuBarIconItem& item, const IconRules& rules) const {
    AppState& state = services.appState;
    Control picture;
    picture.kind = Control::Kind::image;
    picture.image = item.icon;
    Control rule =
        pickerOf("rule " + item.id,
                 {optionOf(showValue, "icon_rule.always_show"),
                  optionOf(hideValue, "icon_rule.always_hide")},
                 isHiddenBy(rules, state, item.id) ? hideValue : showValue,
                 [&state, id = item.id](const std::string& value) {
                     state.rules.setIconRule(
                         value == hideValue ? IconRule::alwaysHide : IconRule::alwaysShow, id);
                 });
    rule.title = item.label;
    rule.detail = item.bundleID;
    return rowOf({picture, rule});
}

}  // namespace nevo
