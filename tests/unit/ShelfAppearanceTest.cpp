#include <gtest/gtest.h>

#include "core/ShelfAppearanceTheme.h"

namespace nevo {

namespace {
constexpr Color white = Color::white(1);
constexpr Color black = Color::white(0);
}  // namespace

TEST(ShelfAppearance, ReadsColoursAsPeopleWriteThem) {
    const char* same[] = {"#0A0D12", "#0a0d12", "0A0D12", "  #0a0D12\n", "\t0A0D12 "};
    for (const char* text : same) {
        auto color = colorFromHex(text);
        ASSERT_TRUE(color) << text;
        EXPECT_EQ(hexFromColor(*color), "#0A0D12");
        EXPECT_EQ(color->alpha, 1.0);
    }
    const char* broken[] = {"",        " ",       "#",      "#0A0D1", "#0A0D123",
                            "#0A0D1G", "##0A0D1", "0x0A0D", "-A0D12", "# A0D12"};
    for (const char* text : broken) EXPECT_FALSE(colorFromHex(text)) << text;
    EXPECT_EQ(hexFromColor(defaultCustomColor), "#0A0D12");
    EXPECT_EQ(hexFromColor({1.5, -1, 0.5, 0}), "#FF0080");
    EXPECT_EQ(hexFromColor(Color::label()), "#0A0D12");
}

TEST(ShelfAppearance, PutsReadableTextOnAnyColour) {
    auto light = makeTheme(ShelfAppearanceMode::custom, white, 0.88);
    EXPECT_EQ(light.textColor, black);
    EXPECT_EQ(light.templateIconTintColor, black);
    EXPECT_EQ(light.slotBackgroundColor, black.withAlpha(0.09));
    EXPECT_EQ(light.highlightedSlotBackgroundColor, black.withAlpha(0.20));
    EXPECT_EQ(light.borderColor, black.withAlpha(0.18));
    auto dark = makeTheme(ShelfAppearanceMode::custom, black, 0.88);
    EXPECT_EQ(dark.textColor, white);
    EXPECT_EQ(dark.slotBackgroundColor, white.withAlpha(0.14));
    EXPECT_EQ(dark.highlightedSlotBackgroundColor, white.withAlpha(0.30));
    EXPECT_EQ(dark.borderColor, white.withAlpha(0.22));

    // A luminance of 0.58 is where black begins; these greys lie on its two sides.
    EXPECT_EQ(makeTheme(ShelfAppearanceMode::custom, Color::white(0.783), 1).textColor, white);
    EXPECT_EQ(makeTheme(ShelfAppearanceMode::custom, Color::white(0.787), 1).textColor, black);

    for (auto [stored, shown] : {std::pair{0.2, 0.40}, {0.40, 0.40}, {0.7, 0.7}, {1.5, 1.0}})
        EXPECT_EQ(makeTheme(ShelfAppearanceMode::custom, white, stored).backgroundOverlayColor,
                  white.withAlpha(shown));
    EXPECT_EQ(makeTheme(ShelfAppearanceMode::custom, Color::label(), 1).backgroundOverlayColor,
              defaultCustomColor);
}

}  // namespace nevo
