#include "core/RuleStore.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "core/StoredValues.h"
#include "core/notificationNames.h"

namespace nevo {

namespace {

constexpr const char* iconRulesKey = "nevo_icon_rules";
constexpr const char* appRulesKey = "nevo_app_rules";
constexpr const char* shelfOrderKey = "nevo_shelf_item_order";
/// With the ids of programs that never come again.
constexpr std::size_t longestShelfOrder = 256;
constexpr const char* decoyItemsKey = "decoyItems";

using Json = nlohmann::json;

/// A JSON object, or nothing for bytes that are none.
std::optional<Json> decodedObject(const DefaultsDomain& store, const char* key) {
    auto bytes = storedBytes(store, key);
    if (!bytes) return std::nullopt;
    Json json = Json::parse(bytes->begin(), bytes->end(), nullptr, false);
    return json.is_object() ? std::optional(std::move(json)) : std::nullopt;
}

/// Nothing for text that isn't UTF-8, which JSON can't hold.
std::optional<Bytes> encoded(const Json& json) {
    try {
        std::string text = json.dump();
        return Bytes(text.begin(), text.end());
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

std::optional<std::set<std::string>> stringSet(const Json& object, const char* member) {
    auto found = object.find(member);
    if (found == object.end() || !found->is_array()) return std::nullopt;
    std::set<std::string> strings;
    for (const Json& entry : *found) {
        if (!entry.is_string()) return std::nullopt;
        strings.insert(entry.get<std::string>());
    }
    return strings;
}

}  // namespace

RuleStore::RuleStore(DefaultsDomain& domain, NotificationCenter& centre, Signal& changes)
    : store(domain), notifications(centre), objectWillChange(changes) {}

IconRules RuleStore::loadIconRules() const {
    IconRules rules;
    auto json = decodedObject(store, iconRulesKey);
    if (!json) return rules;
    for (const auto& [id, value] : json->items()) {
        auto rule = value.is_string() ? iconRuleFrom(value.get<std::string>()) : std::nullopt;
        // The map decodes as a whole or not at all.
        if (!rule) return {};
        rules[id] = *rule;
    }
    return rules;
}

void RuleStore::saveIconRules(const IconRules& rules) {
    Json json = Json::object();
    for (const auto& [id, rule] : rules) json[id] = rawValue(rule);
    if (auto bytes = encoded(json)) store.set(iconRulesKey, std::move(*bytes));
    objectWillChange.send();
}

void RuleStore::setIconRule(IconRule rule, const std::string& persistedID) {
    IconRules rules = loadIconRules();
    if (rule == IconRule::automatic) {
        rules.erase(persistedID);
    } else {
        rules[persistedID] = rule;
    }
    saveIconRules(rules);
    notifications.post(nevoIconRulesChanged,
                       {{"persistedID", persistedID}, {"rule", rawValue(rule)}});
}

AppRules RuleStore::loadAppRules() const {
    AppRules rules;
    auto json = decodedObject(store, appRulesKey);
    if (!json) return rules;
    for (const auto& [bundleID, value] : json->items()) {
        auto visible = stringSet(value, "visibleIcons");
        auto hidden = stringSet(value, "hiddenIcons");
        if (!visible || !hidden) return {};
        rules[bundleID] = {std::move(*visible), std::move(*hidden)};
    }
    return rules;
}

void RuleStore::saveAppRules(const AppRules& rules) {
    Json json = Json::object();
    for (const auto& [bundleID, rule] : rules) {
        json[bundleID] = {{"visibleIcons", rule.visibleIcons}, {"hiddenIcons", rule.hiddenIcons}};
    }
    if (auto bytes = encoded(json)) store.set(appRulesKey, std::move(*bytes));
    objectWillChange.send();
}

void RuleStore::setAppRule(const std::optional<AppRule>& rule, const std::string& bundleID) {
    AppRules rules = loadAppRules();
    if (rule && !(rule->visibleIcons.empty() && rule->hiddenIcons.empty())) {
        rules[bundleID] = *rule;
    } else {
        rules.erase(bundleID);
    }
    saveAppRules(rules);
    appRulesChanged(bundleID);
}

void RuleStore::removeAppRule(const std::string& bundleID) { setAppRule(std::nullopt, bundleID); }

void RuleStore::appRulesChanged(const std::string& bundleID) {
    notifications.post(nevoAppRulesChanged, {{"appBundleID", bundleID}});
}

std::vector<std::string> RuleStore::storedStrings(const char* key) const {
    auto value = store.object(key);
    auto* strings = value ? std::get_if<std::vector<std::string>>(&*value) : nullptr;
    return strings ? *strings : std::vector<std::string>{};
}

std::vector<std::string> RuleStore::shelfItemOrder() const { return storedStrings(shelfOrderKey); }

void RuleStore::saveShelfItemOrder(const std::vector<std::string>& ids) {
    std::vector<std::string> kept;
    std::set<std::string> seen;
    for (const std::string& id : ids) {
        if (seen.insert(id).second) kept.push_back(id);
    }
    std::size_t next = 0;
    for (const std::string& id : ids.empty() ? ids : shelfItemOrder()) {
        auto own = std::find(kept.begin(), kept.end(), id);
        if (own != kept.end()) {
            next = static_cast<std::size_t>(own - kept.begin()) + 1;
        } else if (kept.size() < longestShelfOrder) {
            kept.insert(kept.begin() + static_cast<std::ptrdiff_t>(next++), id);
        }
    }
    store.set(shelfOrderKey, std::move(kept));
    objectWillChange.send();
}

ScannedBarItems RuleStore::orderedShelfItems(const ScannedBarItems& items) const {
    std::map<std::string, std::size_t> positions;
    for (const std::string& id : shelfItemOrder()) positions.emplace(id, positions.size());
    auto positionOf = [&](const ScannedBarItem& item) {
        auto found = positions.find(item.persistedID);
        return found == positions.end() ? positions.size() : found->second;
    };
    ScannedBarItems ordered = items;
    std::stable_sort(ordered.begin(), ordered.end(),
                     [&](const ScannedBarItem& a, const ScannedBarItem& b) {
                         return positionOf(a) < positionOf(b);
                     });
    return ordered;
}

std::set<std::string> RuleStore::decoyItems() const {
    std::vector<std::string> ids = storedStrings(decoyItemsKey);
    return {ids.begin(), ids.end()};
}

void RuleStore::setDecoyItem(bool isOne, const std::string& persistedID) {
    std::set<std::string> ids = decoyItems();
    if (isOne) {
        ids.insert(persistedID);
    } else {
        ids.erase(persistedID);
    }
    store.set(decoyItemsKey, std::vector<std::string>(ids.begin(), ids.end()));
    objectWillChange.send();
}

}  // namespace nevo
