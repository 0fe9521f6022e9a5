#include "discovery/ItemIdentity.h"

#include <algorithm>
#include <span>

namespace nevo {

namespace {

constexpr std::string_view unnamedPrefix = "Item-";

bool isUnnamed(std::string_view name) {
    if (!name.starts_with(unnamedPrefix) || name.size() == unnamedPrefix.size()) return false;
    return std::all_of(name.begin() + unnamedPrefix.size(), name.end(),
                       [](char c) { return c >= '0' && c <= '9'; });
}

std::string_view firstPart(std::string_view persistedID) {
    return persistedID.substr(0, persistedID.find(persistedIDSeparator));
}

std::string_view lastPart(std::string_view persistedID) {
    auto at = persistedID.rfind(persistedIDSeparator);
    return at == std::string_view::npos ? persistedID
                                        : persistedID.substr(at + persistedIDSeparator.size());
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// ASCII letters only: the words that are looked for have no other letters with two cases.
std::string lowerCased(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

struct SymbolRow {
    std::string_view word;
    const char* symbol;
};

/// First hit wins, from the top.
constexpr SymbolRow labelSymbols[] = {
    {"电池", "battery.75percent"},
    {"battery", "battery.75percent"},
    {"wi-fi", "wifi"},
    {"wifi", "wifi"},
    // With a non-breaking hyphen, as the system writes it.
    {"wi‑fi", "wifi"},
    {"蓝牙", "bluetooth"},
    {"bluetooth", "bluetooth"},
    {"时钟", "clock"},
    {"clock", "clock"},
    {"日期", "clock"},
    {"控制中心", "switch.2"},
    {"control center", "switch.2"},
    {"播放", "music.note"},
    {"now playing", "music.note"},
    {"音乐", "music.note"},
    {"音量", "speaker.wave.2"},
    {"sound", "speaker.wave.2"},
    {"volume", "speaker.wave.2"},
    {"聚焦", "magnifyingglass"},
    {"spotlight", "magnifyingglass"},
    {"输入", "keyboard"},
    {"input", "keyboard"},
    {"keyboard", "keyboard"},
    {"vpn", "network"},
    {"network", "network"},
    {"display", "display"},
    {"显示", "display"},
};

constexpr SymbolRow bundleSymbols[] = {
    {"istat", "speedometer"},
    {"paste", "doc.on.clipboard"},
    {"clipboard", "doc.on.clipboard"},
};

std::optional<std::string> firstHit(std::span<const SymbolRow> rows, std::string_view text) {
    for (const SymbolRow& row : rows) {
        if (contains(text, row.word)) return row.symbol;
    }
    return std::nullopt;
}

}  // namespace

bool isSystemBundleID(std::string_view bundleID) {
    return bundleID == controlCenterBundleID || bundleID == "com.apple.systemuiserver";
}

std::string makePersistedID(std::string_view stableName, std::string_view bundleID) {
    std::string id(stableName);
    id += persistedIDSeparator;
    id += bundleID;
    return id;
}

std::string stableName(std::string_view persistedID) {
    std::string_view name = firstPart(persistedID);
    return std::string(isUnnamed(name) ? "Item-0" : name);
}

std::optional<std::string> bundleIDFromPersistedID(std::string_view persistedID) {
    if (contains(persistedID, persistedIDSeparator)) return std::string(lastPart(persistedID));
    if (contains(persistedID, ".")) return std::string(persistedID);
    return std::nullopt;
}

std::string lastPartOfID(std::string_view persistedID) {
    return std::string(lastPart(persistedID));
}

bool isPhantomID(std::string_view persistedID) {
    return persistedID.starts_with("Control Center >>>") || persistedID.starts_with("控制中心 >>>");
}

std::optional<std::string> iconOwnerKey(std::string_view persistedID, const std::string& bundleID) {
    std::string_view last = lastPart(persistedID);
    if (!last.empty() && last != controlCenterBundleID && contains(last, "."))
        return std::string(last);
    if (!bundleID.empty() && bundleID != controlCenterBundleID) return bundleID;
    return std::nullopt;
}

std::string preferredIconBundleID(std::string_view persistedID, const std::string& bundleID) {
    auto namesApplication = [](std::string_view part) {
        return !part.empty() && !isSystemBundleID(part) && contains(part, ".");
    };
    if (!bundleID.empty() && !isSystemBundleID(bundleID)) return bundleID;
    // Some items name their window after a bundle identifier, so the first part may serve too.
    if (namesApplication(lastPart(persistedID))) return std::string(lastPart(persistedID));
    if (namesApplication(firstPart(persistedID))) return std::string(firstPart(persistedID));
    return bundleID;
}

std::optional<std::string> symbolName(std::string_view label, std::string_view bundleID) {
    if (auto symbol = firstHit(labelSymbols, lowerCased(label))) return symbol;
    return firstHit(bundleSymbols, bundleID);
}

}  // namespace nevo
