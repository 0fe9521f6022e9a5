#include "core/Texts.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>

#include "strings/en.h"
#include "strings/zh-Hans.h"

namespace nevo {

namespace {

using Table = std::map<std::string, std::string>;

Table tableFrom(const char* strings) { return nlohmann::json::parse(strings).get<Table>(); }

const Table& english() {
    static const Table table = tableFrom(englishStrings);
    return table;
}

const Table& simplifiedChinese() {
    static const Table table = tableFrom(simplifiedChineseStrings);
    return table;
}

/// nullptr while English is in force.
const Table* translation = nullptr;

/// The parts of a tag: the language, and what narrows it down.
std::vector<std::string> subtagsOf(std::string_view tag) {
    std::vector<std::string> parts;
    while (true) {
        auto end = tag.find('-');
        parts.emplace_back(tag.substr(0, end));
        if (end == std::string_view::npos) return parts;
        tag.remove_prefix(end + 1);
    }
}

/// Chinese without a word on its script is written as its region writes it.
bool isSimplifiedChinese(const std::vector<std::string>& subtags) {
    auto has = [&](const char* part) {
        return std::find(subtags.begin(), subtags.end(), part) != subtags.end();
    };
    if (subtags.front() != "zh" || has("Hant")) return false;
    return has("Hans") || !(has("TW") || has("HK") || has("MO"));
}

}  // namespace

std::string text(const std::string& key) {
    for (const Table* table : {translation, &english()}) {
        if (table == nullptr) continue;
        auto found = table->find(key);
        if (found != table->end()) return found->second;
    }
    return key;
}

void setTextLanguages(const std::vector<std::string>& preferred) {
    translation = nullptr;
    for (const std::string& tag : preferred) {
        auto subtags = subtagsOf(tag);
        if (subtags.front() == "en") return;
        if (!isSimplifiedChinese(subtags)) continue;
        translation = &simplifiedChinese();
        return;
    }
}

}  // namespace nevo
