#include "core/MenuBarIcon.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace nevo {

namespace {

struct BrandIcon {
    std::string_view id;
    const char* asset;
    const char* displayName;
};

/// Identifiers are in people's settings: one that has been released stays.
constexpr BrandIcon brandIcons[] = {
    {"brand:fold-line", "BrandFoldLine", "Fold Line"},
    {"brand:pocket", "BrandPocket", "Pocket"},
    {"brand:curtain", "BrandCurtain", "Sliding Curtain"},
    {"brand:heart-fold", "BrandHeartFold", "Heart Fold"},
    {"brand:heart-pure", "BrandHeartPure", "Heart Pure"},
    {"brand:cat-paw", "BrandCatPaw", "Cat Paw"},
    {"brand:shield", "BrandShield", "Shield"},
    {"brand:coffee", "BrandCoffee", "Coffee"},
    {"brand:moon", "BrandMoon", "Moon"},
    {"brand:rocket", "BrandRocket", "Rocket"},
    {"brand:paper-plane", "BrandPaperPlane", "Paper Plane"},
    {"brand:bento", "BrandBento", "Bento"},
    {"brand:shooting-star", "BrandShootingStar", "Shooting Star"},
    {"brand:bulb", "BrandBulb", "Lightbulb"},
    {"brand:leaf", "BrandLeaf", "Leaf"},
    {"brand:crystal", "BrandCrystal", "Crystal"},
    {"brand:compass", "BrandCompass", "Compass"},
    {"brand:triangle", "BrandTriangle", "Triangle"},
    {"brand:radar", "BrandRadar", "Radar"},
    {"brand:brackets", "BrandBrackets", "Brackets"},
    {"brand:thumb", "BrandThumb", "Thumbs Up"},
    {"brand:bookmark", "BrandBookmark", "Bookmark"},
    {"brand:badge", "BrandBadge", "Badge"},
    {"brand:airplane", "BrandAirplane", "Airplane"},
    {"brand:sword", "BrandSword", "Sword"},
    {"brand:dog-paw", "BrandDogPaw", "Dog Paw"},
};

constexpr Size customIconSize{18, 18};
constexpr Size brandIconSize{22, 22};

/// Nothing for a brand icon that isn't in the catalogue; any other name may be a symbol's.
std::optional<MenuBarIconKind> kindOf(const std::string& name) {
    if (!name.starts_with("brand:")) return MenuBarIconKind::sfSymbol(name);
    const auto* icon =
        std::find_if(std::begin(brandIcons), std::end(brandIcons),
                     [&](const BrandIcon& candidate) { return candidate.id == name; });
    if (icon == std::end(brandIcons)) return std::nullopt;
    return MenuBarIconKind::brandAsset(icon->asset);
}

std::optional<Image> brandImage(const Images& images, const std::string& asset) {
    auto image = images.named(asset);
    if (!image) return std::nullopt;
    image->size = brandIconSize;
    image->isTemplate = true;
    return image;
}

}  // namespace

MenuBarIconKind MenuBarIconKind::brandAsset(std::string assetName) {
    return {Source::brandAsset, std::move(assetName)};
}

MenuBarIconKind MenuBarIconKind::sfSymbol(std::string symbolName) {
    return {Source::sfSymbol, std::move(symbolName)};
}

std::vector<MenuBarIconOption> brandIconCatalogue() {
    std::vector<MenuBarIconOption> options;
    for (const BrandIcon& icon : brandIcons) {
        options.push_back(
            {std::string(icon.id), MenuBarIconKind::brandAsset(icon.asset), icon.displayName});
    }
    return options;
}

std::optional<Image> menuBarIconImage(const Images& images, const std::string& name) {
    auto kind = kindOf(name);
    if (!kind) return std::nullopt;
    if (kind->source == MenuBarIconKind::Source::brandAsset) return brandImage(images, kind->name);
    return images.systemSymbol(kind->name, "Nevo");
}

std::optional<Image> customIconImage(const Images& images, const Bytes& data) {
    auto decoded = images.decode(data);
    if (!decoded) return std::nullopt;
    Image icon = images.redrawn(*decoded, customIconSize);
    icon.isTemplate = false;
    return icon;
}

}  // namespace nevo
