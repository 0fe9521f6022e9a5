// Settings as older versions, other programs and broken hands may have left them.
#include "LogicTest.h"
#include "core/AppState.h"
#include "core/MenuBarIcon.h"
#include "core/notificationNames.h"

namespace nevo {
namespace {

class AppStateTest : public LogicTest {
protected:
    void write(const std::string& key, DefaultsValue value) {
        desktop.defaults.write(desktop.defaults.ownDomain(), key, std::move(value));
    }
    std::optional<DefaultsValue> read(const std::string& key) {
        return desktop.defaults.read(desktop.defaults.ownDomain(), key);
    }
    std::string iconNameAfterStart() { return AppState(platform).menuBarIconName(); }
};

TEST_F(AppStateTest, TheIconNameIsCarriedOverOnce) {
    EXPECT_EQ(iconNameAfterStart(), "brand:pocket");
    EXPECT_EQ(read("nevo_custom_icon_name"), DefaultsValue("brand:pocket"));
    EXPECT_EQ(read("NSStatusItemSpacing"), std::nullopt);
    write("menuBarIcon", std::string("wifi"));
    EXPECT_EQ(iconNameAfterStart(), "brand:pocket") << "a name that is there already stays";
    desktop.defaults.remove(desktop.defaults.ownDomain(), "nevo_custom_icon_name");
    EXPECT_EQ(iconNameAfterStart(), "wifi");
}

TEST_F(AppStateTest, SpacingCountsFromTheNextStart) {
    struct Case {
        const char* spacing;
        std::optional<DefaultsValue> points;
    };
    for (const Case& c :
         {Case{"compact", DefaultsValue(std::int64_t{4})},
          Case{"relaxed", DefaultsValue(std::int64_t{12})}, Case{"wide", std::nullopt}}) {
        write("nevo_icon_spacing", std::string(c.spacing));
        AppState state(platform);
        EXPECT_EQ(read("NSStatusItemSpacing"), c.points) << c.spacing;
        EXPECT_EQ(read("NSStatusItemSelectionPadding"), c.points) << c.spacing;
    }
}

TEST_F(AppStateTest, ValuesOfTheWrongKindReadAsTheDefault) {
    AppState state(platform);
    write("autoHideDelay", std::string("soon"));
    write("displayMode", 1.0);
    write("autoHideEnabled", std::int64_t{1});
    write("animationsEnabled", std::string("no"));
    EXPECT_EQ(state.autoHideDelay(), 5.0);
    EXPECT_EQ(state.displayMode(), "push");
    EXPECT_TRUE(state.autoHideEnabled());
    EXPECT_TRUE(state.animationsEnabled());
}

TEST_F(AppStateTest, UnknownAppearancesFallBackEachInItsWay) {
    AppState state(platform);
    int changes = 0;
    int posts = 0;
    auto change = state.objectWillChange.observe([&] { ++changes; });
    auto post = platform.notifications.addObserver(nevoShelfAppearanceChanged,
                                                   [&](const Notification&) { ++posts; });
    write("nevo_shelf_bar_style", std::string("square"));
    EXPECT_EQ(state.effectiveShelfBarStyle(), ShelfBarStyle::classic);
    state.setShelfBarStyle("round");
    EXPECT_EQ(state.shelfBarStyle(), "square");
    EXPECT_EQ(changes + posts, 0);
    state.setShelfAppearance("pink");
    EXPECT_EQ(state.shelfAppearance(), "system");
    state.setShelfBarStyle("capsule");
    EXPECT_EQ(state.effectiveShelfBarStyle(), ShelfBarStyle::capsule);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(posts, 2);
}

TEST_F(AppStateTest, IconsBrandSymbolAndOwnPicture) {
    AppState state(platform);
    int posts = 0;
    auto post =
        platform.notifications.addObserver(nevoIconChanged, [&](const Notification&) { ++posts; });
    EXPECT_EQ(state.menuBarIconImage()->size, (Size{22, 22}));
    EXPECT_TRUE(state.menuBarIconImage()->isTemplate);
    state.selectMenuBarIcon("brand:unheard-of");
    EXPECT_FALSE(state.menuBarIconImage()) << "an unknown brand shows nothing";
    state.selectMenuBarIcon("wifi");
    EXPECT_EQ(state.legacyMenuBarIconName(), "wifi");
    EXPECT_TRUE(state.menuBarIconImage()->isTemplate);
    state.setCustomIcon(Bytes{1, 2, 3});
    EXPECT_TRUE(state.hasCustomIcon());
    EXPECT_TRUE(state.menuBarIconImage()->isTemplate)
        << "bytes that are no picture are passed over";
    state.selectMenuBarIcon(defaultMenuBarIconName);
    EXPECT_FALSE(state.hasCustomIcon());
    EXPECT_EQ(posts, 4);
}

TEST_F(AppStateTest, AnOwnPictureIsDecodedOnceForItsBytes) {
    auto picture = [](std::uint8_t width) {
        return Bytes{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n',  0, 0, 0, 13,
                     'I',  'H', 'D', 'R', 0,    0,    0,    width, 0, 0, 0, 64};
    };
    AppState state(platform);
    auto side = [&] { return state.menuBarIconImage()->size.width; };
    state.setCustomIcon(picture(64));
    EXPECT_EQ(side(), 18);
    desktop.faults.add(SimOperation::imageDecode, std::nullopt, 1);
    state.setAutoHideDelay(7);
    EXPECT_EQ(side(), 18) << "another setting decodes it anew";
    write("nevo_custom_icon_data", picture(32));
    desktop.loop.runReady();
    EXPECT_EQ(side(), 22) << "another program's change isn't seen";
    write("nevo_custom_icon_data", picture(16));
    desktop.loop.runReady();
    EXPECT_EQ(side(), 18);
    write("nevo_custom_icon_data", Bytes{});
    desktop.loop.runReady();
    EXPECT_FALSE(state.hasCustomIcon());
    EXPECT_EQ(side(), 22);
}

TEST_F(AppStateTest, ANotchForcesTheShelfForAsLongAsItIsThere) {
    AppState state(platform);
    EXPECT_FALSE(isShelfMode(platform.screens, state));
    SimDisplay main = desktop.screens.displays().front();
    main.notchInset = 32;
    desktop.putDisplay(main);
    EXPECT_TRUE(isShelfMode(platform.screens, state));
    EXPECT_EQ(state.displayMode(), "push");
    desktop.removeDisplay(main.id);
    EXPECT_FALSE(isShelfMode(platform.screens, state))
        << "without a display the stored value decides";
    state.setDisplayMode("shelf");
    EXPECT_TRUE(isShelfMode(platform.screens, state));
}

}  // namespace
}  // namespace nevo
