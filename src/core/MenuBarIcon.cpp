#include "core/MenuBarIcon.h"

#include <array>
#include <string_view>
#include <utility>

namespace nevo {

namespace {

/// Brand identifiers and the names of their pictures in the resources.
constexpr std::array<std::pair<std::string_view, const char*>, 1> brandAssets{{
    {"brand:pocket", "BrandPocket"},
}};

std::optional<Image> brandImage(const Images& images, std::string_view id) {
    for (const auto& [known, asset] : brandAssets) {
        if (known != id) continue;
        auto image = images.named(asset);
        if (!image) return std::nullopt;
        Image sized = images.redrawn(*image, Size{22, 22});
        sized.isTemplate = true;
        return sized;
    }
    return std::nullopt;
}

}  // namespace

std::optional<Image> menuBarIconImage(const Images& images, const std::string& name,
                                      const Bytes& customData) {
    if (!customData.empty()) {
        if (auto decoded = images.decode(customData)) {
            Image icon = images.redrawn(*decoded, Size{18, 18});
            icon.isTemplate = false;
            return icon;
        }
    }
    if (name.starts_with("brand:")) return brandImage(images, name);
    return images.systemSymbol(name, "Nevo");
}

}  // namespace nevo
