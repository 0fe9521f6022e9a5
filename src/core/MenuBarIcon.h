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

/// An icon by its identifier ("brand:pocket"), a template of 22 by 22 points, or by the name of a
/// system symbol, a template of its natural size. Nothing for an unknown name or a missing picture.
std::optional<Image> menuBarIconImage(const Images& images, const std::string& name);

/// An icon from an image file of the user's own: 18 by 18 points, in its colours. Nothing when the
/// bytes don't decode. Takes a tenth of a second for a file of some megabytes.
std::optional<Image> customIconImage(const Images& images, const Bytes& data);

inline constexpr const char* defaultMenuBarIconName = "brand:pocket";

}  // namespace nevo
