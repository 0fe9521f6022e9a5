// What a listen-only tap hears, on both desktops, and what only the real one can show.

#include <xcb/xinput.h>

#include <algorithm>

#include "desktop/ContractSessions.h"
#include "desktop/TestClients.h"
#include "platform/x11/RawListeners.h"

namespace nevo::desktoptest {
namespace {

constexpr EventMask dragsAndReleases =
    maskOf(EventType::leftMouseDragged) | maskOf(EventType::leftMouseUp);

template <class Session>
class Tap : public Session {
protected:
    std::unique_ptr<EventTap> create(EventMask mask) {
        return this->platform().events.createEventTap(
            mask, [this](const Event& event) { heard.push_back(event); });
    }

    bool hears(EventType type) {
        return this->soon([&] {
            return std::any_of(heard.begin(), heard.end(),
                               [&](const Event& event) { return event.type == type; });
        });
    }

    std::vector<Event> heard;
};

using Desktops = testing::Types<SimSession, X11Session>;
TYPED_TEST_SUITE(Tap, Desktops);

TYPED_TEST(Tap, hearsADragAndItsEndOnceItIsEnabledAndOnTheLoop) {
    auto tap = this->create(dragsAndReleases);
    ASSERT_TRUE(tap);
    auto marker = this->create(dragsAndReleases);
    auto drag = [&] { this->drag({100, 300}, {200, 310}); };

    // Each time the second tap tells when the drag is over.
    marker->setEnabled(true);
    Registration markerOnLoop = marker->addToMainRunLoop();
    drag();
    ASSERT_TRUE(this->hears(EventType::leftMouseUp));
    for (const Event& event : this->heard) EXPECT_EQ(event.window, 0);
    EXPECT_EQ(this->heard.front().type, EventType::leftMouseDragged);
    EXPECT_EQ(this->heard.back().type, EventType::leftMouseUp);
    auto height = this->platform().screens.mainScreen()->frame.height;
    EXPECT_EQ(this->heard.back().location, (Point{200, height - 310}));

    auto releases = [&] {
        return std::count_if(this->heard.begin(), this->heard.end(), [](const Event& event) {
            return event.type == EventType::leftMouseUp;
        });
    };
    for (bool enabled : {false, true}) {
        for (bool onLoop : {false, true}) {
            tap->setEnabled(enabled);
            Registration tapOnLoop;
            if (onLoop) tapOnLoop = tap->addToMainRunLoop();
            this->heard.clear();
            drag();
            ASSERT_TRUE(this->hears(EventType::leftMouseUp));
            EXPECT_EQ(releases(), enabled && onLoop ? 2 : 1) << enabled << onLoop;
        }
    }
    tap.reset();
    this->heard.clear();
    drag();
    ASSERT_TRUE(this->hears(EventType::leftMouseUp));
    EXPECT_EQ(releases(), 1);
}

class TapOnX11 : public Tap<X11Session> {};

TEST_F(TapOnX11, tellsWhichModifiersAreHeld) {
    auto tap = create(dragsAndReleases | maskOf(EventType::mouseMoved));
    tap->setEnabled(true);
    Registration onLoop = tap->addToMainRunLoop();
    for (auto [key, flag] :
         {std::pair{leftSuperKey, commandModifier}, {leftShiftKey, shiftModifier}}) {
        heard.clear();
        hand->hold(key);
        hand->drag({100, 300}, {200, 310});
        EXPECT_TRUE(hears(EventType::leftMouseUp));
        EXPECT_TRUE(hears(EventType::leftMouseDragged));
        for (const Event& event : heard) EXPECT_EQ(event.modifiers, flag);
        hand->letGo(key);
    }
    heard.clear();
    hand->moveTo({50, 50});
    EXPECT_TRUE(hears(EventType::mouseMoved));
    EXPECT_EQ(heard.front().modifiers, 0U);
}

TEST_F(TapOnX11, hearsWhatHappensUnderAnotherProgramsGrabAndOverOwnItems) {
    auto own = platform().statusBar.statusItem(30);
    ASSERT_TRUE(soon([&] { return own->button()->screenFrame().has_value(); }));
    auto tap = create(dragsAndReleases);
    tap->setEnabled(true);
    Registration onLoop = tap->addToMainRunLoop();
    int foreignEvents = 0;
    Registration monitor = platform().events.addGlobalMonitor(
        dragsAndReleases, [&](const Event&) { ++foreignEvents; });

    hand->click(items().front().place.center());
    EXPECT_TRUE(hears(EventType::leftMouseUp));
    EXPECT_EQ(foreignEvents, 0);

    heard.clear();
    xcb_grab_pointer(server->get(), 0, server->root(), XCB_EVENT_MASK_BUTTON_RELEASE,
                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE,
                     XCB_CURRENT_TIME);
    hand->click({400, 300});
    EXPECT_TRUE(hears(EventType::leftMouseUp));
    EXPECT_EQ(heard.size(), 1U);
}

TEST_F(TapOnX11, hearsOfASyntheticDragBeforeItsMakerGoesOn) {
    auto tap = create(dragsAndReleases);
    tap->setEnabled(true);
    Registration onLoop = tap->addToMainRunLoop();
    Events& events = platform().events;
    auto source = events.createEventSource();
    ASSERT_TRUE(source);
    for (auto [type, x] : {std::pair{EventType::leftMouseDown, 300.0},
                           {EventType::leftMouseDragged, 320.0},
                           {EventType::leftMouseUp, 340.0}}) {
        events.post(*events.createMouseEvent(*source, type, {x, 300}));
        platform().runLoop.blockFor(0.015);
    }
    // The pause after which the maker counts its drag as over.
    bool isOver = false;
    std::size_t heardBefore = 0;
    platform().runLoop.postAfter(0.3, [&] {
        heardBefore = heard.size();
        isOver = true;
    });
    ASSERT_TRUE(soon([&] { return isOver; }));
    EXPECT_EQ(heard.size(), heardBefore);
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard.front().type, EventType::leftMouseDragged);
    EXPECT_EQ(heard.back().type, EventType::leftMouseUp);
}

TEST_F(TapOnX11, theDevicesAreListenedToOnlyWhileSomebodyHears) {
    XServer x(connect());
    EventPump pump(x, [] {});
    RawInput input(x, pump, [](RawInput::Kind, std::uint32_t) {});
    auto listeners = std::make_unique<RawListeners>(input);
    auto listens = [&] {
        xcb::Reply<xcb_input_xi_get_selected_events_reply_t> reply(
            xcb_input_xi_get_selected_events_reply(
                x.get(), xcb_input_xi_get_selected_events(x.get(), x.root()), nullptr));
        return reply && reply->num_masks > 0;
    };
    auto nothing = [](const Event&) {};
    auto tap = listeners->createTap(dragsAndReleases, nothing);
    EXPECT_FALSE(listens());
    tap->setEnabled(true);
    EXPECT_FALSE(listens());
    Registration onLoop = tap->addToMainRunLoop();
    EXPECT_TRUE(listens());
    Registration monitor = listeners->addMonitor(dragsAndReleases, nothing);
    onLoop.reset();
    EXPECT_TRUE(listens());
    monitor.reset();
    EXPECT_FALSE(listens());
    onLoop = tap->addToMainRunLoop();
    EXPECT_TRUE(listens());
    tap->setEnabled(false);
    EXPECT_FALSE(listens());

    // A tap and its place on the loop may outlive the desktop.
    listeners.reset();
    tap->setEnabled(true);
    tap.reset();
    onLoop.reset();
}

}  // namespace
}  // namespace nevo::desktoptest
