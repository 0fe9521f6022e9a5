#include "core/RememberedPlaces.h"

#include <nlohmann/json.hpp>

#include "core/StoredValues.h"

namespace nevo {

namespace {

constexpr const char* placesKey = "nevo_rule_places";

using Json = nlohmann::json;

Json decoded(const DefaultsDomain& store) {
    auto bytes = storedBytes(store, placesKey);
    if (!bytes) return Json::object();
    Json json = Json::parse(bytes->begin(), bytes->end(), nullptr, false);
    return json.is_object() ? json : Json::object();
}

void save(DefaultsDomain& store, const Json& json) {
    // Names come from other programs and needn't be UTF-8.
    std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    store.set(placesKey, Bytes(text.begin(), text.end()));
}

std::vector<std::string> strings(const Json& json, const char* member) {
    std::vector<std::string> result;
    auto list = json.find(member);
    if (list == json.end() || !list->is_array()) return result;
    for (const Json& entry : *list) {
        if (entry.is_string()) result.push_back(entry.get<std::string>());
    }
    return result;
}

}  // namespace

std::optional<RememberedPlace> RememberedPlaces::find(const std::string& persistedID) const {
    Json json = decoded(store);
    auto found = json.find(persistedID);
    if (found == json.end() || !found->is_object()) return std::nullopt;
    auto isHidden = found->find("hidden");
    auto position = found->find("position");
    RememberedPlace place{strings(*found, "left"), strings(*found, "right")};
    place.isHidden = isHidden != found->end() && isHidden->is_boolean() && isHidden->get<bool>();
    if (position != found->end() && position->is_number()) place.position = position->get<double>();
    return place;
}

std::vector<std::string> RememberedPlaces::ids() const {
    std::vector<std::string> result;
    Json json = decoded(store);
    for (const auto& [id, place] : json.items()) result.push_back(id);
    return result;
}

void RememberedPlaces::remember(const std::string& persistedID, const RememberedPlace& place) {
    Json json = decoded(store);
    if (json.contains(persistedID)) return;
    json[persistedID] = {{"left", place.left},
                         {"right", place.right},
                         {"hidden", place.isHidden},
                         {"position", place.position}};
    save(store, json);
}

void RememberedPlaces::rename(const std::string& former, const std::string& persistedID) {
    Json json = decoded(store);
    auto found = json.find(former);
    if (found == json.end()) return;
    Json place = *found;
    json.erase(former);
    json[persistedID] = place;
    save(store, json);
}

void RememberedPlaces::forget(const std::string& persistedID) {
    Json json = decoded(store);
    if (json.erase(persistedID) > 0) save(store, json);
}

}  // namespace nevo
