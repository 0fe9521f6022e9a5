// The shortcut that works whichever program is in front.

#include "desktop/ContractSessions.h"
#include "desktop/NevoSession.h"
#include "desktop/TestClients.h"
#include "platform/x11/X11HotKeys.h"

namespace nevo::desktoptest {
namespace {

constexpr std::uint32_t keyB = 11;
constexpr std::uint32_t keyN = 45;
constexpr std::uint32_t keyOfNoLetter = 10;
constexpr std::uint32_t superAndShift = commandHotKeyModifier | shiftHotKeyModifier;
constexpr HotKeyIdentity identity{1, 1};

class RecordingLog : public LogOutput {
public:
    void writeStandardError(std::string_view line) override { text += line; }
    void writeStandardOutput(std::string_view) override {}
    void writeSystemLog(std::string_view) override {}
    void appendToLogFile(std::string_view) override {}
    std::string text;
};

/// The keyboard's side of a program, on a connection of its own.
struct KeyProgram {
    KeyProgram() : handler(hotKeys.installPressedHandler([this] { return ++presses, 0; })) {
        pump.watch([this](const xcb_generic_event_t& event) {
            if ((event.response_type & 0x7f) == XCB_KEY_PRESS) ++pressEvents;
            if ((event.response_type & 0x7f) == XCB_KEY_RELEASE) ++releaseEvents;
        });
    }

    XServer server{connect()};
    EventPump pump{server, [] {}};
    Keyboard keyboard{server, pump};
    RecordingLog log;
    X11HotKeys hotKeys{server, pump, keyboard, log};
    int presses = 0;
    int pressEvents = 0;
    int releaseEvents = 0;
    HotKeyResult handler;
};

class HotKey : public X11Session {
protected:
    void pressShortcut(xcb_keysym_t key = 'b') { hand->press(key, {leftSuperKey, leftShiftKey}); }

    /// Whether nobody else holds the key with these modifiers; holds it afterwards if `keeps`.
    bool grab(xcb_keycode_t key, std::uint16_t state, bool keeps = false) {
        auto c = server->get();
        auto asked = xcb_grab_key_checked(c, 0, server->root(), state, key, XCB_GRAB_MODE_ASYNC,
                                          XCB_GRAB_MODE_ASYNC);
        bool isFree = xcb::succeeded(c, asked);
        if (isFree && !keeps) letGo(key, state);
        return isFree;
    }
    testing::AssertionResult becomesFree(xcb_keycode_t key, std::uint16_t state) {
        if (soon([&] { return grab(key, state); })) return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << "somebody holds key " << int{key} << " with " << state;
    }
    void letGo(xcb_keycode_t key, std::uint16_t state) {
        auto c = server->get();
        xcb::succeeded(c, xcb_ungrab_key_checked(c, key, server->root(), state));
    }

    void map(xcb_keycode_t key, xcb_keysym_t symbol) {
        std::array<xcb_keysym_t, 2> symbols{symbol, symbol};
        xcb_change_keyboard_mapping(server->get(), 1, key, 2, symbols.data());
        server->flush();
    }

    static constexpr std::uint16_t plain = XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT;
    static constexpr std::uint16_t withNumLock = plain | XCB_MOD_MASK_2;
    static constexpr std::uint16_t withCapsLock = plain | XCB_MOD_MASK_LOCK;
};

TEST_F(HotKey, eachPressIsHeardOnceWhateverIsLockedAndWhoeverHoldsThePointer) {
    KeyProgram program;
    auto key = program.hotKeys.registerHotKey(keyB, superAndShift, identity);
    ASSERT_EQ(key.status, 0);
    xcb_grab_pointer(server->get(), 0, server->root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                     XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    int expected = 0;
    for (xcb_keysym_t lock : {capsLockKey, numLockKey, capsLockKey, numLockKey}) {
        pressShortcut();
        ++expected;
        EXPECT_TRUE(soon([&] { return program.presses == expected; })) << expected;
        hand->press(lock);
    }

    hand->press('b', {leftSuperKey});
    hand->press('b');
    auto other = program.hotKeys.registerHotKey(keyN, superAndShift, identity);
    key.registration.reset();
    pressShortcut('b');
    pressShortcut('n');
    EXPECT_TRUE(soon([&] { return program.presses > expected; }));
    EXPECT_EQ(program.presses, expected + 1);
    EXPECT_EQ(program.log.text, "");
}

TEST_F(HotKey, aKeyThatIsHeldDownIsOnePress) {
    Process faster({"xset", "r", "rate", "60", "50"}, environment(), folder / "log/xset");
    ASSERT_EQ(faster.waitForEnd(), 0) << faster.output();
    KeyProgram program;
    auto key = program.hotKeys.registerHotKey(keyB, superAndShift, identity);
    for (int expected : {1, 2}) {
        int before = program.pressEvents;
        for (xcb_keysym_t each : {leftSuperKey, leftShiftKey, xcb_keysym_t{'b'}}) hand->hold(each);
        EXPECT_TRUE(soon([&] { return program.pressEvents > before + 4; }))
            << "the key doesn't repeat";
        for (xcb_keysym_t each : {xcb_keysym_t{'b'}, leftShiftKey, leftSuperKey}) hand->letGo(each);
        EXPECT_TRUE(soon([&] { return program.releaseEvents == program.pressEvents; }));
        EXPECT_EQ(program.presses, expected);
    }
}

TEST_F(HotKey, whatAnotherProgramHasInPartIsRefusedAsAWhole) {
    xcb_keycode_t b = hand->codeOf('b');
    ASSERT_TRUE(grab(b, withNumLock, true));
    KeyProgram program;
    auto refused = program.hotKeys.registerHotKey(keyB, superAndShift, identity);
    EXPECT_EQ(refused.status, X11HotKeys::alreadyTaken);
    EXPECT_TRUE(becomesFree(b, plain));
    EXPECT_TRUE(becomesFree(b, withCapsLock));
    std::string said =
        "Super+Shift+B belongs to another program, and works once that one has let it go; or "
        "choose "
        "another shortcut.\n";
    EXPECT_EQ(program.log.text, said);

    // It is tried again until it can be had, without another word.
    letGo(b, withNumLock);
    EXPECT_TRUE(soon([&] { return !grab(b, plain) && !grab(b, withNumLock); }));
    pressShortcut();
    EXPECT_TRUE(soon([&] { return program.presses == 1; }));
    EXPECT_EQ(program.log.text, said + "Super+Shift+B works now.\n");

    refused.registration.reset();
    EXPECT_TRUE(becomesFree(b, plain));
    auto key = program.hotKeys.registerHotKey(keyB, superAndShift, identity);
    auto twin = program.hotKeys.registerHotKey(keyB, superAndShift, identity);
    EXPECT_EQ(key.status, 0);
    EXPECT_EQ(twin.status, 0);
    // The same combination of one program: it is free again when both have gone.
    key.registration.reset();
    EXPECT_FALSE(grab(b, plain));
    twin.registration.reset();
    EXPECT_TRUE(becomesFree(b, plain));
}

TEST_F(HotKey, followsTheKeyboardsMap) {
    KeyProgram program;
    auto key = program.hotKeys.registerHotKey(keyB, superAndShift, identity);
    xcb_keycode_t b = hand->codeOf('b');
    xcb_keycode_t n = hand->codeOf('n');
    map(b, 'n');
    map(n, 'b');
    EXPECT_TRUE(soon([&] { return !grab(n, withCapsLock) && grab(b, plain); }));
    pressShortcut('n');
    pressShortcut('b');
    EXPECT_TRUE(soon([&] { return program.presses > 0; }));
    EXPECT_EQ(program.presses, 1);

    // Where no key has the letter, the one in its place is meant.
    map(n, 'q');
    EXPECT_TRUE(soon([&] { return grab(n, plain) && !grab(b, plain); }));
    auto missing = program.hotKeys.registerHotKey(keyOfNoLetter, superAndShift, identity);
    EXPECT_NE(missing.status, 0);
    EXPECT_NE(missing.status, X11HotKeys::alreadyTaken);
    EXPECT_TRUE(program.log.text.find("no Super+Shift+key 10") != std::string::npos)
        << program.log.text;
    map(n, 'b');
    EXPECT_TRUE(soon([&] { return !grab(n, plain) && grab(b, plain); }));
}

TEST_F(HotKey, keepsItsPlaceOnAKeyboardWithoutItsLetters) {
    struct Key {
        std::uint32_t keyCode;
        char letter;
        xcb_keysym_t cyrillic;
    };
    // One of each row, and a digit, which these keyboards have.
    const std::array<Key, 4> keys{
        {{keyB, 'b', 0x6c9}, {0, 'a', 0x6c6}, {35, 'p', 0x6da}, {29, '0', '0'}}};
    KeyProgram program;
    std::vector<HotKeyResult> held;
    for (const Key& key : keys)
        held.push_back(program.hotKeys.registerHotKey(key.keyCode, superAndShift, identity));
    int expected = 0;
    for (const char* layout : {"us", "ru", "us"}) {
        Process change({"setxkbmap", layout}, environment(), folder / "log/setxkbmap");
        ASSERT_EQ(change.waitForEnd(), 0) << change.output();
        bool isLatin = std::string_view(layout) == "us";
        for (const Key& key : keys) {
            pressShortcut(isLatin ? static_cast<xcb_keysym_t>(key.letter) : key.cyrillic);
            ++expected;
            EXPECT_TRUE(soon([&] { return program.presses == expected; })) << layout << key.letter;
        }
    }
    EXPECT_EQ(program.log.text, "");
}

TEST_F(HotKey, aRegistrationMayOutliveTheDesktop) {
    KeyProgram program;
    auto doomed =
        std::make_unique<X11HotKeys>(program.server, program.pump, program.keyboard, program.log);
    auto handler = doomed->installPressedHandler([] { return 0; });
    auto key = doomed->registerHotKey(keyB, superAndShift, identity);
    EXPECT_FALSE(grab(hand->codeOf('b'), plain));
    doomed.reset();
    // The loop stands still: nobody hears events for what has gone.
    EXPECT_TRUE(holdsSoon([&] { return grab(hand->codeOf('b'), plain); }));
    handler.registration.reset();
    key.registration.reset();
}

class Shortcut : public NevoSession {};

TEST_F(Shortcut, thatAnotherProgramHasIsReportedAndTheClickStillWorks) {
    auto c = server->get();
    auto asked = xcb_grab_key_checked(c, 0, server->root(), XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT,
                                      hand->codeOf('b'), XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    ASSERT_TRUE(xcb::succeeded(c, asked));
    startAll();
    toggle(names());
    EXPECT_NE(nevo().output().find("Super+Shift+B belongs to another program"), std::string::npos);
    xcb::succeeded(c, xcb_ungrab_key_checked(c, hand->codeOf('b'), server->root(),
                                             XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT));
    waitFor("the shortcut works",
            [&] { return nevo().output().find("Super+Shift+B works now") != std::string::npos; });
    hand->press('b', {leftSuperKey, leftShiftKey});
    waitForOnScreen({});
}

TEST_F(Shortcut, worksOnACyrillicKeyboard) {
    Process change({"setxkbmap", "ru"}, environment(), folder / "log/setxkbmap");
    ASSERT_EQ(change.waitForEnd(), 0) << change.output();
    startAll();
    Names all = names();
    constexpr xcb_keysym_t cyrillicI = 0x6c9;
    hand->press(cyrillicI, {leftSuperKey, leftShiftKey});
    waitForOnScreen(all);
}

}  // namespace
}  // namespace nevo::desktoptest
