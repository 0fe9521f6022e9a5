#include "core/KnownItems.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "core/StoredValues.h"

namespace nevo {

namespace {

constexpr const char* knownItemsKey = "nevo_known_items";
/// A program with so many has ever new ones.
constexpr std::size_t mostItems = 16;

using Json = nlohmann::json;

Json decoded(const DefaultsDomain& store) {
    auto bytes = storedBytes(store, knownItemsKey);
    if (!bytes) return Json::object();
    Json json = Json::parse(bytes->begin(), bytes->end(), nullptr, false);
    return json.is_object() ? json : Json::object();
}

}  // namespace

/// A program's value is the list of its items, or true once all of them are known.
bool KnownItems::meet(const std::string& persistedID, const std::string& program, bool introduces) {
    Json json = decoded(store);
    Json& known = json[program];
    if (known.is_boolean()) return false;
    if (!known.is_array()) known = Json::array();
    if (std::find(known.begin(), known.end(), Json(persistedID)) != known.end()) return false;
    known.push_back(persistedID);
    if (introduces || known.size() > mostItems) known = true;
    // Names come from other programs and needn't be UTF-8.
    std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    store.set(knownItemsKey, Bytes(text.begin(), text.end()));
    return true;
}

}  // namespace nevo
