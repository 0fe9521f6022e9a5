#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Images.h"

namespace nevo {

/// Where an icon's picture comes from: the program's own pictures or the system's symbols, and its
/// name there.
struct MenuBarIconKind {
    enum class Source { brandAsset, sfSymbol };

    static MenuBarIconKind brandAsset(std::string assetName);
    static MenuBarIconKind sfSymbol(std::string symbolName);
    bool operator==(const MenuBarIconKind&) const = default;

    Source source;
    std::string name;
};

/// An icon that can be chosen for the toggle. `id` is what the settings store.
struct MenuBarIconOption {
    std::string id;
    MenuBarIconKind kind;
    std::string displayName;
};

/// The program's own icons, in the order in which they are offered.
std::vector<MenuBarIconOption> brandIconCatalogue();

/// The toggle's icon. `name` is the identifier of a brand icon ("brand:pocket") or a system
/// symbol's name; `customData` is an image file of the user's own, empty for none, and goes first.
/// A custom icon is 18 by 18 points and keeps its colours, a brand icon is a template of 22 by 22,
/// a symbol a template of its natural size. Nothing for an unknown name or a missing picture; a
/// custom icon that doesn't decode is passed over.
std::optional<Image> menuBarIconImage(const Images& images, const std::string& name,
                                      const Bytes& customData);

inline constexpr const char* defaultMenuBarIconName = "brand:pocket";

}  // namespace nevo
