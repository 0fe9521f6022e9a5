#include "platform/x11/PanelTheme.h"

#include <algorithm>

namespace nevo {

namespace {

constexpr float darkestGround = 0.13F;
constexpr float lightestGround = 0.20F;
constexpr float darkestText = 0.88F;

QColor withLightness(const QColor& color, float least, float most) {
    QColor plain = color.toHsl();
    return QColor::fromHslF(std::max(0.0F, plain.hslHueF()), plain.hslSaturationF(),
                            std::clamp(plain.lightnessF(), least, most))
        .toRgb();
}

float part(double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); }

}  // namespace

PanelTheme PanelTheme::of(const QPalette& palette) {
    QColor dark = palette.color(QPalette::Active, QPalette::Window);
    QColor light = palette.color(QPalette::Active, QPalette::WindowText);
    if (dark.lightnessF() > light.lightnessF()) std::swap(dark, light);
    return {withLightness(light, darkestText, 1),
            withLightness(dark, darkestGround, lightestGround)};
}

QColor PanelTheme::tint(Material material) const {
    QColor color = ground;
    switch (material) {
        case Material::menu:
            color.setAlphaF(0.96F);
            break;
        case Material::popover:
            color.setAlphaF(0.94F);
            break;
        case Material::hudWindow:
            color = color.darker(115);
            color.setAlphaF(0.90F);
            break;
    }
    return color;
}

QColor PanelTheme::resolved(const Color& color) const {
    if (!color.isLabel) {
        return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue),
                                part(color.alpha));
    }
    QColor result = text;
    result.setAlphaF(part(color.alpha));
    return result;
}

}  // namespace nevo
