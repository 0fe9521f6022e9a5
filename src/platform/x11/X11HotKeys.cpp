#include "platform/x11/X11HotKeys.h"

#include <fmt/format.h>

#include <QTimer>
#include <algorithm>
#include <array>
#include <cctype>
#include <map>

namespace nevo {

namespace {

/// The keys by their virtual key codes; a space where there is none of a letter or digit.
constexpr std::string_view keyNames = "ASDFHGZXCV BQWERYT123465 97 80 OU IP LJ K    NM";

/// From a key's virtual code to its place, a row of letters after the other. The key codes of these
/// places are the same in both sets that X servers have for a PC's keyboard.
struct KeyRow {
    std::string_view names;
    xcb_keycode_t first;
};
constexpr std::array<KeyRow, 4> keyRows{
    {{"1234567890", 10}, {"QWERTYUIOP", 24}, {"ASDFGHJKL", 38}, {"ZXCVBNM", 52}}};

/// Nothing tells that another program has let a combination go.
constexpr int retryMilliseconds = 2000;

struct Modifier {
    std::uint32_t hotKeyBit;
    ModifierFlags flag;
    const char* name;
};
constexpr std::array<Modifier, 4> modifierTable{{
    {commandHotKeyModifier, commandModifier, "Super"},
    {controlHotKeyModifier, controlModifier, "Ctrl"},
    {optionHotKeyModifier, optionModifier, "Alt"},
    {shiftHotKeyModifier, shiftModifier, "Shift"},
}};

char keyName(std::uint32_t keyCode) { return keyCode < keyNames.size() ? keyNames[keyCode] : ' '; }

std::optional<xcb_keycode_t> placeOf(char name) {
    for (const KeyRow& row : keyRows) {
        std::size_t column = row.names.find(name);
        if (column != std::string_view::npos) return static_cast<xcb_keycode_t>(row.first + column);
    }
    return std::nullopt;
}

ModifierFlags flagsOf(std::uint32_t modifiers) {
    ModifierFlags flags = 0;
    for (const Modifier& modifier : modifierTable) {
        if (modifiers & modifier.hotKeyBit) flags |= modifier.flag;
    }
    return flags;
}

/// For people: "Super+Shift+B".
std::string describe(std::uint32_t keyCode, std::uint32_t modifiers) {
    std::string text;
    for (const Modifier& modifier : modifierTable) {
        if (modifiers & modifier.hotKeyBit) text += std::string(modifier.name) + '+';
    }
    char name = keyName(keyCode);
    return name == ' ' ? text + fmt::format("key {}", keyCode) : text + name;
}

}  // namespace

struct X11HotKeys::Held {
    /// A key with modifiers as the server knows them, and the bit that Num Lock has on this map.
    struct Combination {
        xcb_keycode_t key;
        std::uint16_t state;
        std::uint16_t numLock;
        bool operator==(const Combination&) const = default;
    };
    struct Entry {
        std::uint32_t keyCode;
        std::uint32_t modifiers;
        std::optional<Combination> grabbed;
        int status = 0;
    };

    Held(XServer& x, Keyboard& keys, LogOutput& output) : server(x), keyboard(keys), log(output) {
        retryTimer.setInterval(retryMilliseconds);
        QObject::connect(&retryTimer, &QTimer::timeout, &retryTimer, [this] { retry(); });
    }
    ~Held() {
        for (const auto& [id, entry] : entries) {
            if (entry.grabbed) ungrab(*entry.grabbed);
        }
        server.flush();
    }

    /// Grabs what `entry` stands for on the present map, and says once what is wrong.
    void claim(Entry& entry);
    int tryToGrab(Entry& entry);
    /// Claims what another program had at the last try.
    void retry();
    void updateRetryTimer();
    void remove(std::size_t id);
    void hear(const xcb_generic_event_t& event);
    /// Looks for each hot key on the new map.
    void followMap();
    bool isHotKey(const xcb_key_press_event_t& event);
    /// The press of a hot key: the newest handler is asked first.
    void tell();

    std::optional<Combination> combinationOf(const Entry& entry);
    /// With Caps Lock and Num Lock on and off: a grab holds for exactly one state.
    static std::array<std::uint16_t, 4> statesOf(const Combination& combination);
    bool isGrabbed(const Combination& combination) const;
    bool grab(const Combination& combination);
    void letGo(const Entry& entry);
    void ungrab(const Combination& combination);
    void say(const std::string& text);

    XServer& server;
    Keyboard& keyboard;
    LogOutput& log;
    std::map<std::size_t, Entry> entries;
    std::map<std::size_t, std::function<int()>> handlers;
    std::size_t last = 0;
    xcb_keycode_t releasedKey = 0;
    xcb_timestamp_t releaseTime = 0;
    QTimer retryTimer;
};

std::optional<X11HotKeys::Held::Combination> X11HotKeys::Held::combinationOf(const Entry& entry) {
    char name = keyName(entry.keyCode);
    if (name == ' ') return std::nullopt;
    // The symbols of letters and digits are their Latin-1 codes.
    auto symbol = static_cast<xcb_keysym_t>(std::tolower(static_cast<unsigned char>(name)));
    auto key = keyboard.keyFor(symbol);
    if (!key) key = placeOf(name);
    auto state = keyboard.stateFor(flagsOf(entry.modifiers));
    if (!key || !state) return std::nullopt;
    return Combination{*key, *state, keyboard.numLockState()};
}

int X11HotKeys::Held::tryToGrab(Entry& entry) {
    auto combination = combinationOf(entry);
    if (!combination) return noSuchKey;
    if (!isGrabbed(*combination) && !grab(*combination)) return alreadyTaken;
    entry.grabbed = combination;
    return 0;
}

void X11HotKeys::Held::claim(Entry& entry) {
    // Tried many times over, and the map may change as often.
    int before = std::exchange(entry.status, tryToGrab(entry));
    if (entry.status == before) return;
    std::string name = describe(entry.keyCode, entry.modifiers);
    if (entry.status == 0) {
        say(name + " works now.");
    } else if (entry.status == alreadyTaken) {
        say(name +
            " belongs to another program, and works once that one has let it go; or choose "
            "another shortcut.");
    } else {
        say("The keyboard has no " + name + "; choose another shortcut.");
    }
}

void X11HotKeys::Held::retry() {
    for (auto& [id, entry] : entries) {
        if (entry.status == alreadyTaken) claim(entry);
    }
    updateRetryTimer();
}

void X11HotKeys::Held::updateRetryTimer() {
    bool isWaiting = std::any_of(entries.begin(), entries.end(), [](const auto& entry) {
        return entry.second.status == alreadyTaken;
    });
    if (!isWaiting) {
        retryTimer.stop();
    } else if (!retryTimer.isActive()) {
        retryTimer.start();
    }
}

void X11HotKeys::Held::remove(std::size_t id) {
    auto found = entries.find(id);
    if (found == entries.end()) return;
    Entry entry = found->second;
    entries.erase(found);
    letGo(entry);
    server.flush();
    updateRetryTimer();
}

void X11HotKeys::Held::followMap() {
    // First all are let go of: on the new map one's key may be what another's was.
    std::vector<Entry*> moved;
    for (auto& [id, entry] : entries) {
        if (entry.grabbed != combinationOf(entry)) moved.push_back(&entry);
    }
    for (Entry* entry : moved) {
        Entry before = *entry;
        entry->grabbed.reset();
        letGo(before);
    }
    for (Entry* entry : moved) claim(*entry);
    updateRetryTimer();
}

void X11HotKeys::Held::hear(const xcb_generic_event_t& event) {
    const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
    switch (event.response_type & 0x7f) {
        case XCB_KEY_RELEASE:
            releasedKey = key.detail;
            releaseTime = key.time;
            break;
        case XCB_KEY_PRESS: {
            // A key that is held down repeats itself as a release and a press of the same time.
            bool isRepeat = key.detail == releasedKey && key.time == releaseTime;
            if (!isRepeat && isHotKey(key)) tell();
            break;
        }
        case XCB_MAPPING_NOTIFY:
            if (reinterpret_cast<const xcb_mapping_notify_event_t&>(event).request !=
                XCB_MAPPING_POINTER) {
                followMap();
            }
            break;
        default:
            break;
    }
}

bool X11HotKeys::Held::isHotKey(const xcb_key_press_event_t& event) {
    if (event.event != server.root()) return false;
    std::uint16_t numLock = keyboard.numLockState();
    constexpr std::uint16_t allModifiers = 0xff;
    auto state =
        static_cast<std::uint16_t>(event.state & allModifiers & ~(XCB_MOD_MASK_LOCK | numLock));
    return isGrabbed({event.detail, state, numLock});
}

void X11HotKeys::Held::tell() {
    auto before = handlers;
    for (auto each = before.rbegin(); each != before.rend(); ++each) {
        if (handlers.contains(each->first) && each->second() == 0) return;
    }
}

bool X11HotKeys::Held::isGrabbed(const Combination& combination) const {
    return std::any_of(entries.begin(), entries.end(),
                       [&](const auto& entry) { return entry.second.grabbed == combination; });
}

std::array<std::uint16_t, 4> X11HotKeys::Held::statesOf(const Combination& combination) {
    const auto [key, state, num] = combination;
    constexpr std::uint16_t caps = XCB_MOD_MASK_LOCK;
    auto with = [plain = state](int locks) { return static_cast<std::uint16_t>(plain | locks); };
    return {with(0), with(caps), with(num), with(caps | num)};
}

bool X11HotKeys::Held::grab(const Combination& combination) {
    std::vector<xcb_void_cookie_t> asked;
    for (std::uint16_t state : statesOf(combination)) {
        asked.push_back(xcb_grab_key_checked(server.get(), 0, server.root(), state, combination.key,
                                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    // Some may be refused and others not: half a hot key is worse than none.
    bool isWhole = true;
    for (auto cookie : asked) isWhole = xcb::succeeded(server.get(), cookie) && isWhole;
    if (!isWhole) ungrab(combination);
    server.flush();
    return isWhole;
}

void X11HotKeys::Held::letGo(const Entry& entry) {
    // Two registrations of one combination share its grab.
    if (entry.grabbed && !isGrabbed(*entry.grabbed)) ungrab(*entry.grabbed);
}

void X11HotKeys::Held::ungrab(const Combination& combination) {
    for (std::uint16_t state : statesOf(combination)) {
        xcb_ungrab_key(server.get(), combination.key, server.root(), state);
    }
}

void X11HotKeys::Held::say(const std::string& text) {
    log.writeStandardError(text + '\n');
    log.appendToLogFile(text + '\n');
}

X11HotKeys::X11HotKeys(XServer& x, EventPump& pump, Keyboard& keys, LogOutput& output)
    : held(std::make_shared<Held>(x, keys, output)) {
    pump.watch([this](const xcb_generic_event_t& event) { held->hear(event); });
}

X11HotKeys::~X11HotKeys() = default;

HotKeyResult X11HotKeys::installPressedHandler(std::function<int()> handler) {
    std::size_t id = ++held->last;
    held->handlers.emplace(id, std::move(handler));
    return {0, Registration([weak = std::weak_ptr(held), id] {
                if (auto all = weak.lock()) all->handlers.erase(id);
            })};
}

HotKeyResult X11HotKeys::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                        HotKeyIdentity) {
    Held::Entry entry{keyCode, modifiers, std::nullopt};
    held->claim(entry);
    std::size_t id = ++held->last;
    held->entries.emplace(id, entry);
    held->updateRetryTimer();
    return {entry.status, Registration([weak = std::weak_ptr(held), id] {
                if (auto all = weak.lock()) all->remove(id);
            })};
}

}  // namespace nevo
