// The icons that can be chosen for the toggle, and the drawings that they stand for.
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string_view>

#include "LogicTest.h"
#include "core/MenuBarIcon.h"

namespace nevo {
namespace {

const std::filesystem::path drawings = std::filesystem::path(NEVO_SOURCE_DIR) / "resources/brand";
constexpr std::string_view brandPrefix = "brand:";

std::string nameInFolder(const MenuBarIconOption& option) {
    return option.id.substr(brandPrefix.size());
}

/// The asset that a desktop finds in the file "fold-line" is "BrandFoldLine".
std::string assetOf(const std::string& file) {
    std::string asset = "Brand";
    bool startsWord = true;
    for (char letter : file) {
        bool isHyphen = letter == '-';
        if (!isHyphen) {
            auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
            asset += startsWord ? upper : letter;
        }
        startsWord = isHyphen;
    }
    return asset;
}

using MenuBarIconTest = LogicTest;

TEST_F(MenuBarIconTest, EachBrandIconHasItsDrawingAndEachDrawingItsIcon) {
    std::set<std::string> expected;
    std::set<std::string> displayNames;
    for (const MenuBarIconOption& option : brandIconCatalogue()) {
        ASSERT_TRUE(option.id.starts_with(brandPrefix)) << option.id;
        EXPECT_EQ(option.kind, MenuBarIconKind::brandAsset(assetOf(nameInFolder(option))));
        EXPECT_TRUE(expected.insert(nameInFolder(option) + ".svg").second) << option.id;
        EXPECT_TRUE(displayNames.insert(option.displayName).second) << option.displayName;
        auto image = menuBarIconImage(platform.images, option.id);
        ASSERT_TRUE(image) << option.id;
        EXPECT_EQ(image->size, (Size{22, 22})) << option.id;
        EXPECT_TRUE(image->isTemplate) << option.id;
    }
    EXPECT_EQ(expected.size(), 26U);
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(drawings)) {
        found.insert(entry.path().filename().string());
    }
    EXPECT_EQ(found, expected);
}

TEST_F(MenuBarIconTest, DrawingsKeepToTheGridAndToWhatTheRendererKnows) {
    for (const auto& entry : std::filesystem::directory_iterator(drawings)) {
        std::ifstream file(entry.path());
        std::string text{std::istreambuf_iterator<char>(file), {}};
        EXPECT_NE(text.find(R"(width="22" height="22" viewBox="0 0 22 22")"), std::string::npos)
            << entry.path();
        // Drawn wrongly without a word by renderers of the tiny profile.
        for (const char* unknown : {"<mask", "clip-path", "<clipPath", "<filter", "<style",
                                    "class=", "<symbol", "<pattern"}) {
            EXPECT_EQ(text.find(unknown), std::string::npos) << entry.path() << ": " << unknown;
        }
    }
}

TEST_F(MenuBarIconTest, WhatIsMissingShowsNothing) {
    EXPECT_FALSE(menuBarIconImage(platform.images, "brand:"));
    EXPECT_FALSE(menuBarIconImage(platform.images, "brand:BrandMoon"));
    EXPECT_FALSE(menuBarIconImage(platform.images, "brand:moon "));
    desktop.faults.add(SimOperation::imageNamed, std::nullopt, 1);
    EXPECT_FALSE(menuBarIconImage(platform.images, "brand:moon")) << "its picture is missing";
    desktop.faults.add(SimOperation::systemSymbol, std::nullopt, 1);
    EXPECT_FALSE(menuBarIconImage(platform.images, "moon")) << "no such symbol";
    EXPECT_EQ(menuBarIconImage(platform.images, "moon")->source, "symbol:moon");
}

}  // namespace
}  // namespace nevo
