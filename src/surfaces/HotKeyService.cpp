#include "surfaces/HotKeyService.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace nevo {

namespace {

/// The four characters "NEVO".
constexpr HotKeyIdentity identity{0x4E45564F, 1};
constexpr std::uint32_t keyCodeOfB = 11;

constexpr std::array<std::pair<std::string_view, std::uint32_t>, 4> modifierSymbols{{
    {"⌘", commandHotKeyModifier},
    {"⇧", shiftHotKeyModifier},
    {"⌥", optionHotKeyModifier},
    {"⌃", controlHotKeyModifier},
}};

constexpr std::array<std::pair<char, std::uint32_t>, 36> keyCodes{{
    {'A', 0},  {'S', 1},  {'D', 2},  {'F', 3},  {'H', 4},  {'G', 5},  {'Z', 6},  {'X', 7},
    {'C', 8},  {'V', 9},  {'B', 11}, {'Q', 12}, {'W', 13}, {'E', 14}, {'R', 15}, {'Y', 16},
    {'T', 17}, {'1', 18}, {'2', 19}, {'3', 20}, {'4', 21}, {'6', 22}, {'5', 23}, {'9', 25},
    {'7', 26}, {'8', 28}, {'0', 29}, {'O', 31}, {'U', 32}, {'I', 34}, {'P', 35}, {'L', 37},
    {'J', 38}, {'K', 40}, {'N', 45}, {'M', 46},
}};

std::uint32_t keyCodeOf(char key) {
    if (key >= 'a' && key <= 'z') key = static_cast<char>(key - 'a' + 'A');
    auto found = std::find_if(keyCodes.begin(), keyCodes.end(),
                              [key](const auto& entry) { return entry.first == key; });
    return found == keyCodes.end() ? keyCodeOfB : found->second;
}

/// The bytes of the UTF-8 character that begins with `lead`.
std::size_t characterLength(char lead) {
    auto byte = static_cast<unsigned char>(lead);
    if (byte < 0xC0) return 1;
    return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

}  // namespace

Shortcut parseShortcut(std::string_view text) {
    Shortcut shortcut;
    std::string_view key = "B";
    while (!text.empty()) {
        std::string_view character = text.substr(0, characterLength(text.front()));
        text.remove_prefix(character.size());
        auto symbol =
            std::find_if(modifierSymbols.begin(), modifierSymbols.end(),
                         [character](const auto& entry) { return entry.first == character; });
        if (symbol == modifierSymbols.end()) {
            key = character;
        } else {
            shortcut.modifiers |= symbol->second;
        }
    }
    if (shortcut.modifiers == 0) shortcut.modifiers = commandHotKeyModifier | shiftHotKeyModifier;
    // Every key of the table is one byte long.
    shortcut.keyCode = key.size() == 1 ? keyCodeOf(key.front()) : keyCodeOfB;
    return shortcut;
}

HotKeyService::HotKeyService(const Platform& desktop, const AppState& state)
    : platform(desktop), appState(state) {}

void HotKeyService::registerHotKey() {
    unregister();
    Shortcut shortcut = parseShortcut(appState.toggleShortcut());
    HotKeyResult handler = platform.hotKeys.installPressedHandler([this] {
        if (hotKeyHandler) hotKeyHandler();
        return 0;
    });
    if (handler.status != 0) {
        platform.log.writeStandardOutput(
            fmt::format("[Nevo] Failed to install event handler: {}\n", handler.status));
        return;
    }
    eventHandler = std::move(handler.registration);
    HotKeyResult key =
        platform.hotKeys.registerHotKey(shortcut.keyCode, shortcut.modifiers, identity);
    if (key.status != 0) {
        platform.log.writeStandardOutput(
            fmt::format("[Nevo] Failed to register hotkey: {}\n", key.status));
    }
    hotKeyRef = std::move(key.registration);
}

void HotKeyService::unregister() {
    hotKeyRef.reset();
    eventHandler.reset();
}

}  // namespace nevo
