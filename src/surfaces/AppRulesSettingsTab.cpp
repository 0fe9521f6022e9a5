#include "surfaces/AppRulesSettingsTab.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "core/Texts.h"
#include "surfaces/controls.h"

namespace nevo {

namespace {

constexpr const char* byDefault = "default";
constexpr const char* shown = "show";
constexpr const char* hidden = "hide";

/// As people look for it: the case of letters doesn't count.
std::string folded(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](char each) {
        return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
    });
    return name;
}

}  // namespace

AppRulesSettingsTab::AppRulesSettingsTab(const SettingsServices& given, MenuBarItemList& of,
                                         std::function<void()> told)
    : services(given), items(of), changed(std::move(told)) {}

void AppRulesSettingsTab::findApplications() {
    detectedApps.clear();
    for (const RunningApplication& app : services.platform.workspace.runningApplications()) {
        bool counts = app.activationPolicy == ActivationPolicy::regular &&
                      !app.bundleIdentifier.empty() && app.localizedName;
        if (counts) detectedApps.emplace_back(app.bundleIdentifier, *app.localizedName);
    }
    std::sort(detectedApps.begin(), detectedApps.end(), [](const auto& a, const auto& b) {
        return std::tuple(folded(a.second), a.first) < std::tuple(folded(b.second), b.first);
    });
    // A program may run several times over.
    detectedApps.erase(std::unique(detectedApps.begin(), detectedApps.end()), detectedApps.end());
    changed();
}

Control AppRulesSettingsTab::content() {
    Control refresh = buttonOf("settings.rules.per_app.refresh_button", [weak = weak_from_this()] {
        auto self = weak.lock();
        if (!self) return;
        self->items.scan();
        self->findApplications();
    });
    Control about = sectionOf("settings.rules.per_app.section_title",
                              {textOf("settings.rules.per_app.description"), refresh});
    return columnOf({about, addRule(), configured()});
}

Control AppRulesSettingsTab::addRule() {
    std::vector<ControlOption> apps{optionOf("", "settings.rules.add_rule.select_app_placeholder")};
    bool isListed = !selectedAppID;
    for (const auto& [bundleID, name] : detectedApps) {
        apps.push_back({bundleID, name, {}});
        isListed = isListed || bundleID == selectedAppID;
    }
    // It has ended meanwhile.
    if (!isListed) apps.push_back({*selectedAppID, nameOf(*selectedAppID), {}});
    Control section = sectionOf(
        "settings.rules.add_rule.section_title",
        {pickerOf("settings.rules.add_rule.picker_label", std::move(apps),
                  selectedAppID.value_or(""), [weak = weak_from_this()](const std::string& id) {
                      auto self = weak.lock();
                      if (!self) return;
                      self->selectedAppID = id.empty() ? std::nullopt : std::optional(id);
                      self->changed();
                  })});
    if (!selectedAppID) return section;
    AppRules rules = services.appState.rules.loadAppRules();
    for (const MenuBarIconItem& item : items.items())
        section.children.push_back(optionsOf(item, rules[*selectedAppID]));
    return section;
}

Control AppRulesSettingsTab::optionsOf(const MenuBarIconItem& item, const AppRule& rule) const {
    const char* selected = byDefault;
    if (rule.hiddenIcons.contains(item.id)) selected = hidden;
    if (rule.visibleIcons.contains(item.id)) selected = shown;
    Control picker = pickerOf(
        "app-rule " + item.id,
        {optionOf(byDefault, "settings.rules.add_rule.option_default"),
         optionOf(shown, "icon_rule.always_show"), optionOf(hidden, "icon_rule.always_hide")},
        selected, [weak = weak_from_this(), id = item.id](const std::string& option) {
            if (auto self = weak.lock()) self->setOption(id, option);
        });
    picker.title = item.label;
    picker.detail = item.bundleID;
    return picker;
}

void AppRulesSettingsTab::setOption(const std::string& itemID, const std::string& option) const {
    if (!selectedAppID) return;
    RuleStore& store = services.appState.rules;
    AppRule rule = store.loadAppRules()[*selectedAppID];
    rule.visibleIcons.erase(itemID);
    rule.hiddenIcons.erase(itemID);
    if (option == shown) rule.visibleIcons.insert(itemID);
    if (option == hidden) rule.hiddenIcons.insert(itemID);
    store.setAppRule(rule, *selectedAppID);
}

std::string AppRulesSettingsTab::nameOf(const std::string& bundleID) const {
    auto known = std::find_if(detectedApps.begin(), detectedApps.end(),
                              [&](const auto& app) { return app.first == bundleID; });
    if (known != detectedApps.end()) return known->second;
    auto path = services.platform.workspace.applicationPath(bundleID);
    return path ? services.platform.workspace.displayName(*path) : bundleID;
}

Control AppRulesSettingsTab::configured() const {
    Control section = sectionOf("settings.rules.configured.section_title", {});
    RuleStore& store = services.appState.rules;
    for (const auto& [bundleID, rule] : store.loadAppRules()) {
        Control name = plainText("app-rule-of " + bundleID, nameOf(bundleID));
        name.detail = fmt::format(fmt::runtime(text("settings.rules.configured.summary_format")),
                                  rule.visibleIcons.size(), rule.hiddenIcons.size());
        Control remove = buttonOf("settings.rules.configured.remove_button",
                                  [&store, id = bundleID] { store.removeAppRule(id); });
        remove.key = "remove-app-rule " + bundleID;
        remove.symbol = "trash";
        section.children.push_back(rowOf({name, remove}));
    }
    if (section.children.empty())
        section.children.push_back(
            textOf("settings.rules.configured.empty_hint", Control::TextStyle::note));
    return section;
}

}  // namespace nevo
