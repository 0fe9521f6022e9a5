#include "surfaces/RulesSettingsTab.h"

#include <fmt/format.h>

#include <utility>

#include "core/Texts.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

/// The row of the picker for an item without a rule: its text tells the item's side.
ControlOption optionWithoutRule(const MenuBarIconItem& item, IconRule rule) {
    if (rule != IconRule::automatic || !item.isHidden)
        return optionOf("automatic", "icon_rule.automatic");
    return *item.isHidden ? optionOf("hides", "icon_rule.automatic.hides")
                          : optionOf("stays", "icon_rule.automatic.stays");
}

}  // namespace

RulesSettingsTab::RulesSettingsTab(const SettingsServices& given, const MenuBarItemList& of)
    : services(given), list(of) {}

Control RulesSettingsTab::content() const {
    Control section = sectionOf(
        "settings.rules.menu_bar_icons.section_title",
        {rowOf({textOf("settings.rules.menu_bar_icons.column_icon", Control::TextStyle::note),
                textOf("settings.rules.menu_bar_icons.column_visibility",
                       Control::TextStyle::note)})});
    if (list.items().empty()) {
        section.children.push_back(textOf(list.isKnown()
                                              ? "settings.rules.menu_bar_icons.none_found"
                                              : "settings.rules.menu_bar_icons.scanning_status"));
    }
    for (const MenuBarIconItem& item : list.items()) {
        section.children.push_back(rowOfItem(item, services.appState.iconRule(item.id)));
    }
    return columnOf({section});
}

Control RulesSettingsTab::rowOfItem(const MenuBarIconItem& item, IconRule rule) const {
    Control picture;
    picture.kind = Control::Kind::image;
    picture.image = item.icon;
    Control name = plainText("item " + item.id, item.label);
    name.detail = item.bundleID;
    Control row = rowOf({picture, name});
    if (rule == IconRule::alwaysHide && services.bringOut) {
        Control show = buttonOf("settings.rules.menu_bar_icons.bring_out_button",
                                [&services = services, id = item.id] { services.bringOut(id); });
        show.key = "bring-out " + item.id;
        row.children.push_back(show);
    }
    // Elsewhere a click brings all items back, and no picture is shown.
    if (isShelfMode(services.platform.screens, services.appState)) {
        row.children.push_back(plainText("picture-in-bar-of " + item.id,
                                         text("icon_rule.picture_in_bar"),
                                         Control::TextStyle::note));
        row.children.push_back(pictureToggle(item, rule));
    }
    if (rule != IconRule::automatic) {
        Control remove =
            buttonOf("remove-rule " + item.id, [&state = services.appState, id = item.id] {
                state.setIconRule(IconRule::automatic, id);
            });
        remove.title = fmt::format(
            fmt::runtime(text("settings.rules.menu_bar_icons.remove_format")), item.label);
        remove.hidesTitle = true;
        remove.symbol = "trash";
        row.children.push_back(remove);
    }
    // Last, so that the pickers of all rows stand below each other.
    row.children.push_back(picker(item, rule));
    return row;
}

/// Whether a picture of the item stands in the bar while it is hidden.
Control RulesSettingsTab::pictureToggle(const MenuBarIconItem& item, IconRule rule) const {
    Control made = toggleOf("picture-in-bar " + item.id,
                            services.appState.rules.decoyItems().contains(item.id),
                            [&state = services.appState, id = item.id](bool isOn) {
                                state.rules.setDecoyItem(isOn, id);
                            });
    made.title =
        fmt::format(fmt::runtime(text("settings.rules.menu_bar_icons.picture_format")), item.label);
    made.hidesTitle = true;
    // The rule keeps it out of sight; the mark counts again when that has ended.
    made.isEnabled = rule != IconRule::alwaysHide;
    return made;
}

Control RulesSettingsTab::picker(const MenuBarIconItem& item, IconRule rule) const {
    ControlOption withoutRule = optionWithoutRule(item, rule);
    std::string selected = rule == IconRule::automatic ? withoutRule.value : rawValue(rule);
    Control made = pickerOf(
        "rule " + item.id,
        {std::move(withoutRule), optionOf(rawValue(IconRule::alwaysShow), "icon_rule.always_show"),
         optionOf(rawValue(IconRule::alwaysHide), "icon_rule.always_hide")},
        std::move(selected), [&state = services.appState, id = item.id](const std::string& value) {
            state.setIconRule(iconRuleFrom(value).value_or(IconRule::automatic), id);
        });
    made.title = item.label;
    made.hidesTitle = true;
    return made;
}

}  // namespace nevo
