#include "surfaces/HotKeyService.h"
#include "unit/LogicTest.h"

namespace nevo {

TEST(ParseShortcut, TakesModifiersAndTheLastKeyInAnyOrder) {
    struct Case {
        const char* text;
        Shortcut expected;
    };
    const Case cases[] = {
        {"⌘⇧B", {11, 768}},    {"", {11, 768}},         {"⌥X", {7, 2048}},  {"x", {7, 768}},
        {"F1⌃", {18, 4096}},   {"⌘;", {11, 256}},       {"⌘⌘A", {0, 256}},  {"é⌘", {11, 256}},
        {"m⌘⇧⌥⌃", {46, 6912}}, {"\xE2\x8C", {11, 768}}, {"⌃5", {23, 4096}}, {"⌃6", {22, 4096}},
    };
    for (const Case& each : cases) EXPECT_EQ(parseShortcut(each.text), each.expected) << each.text;
}

using HotKeyServiceTest = LogicTest;

TEST_F(HotKeyServiceTest, HoldsOneRegistrationHoweverOftenItRegisters) {
    AppState state(platform);
    int presses = 0;
    {
        HotKeyService service(platform, state);
        service.hotKeyHandler = [&] { ++presses; };
        service.registerHotKey();
        service.registerHotKey();
        EXPECT_EQ(desktop.hotKeys.count(), 1U);
        EXPECT_TRUE(desktop.hotKeys.press(11, 768));
        desktop.loop.runFor(1);
        EXPECT_EQ(presses, 1);
    }
    EXPECT_FALSE(desktop.hotKeys.press(11, 768));
}

}  // namespace nevo
