// What a person does with a panel on the real desktop, and what it leaves alone.

#include <algorithm>

#include "desktop/PanelSession.h"
#include "platform/xcb/Properties.h"
#include "platform/xcb/WindowOwner.h"

namespace nevo::desktoptest {
namespace {

constexpr EventMask allEvents = maskOf(EventType::leftMouseDown) | maskOf(EventType::leftMouseUp) |
                                maskOf(EventType::rightMouseDown) |
                                maskOf(EventType::rightMouseUp) |
                                maskOf(EventType::leftMouseDragged);

class PanelEvents : public PanelSession {
protected:
    void SetUp() override {
        PanelSession::SetUp();
        foreignMonitor = platform().events.addGlobalMonitor(
            allEvents, [this](const Event& event) { foreign.push_back(event.type); });
        tap = platform().events.createEventTap(allEvents, [this](const Event& event) {
            bool isRelease =
                event.type == EventType::leftMouseUp || event.type == EventType::rightMouseUp;
            bool isPress =
                event.type == EventType::leftMouseDown || event.type == EventType::rightMouseDown;
            releases += isRelease ? 1 : 0;
            presses += isPress ? 1 : 0;
        });
        tap->setEnabled(true);
        onLoop = tap->addToMainRunLoop();
    }
    void TearDown() override {
        panel.reset();
        foreignMonitor.reset();
        onLoop.reset();
        tap.reset();
        PanelSession::TearDown();
    }

    /// A panel with two views side by side, "a" and "b", and a cover over "a" that is looked
    /// through.
    void showPanel(bool hasShadow = false) {
        panel = create(place, hasShadow);
        PanelView a = filled(place, blue, "a");
        a.frame = {5, 5, 30, 30};
        a.toolTip = "<b>A</b> tip";
        PanelView b = filled(place, red, "b");
        b.frame = {40, 5, 30, 30};
        PanelView cover = filled(place, Color::clear(), "cover");
        cover.takesMouse = false;
        panel->setViews({filled(place, Color::white(1), "ground"), a, b, cover});
        PanelView lower = filled(place, Color::white(1), "ground");
        lower.takesMouse = false;
        panel->setView(lower);
        listen(*panel);
        panel->orderFront();
        ASSERT_TRUE(showsSoon(inA, 0x0000ff));
    }

    std::uint32_t rootProperty(const char* name) {
        xcb::Atoms atoms(server->get(), {});
        return xcb::PropertyRead(server->get(), server->root(), atoms[name]).number().value_or(0);
    }

    /// Does something that ends with a release, and waits until all have heard of it.
    void afterRelease(const std::function<void()>& act) {
        heard.clear();
        foreign.clear();
        presses = releases = 0;
        act();
        ASSERT_TRUE(soon([&] { return releases > 0; }));
        // The window's own events come on another connection.
        letTimePass();
    }

    void drag(Point from, Point to) {
        // Where the pointer was at a press is where it is when one hears of it.
        afterRelease(
            [&] { hand->drag(from, to, [&] { EXPECT_TRUE(soon([&] { return presses > 0; })); }); });
    }

    const Rect place{100, 200, 75, 40};
    const Point inA{120, 220};
    const Point inB{155, 220};
    const Point outside{400, 400};
    std::unique_ptr<Panel> panel;
    Registration foreignMonitor;
    std::unique_ptr<EventTap> tap;
    Registration onLoop;
    std::vector<EventType> foreign;
    int presses = 0;
    int releases = 0;
};

TEST_F(PanelEvents, aViewInWhichAButtonWentDownHearsEverythingUntilItComesUp) {
    showPanel();
    drag(inA, outside);
    EXPECT_EQ(heardTypes(), (Names{"down:a", "drag:a", "up:a"}));
    EXPECT_EQ(heard.front().location, (Point{20, 20}));
    EXPECT_EQ(heard.back().location, (Point{300, -160}));
    EXPECT_EQ(heard.back().modifiers, 0U);
    // It is nobody else's drag.
    EXPECT_TRUE(foreign.empty());

    afterRelease([&] { hand->click(inB, 3); });
    EXPECT_EQ(heardTypes(), (Names{"right:b", "right up:b"}));
    afterRelease([&] {
        hand->hold(leftShiftKey);
        hand->click(inB);
        hand->letGo(leftShiftKey);
    });
    EXPECT_EQ(heardTypes(), (Names{"down:b", "up:b"}));
    EXPECT_EQ(heard.front().modifiers, shiftModifier);
    EXPECT_TRUE(foreign.empty());

    // Where no view takes the mouse, and where the panel isn't.
    afterRelease([&] { hand->click({place.x + 2, place.y + 2}); });
    EXPECT_TRUE(heard.empty());
    EXPECT_TRUE(foreign.empty());
    drag(outside, inA);
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(foreign.front(), EventType::leftMouseDown);
    EXPECT_EQ(foreign.back(), EventType::leftMouseUp);
}

TEST_F(PanelEvents, localMonitorsHearAnEventFirstAndMaySwallowIt) {
    showPanel();
    std::vector<Event> seen;
    bool swallows = false;
    ModifierFlags keysNow = 0;
    Registration local = platform().events.addLocalMonitor(allEvents, [&](const Event& event) {
        EXPECT_TRUE(heard.empty() || event.type != EventType::leftMouseDown);
        seen.push_back(event);
        keysNow = platform().events.modifierFlags();
        return swallows && event.type == EventType::leftMouseDown;
    });
    afterRelease([&] {
        hand->hold(leftShiftKey);
        hand->click(inA);
        hand->letGo(leftShiftKey);
    });
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].location, (Point{inA.x, 600 - inA.y}));
    EXPECT_NE(seen[0].window, 0U);
    EXPECT_EQ(seen[1].window, seen[0].window);
    // Those of the event, though the hand has let go since.
    EXPECT_EQ(keysNow, shiftModifier);
    EXPECT_EQ(heardTypes(), (Names{"down:a", "up:a"}));

    swallows = true;
    afterRelease([&] { hand->click(inA); });
    EXPECT_TRUE(heard.empty());
}

TEST_F(PanelEvents, theShadowAndAnInvisiblePanelLetTheMouseThrough) {
    IdleCompositor compositor;
    showPanel(true);
    afterRelease([&] { hand->click({place.x - 8, place.midY()}); });
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(foreign, (std::vector{EventType::leftMouseDown, EventType::leftMouseUp}));
    afterRelease([&] { hand->click(inA); });
    EXPECT_EQ(heardTypes(), (Names{"down:a", "up:a"}));
    EXPECT_TRUE(foreign.empty());
    panel->setAlpha(0);
    ASSERT_TRUE(soon([&] { return shade(60, 60) == 0; }));
    afterRelease([&] { hand->click(inA); });
    EXPECT_TRUE(heard.empty());
    EXPECT_FALSE(foreign.empty());
}

TEST_F(PanelEvents, mayBeDestroyedByWhoeverHearsOfAnEvent) {
    showPanel();
    afterRelease([&] {
        panel->onEvent = [&](const PanelEvent& event) {
            heard.push_back(event);
            panel.reset();
        };
        hand->click(inA);
    });
    EXPECT_FALSE(panel);
    EXPECT_EQ(heardTypes(), (Names{"down:a"}));
    // The release belongs to the press, though nothing of ours is there any more.
    EXPECT_TRUE(foreign.empty());
    EXPECT_EQ(window(), 0U);

    showPanel();
    Registration local = platform().events.addLocalMonitor(allEvents, [&](const Event&) {
        panel.reset();
        return false;
    });
    afterRelease([&] { hand->click(inA); });
    EXPECT_FALSE(panel);
    EXPECT_TRUE(heard.empty());
}

TEST_F(PanelEvents, tellsTheToolTipOfTheViewUnderThePointerAsItIsWritten) {
    showPanel();
    auto tips = [&] {
        auto all = windowsBelowBar();
        return std::count_if(all.begin(), all.end(), [&](const Rect& r) { return r != place; });
    };
    hand->moveTo(inB);
    hand->moveTo(inA);
    hand->moveTo({inA.x + 1, inA.y});
    ASSERT_TRUE(soon([&] { return tips() == 1; }));
    hand->moveTo(outside);
    EXPECT_TRUE(soon([&] { return tips() == 0; }));
}

TEST_F(PanelEvents, takesNoFocusAndStaysAboveTheWindowInUse) {
    startWindowManager();
    auto focused = [this] {
        xcb::Reply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(server->get(), xcb_get_input_focus(server->get()), nullptr));
        return reply ? reply->focus : static_cast<xcb_window_t>(XCB_NONE);
    };
    Process& other = startProgram("xev");
    xcb::Atoms atoms(server->get(), {});
    auto isActive = [&] {
        return xcb::processOfWindow(server->get(), rootProperty("_NET_ACTIVE_WINDOW"),
                                    atoms["_NET_WM_PID"]) == other.pid();
    };
    ASSERT_TRUE(soon(isActive));
    ASSERT_TRUE(soon([&] { return !windowsBelowBar().empty(); }));
    xcb_window_t before = focused();
    Rect front = windowsBelowBar().back();

    // Above the bar as well, and one that leaves its place to the window manager.
    for (int level : {3, statusItemWindowLevel}) {
        Rect above{front.x + 40, front.y + 60, 60, 30};
        panel = create(above, false, level);
        panel->setViews({filled(above, blue)});
        listen(*panel);
        panel->orderFront();
        panel->makeKey();
        EXPECT_TRUE(showsSoon(above.center(), 0x0000ff)) << level;
        afterRelease([&] { hand->click(above.center()); });
        EXPECT_EQ(heardTypes(), (Names{"down:body", "up:body"}));
        platform().workspace.activate(other.pid());
        platform().application.activate();
        EXPECT_TRUE(showsSoon(above.center(), 0x0000ff)) << level;
        EXPECT_EQ(focused(), before);
        EXPECT_TRUE(isActive());
    }
    panel->setFrame(frameOf({300, 0, 60, 24}));
    EXPECT_TRUE(showsSoon({310, 2}, 0x0000ff));
}

class PanelMenu : public PanelEvents {
protected:
    /// Pops a menu up, does `act` when it is there, and gives what it was closed with: the row's
    /// number, or "none".
    std::string popUp(const std::function<void()>& act) {
        std::vector<MenuItem> items(4);
        items[0].key = items[0].title = "first";
        items[2].key = items[2].title = "third";
        items[3].key = items[3].title = "fourth";
        items[2].isEnabled = false;
        items[3].action = [] { ADD_FAILURE() << "a row's action ran"; };
        std::string result = "not closed";
        bool hasActed = false;
        auto before = windowsBelowBar().size();
        Registration watch = platform().runLoop.timer(0.02, true, [&] {
            if (hasActed || windowsBelowBar().size() == before) return;
            hasActed = true;
            menuPlace = windowsBelowBar().back();
            act();
        });
        platform().menus.popUp(items, {10, 0}, *panel, [&](std::optional<std::size_t> row) {
            result = row ? std::to_string(*row) : "none";
        });
        EXPECT_TRUE(hasActed);
        return result;
    }

    Rect menuPlace;
};

TEST_F(PanelMenu, tellsWhichRowWasChosen) {
    showPanel();
    EXPECT_EQ(popUp([&] {
                  hand->press(downKey);
                  hand->press(returnKey);
              }),
              "0");
    EXPECT_EQ((Point{menuPlace.x, menuPlace.y}), (Point{place.x + 10, place.maxY()}));
    EXPECT_EQ(popUp([&] {
                  hand->press(downKey);
                  hand->press(downKey);
                  hand->press(returnKey);
              }),
              "3");
    EXPECT_EQ(popUp([&] {
                  hand->press(downKey);
                  hand->press(escapeKey);
              }),
              "none");
    // The panel may go meanwhile, even if it is in the middle of an event.
    std::string result;
    panel->onEvent = [&](const PanelEvent& event) {
        if (event.type != EventType::rightMouseUp) return;
        result = popUp([&] {
            panel.reset();
            hand->press(downKey);
            hand->press(returnKey);
        });
    };
    hand->click(inA, 3);
    EXPECT_TRUE(soon([&] { return !result.empty(); }));
    EXPECT_EQ(result, "0");
    EXPECT_FALSE(panel);
}

}  // namespace
}  // namespace nevo::desktoptest
