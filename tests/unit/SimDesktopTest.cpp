// The simulated desktop by itself: what every story on it relies on.

#include <gtest/gtest.h>

#include "platform/sim/SimDesktop.h"

namespace nevo {
namespace {

TEST(SimRunLoop, EqualTimesRunInOrderOfPostingAndBlockingHoldsTheProgramBack) {
    SimRunLoop loop;
    std::string order;
    auto note = [&](char c) { return [&order, c] { order += c; }; };
    loop.postAfter(0.3, note('a'));
    loop.postAfter(0.1, [&] {
        order += 'b';
        loop.postAfter(0.1, [&] { loop.postAfter(0.1, note('d')); });
    });
    loop.desktopAfter(0.3, note('c'));
    loop.runFor(0.3);
    // Three times 0.1 s is 0.3 s.
    EXPECT_EQ(order, "bacd");

    order.clear();
    loop.post(note('p'));
    loop.desktopAfter(0.5, [&] {
        order += 'd';
        loop.turnFor(0);
    });
    loop.blockFor(1);
    EXPECT_EQ(order, "d");
    EXPECT_DOUBLE_EQ(loop.now(), 1.3);
    loop.runReady();
    EXPECT_EQ(order, "dp");
}

TEST(SimRunLoop, TimersSkipWhatTheyMissedAndEndWithTheirRegistration) {
    SimRunLoop loop;
    std::vector<double> fired;
    Registration timer = loop.timer(1, true, [&] {
        fired.push_back(loop.now());
        if (fired.size() == 1) loop.blockFor(2.5);
        if (fired.size() == 3) timer.reset();
    });
    Registration once = loop.timer(1, false, [&] { once.reset(); });
    loop.runFor(10);
    EXPECT_EQ(fired, (std::vector<double>{1, 4, 5}));
    EXPECT_EQ(loop.programTimerCount(), 0U);
    EXPECT_TRUE(loop.runUntilIdle(1));
}

TEST(SimDesktop, RegistrationsOutliveTheDesktop) {
    std::vector<Registration> kept;
    {
        SimDesktop desktop;
        kept.push_back(desktop.loop.timer(1, true, [] {}));
        kept.push_back(
            desktop.events.addGlobalMonitor(maskOf(EventType::mouseMoved), [](const Event&) {}));
        kept.push_back(desktop.notifications.addObserver("n", [](const Notification&) {}));
    }
    kept.clear();
}

/// A desktop with three items, left to right a (30), b (40), c (50), next to the system area at
/// 1320.
class SimBarTest : public testing::Test {
protected:
    SimBarTest() {
        for (const char* handle : {"c", "b", "a"}) {
            SimOtherProgram program;
            program.handle = handle;
            program.application.bundleIdentifier = std::string("com.example.") + handle;
            double width = 30 + 10 * (handle[0] - 'a');
            program.items.push_back({.label = handle, .width = width});
            desktop.applications.add(program);
            desktop.applications.launch(handle);
        }
        desktop.loop.runFor(1);
    }

    std::string order() {
        std::string text;
        for (WindowNumber window : desktop.bar.order()) {
            text += desktop.bar.find(window)->label + " ";
        }
        return text;
    }
    WindowNumber window(const std::string& label) { return desktop.bar.findLabel(label)->window; }
    double x(const std::string& label) { return desktop.windows.find(window(label))->frame.x; }
    void setOwn(const std::string& name, double position) {
        desktop.defaults.write(desktop.program.bundleIdentifier,
                               "NSStatusItem Preferred Position " + name, position);
    }
    std::optional<double> saved(const std::string& label) {
        return desktop.defaults.readNumber("com.example." + label,
                                           "NSStatusItem Preferred Position Item-0");
    }
    void drag(WindowNumber named, Point from, Point to, double seconds = 1) {
        auto source = desktop.events.createEventSource();
        for (auto [type, place] :
             {std::pair{EventType::leftMouseDown, from}, std::pair{EventType::leftMouseDragged, to},
              std::pair{EventType::leftMouseUp, to}}) {
            auto event = desktop.events.createMouseEvent(*source, type, place);
            event->flags = commandModifier;
            if (named != 0) event->fields[EventField::windowNumber] = named;
            desktop.events.post(*event);
        }
        desktop.loop.runFor(seconds);
    }

    SimDesktop desktop;
};

TEST_F(SimBarTest, ADividerOpensDirectlyLeftOfTheToggleAndPushesTheOthersOff) {
    auto toggle = desktop.statusBar.statusItem(-1);
    auto divider = desktop.statusBar.statusItem(0);
    setOwn("T", 80);
    setOwn("D", 80);
    toggle->setAutosaveName("T");
    divider->setAutosaveName("D");
    EXPECT_EQ(order(), "a b D T c ");
    // Somebody drags the toggle; the divider comes along when it opens.
    desktop.loop.runFor(1);
    drag(0, {x("T") + 2, 5}, {1210, 5});
    EXPECT_EQ(order(), "a T b D c ");
    setOwn("D",
           desktop.defaults
               .readNumber(desktop.program.bundleIdentifier, "NSStatusItem Preferred Position T")
               .value());
    divider->setLength(10000);
    EXPECT_EQ(order(), "a D T b c ");
    EXPECT_EQ(x("a"), 1184) << "the old place until the bar has laid out";
    desktop.loop.runFor(1);
    EXPECT_LT(x("a"), -8000);
    EXPECT_EQ(desktop.hiddenItems(), std::vector<std::string>{"a"});
    EXPECT_EQ(desktop.bar.itemAt({300, 5}), nullptr) << "the divider takes no clicks";

    desktop.applications.kill("a");
    EXPECT_EQ(saved("a"), 136) << "its own place, although it is pushed off";
    desktop.applications.launch("a");
    divider->setLength(0);
    desktop.loop.runFor(1);
    EXPECT_EQ(order(), "a D T b c ");
    divider.reset();
    toggle->setVisible(false);
    EXPECT_FALSE(toggle->button()->windowNumber());
    desktop.loop.runFor(1);
    EXPECT_EQ(order(), "a b c ");
    EXPECT_EQ(x("a"), 1200);
}

TEST_F(SimBarTest, SyntheticDragsMoveTheItemThatTheyName) {
    drag(window("a"), {1215, 12}, {1300, 12});
    EXPECT_EQ(order(), "b c a ");
    EXPECT_EQ(saved("a"), 30);
    EXPECT_EQ(desktop.events.state().location, (Point{1300, 12}));
    // Pressed outside every display, on top of a stranger's item, and where it stands.
    drag(window("a"), {20000, 20000}, {1205, 12});
    EXPECT_EQ(order(), "a b c ");
    drag(window("c"), {x("a") + 5, 12}, {1201, 12});
    EXPECT_EQ(order(), "c a b ");
    drag(window("a"), {x("a") + 15, 12}, {x("a") + 15, 12});
    EXPECT_EQ(order(), "c a b ");
    desktop.faults.add(SimOperation::drag, window("b"), 1);
    drag(window("b"), {x("b") + 5, 12}, {1205, 12});
    EXPECT_EQ(order(), "c a b ");
    drag(window("b"), {x("b") + 5, 12}, {1205, 12});
    EXPECT_EQ(order(), "b c a ");
}

TEST_F(SimBarTest, AChangedRowIsNotifiedWhenItHasSettledAndSoonAnyway) {
    int notified = 0;
    Registration observer = desktop.notifications.addObserver(screenParametersChangedNotification,
                                                              [&](const auto&) { ++notified; });
    desktop.applications.kill("a");
    std::unique_ptr<StatusItem> toggle;
    std::unique_ptr<StatusItem> divider;
    desktop.start([&](const Platform& platform) {
        toggle = platform.statusBar.statusItem(20);
        divider = platform.statusBar.statusItem(0);
        return std::make_shared<int>();
    });
    desktop.loop.runFor(1);
    EXPECT_EQ(notified, 0) << "its own items are its own doing";
    desktop.applications.launch("a");
    desktop.loop.runFor(0.24);
    EXPECT_EQ(notified, 0);
    desktop.loop.runFor(0.02);
    EXPECT_EQ(notified, 1);

    divider->setLength(10000);
    desktop.applications.resizeItem("a", 90);
    desktop.windowServer.setWindowAlpha(window("b"), 0);
    desktop.applications.kill("a");
    desktop.loop.runFor(0.1);
    desktop.applications.launch("a");
    desktop.loop.runFor(1);
    EXPECT_EQ(notified, 2) << "the window of an item that comes back is another one";
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(notified, 2) << i;
        const char* first = i % 2 == 0 ? "b" : "c";
        drag(window(first), {x(first) + 1, 5}, {1319, 5}, 0.05);
    }
    desktop.loop.runFor(0.06);
    EXPECT_EQ(notified, 3) << "half a second after the first change";
    desktop.loop.runFor(1);
    EXPECT_EQ(notified, 3) << "it stands as it was announced";
    desktop.application.terminate();
    desktop.applications.kill("a");
    desktop.loop.runFor(1);
    EXPECT_EQ(notified, 3);
}

TEST_F(SimBarTest, EventsGoToWhoTheyAreFor) {
    auto own = desktop.statusBar.statusItem(20);
    desktop.loop.runFor(1);
    std::string heard;
    bool swallow = false;
    own->button()->setAction([&] { heard += "action "; });
    EventMask mask = maskOf(EventType::leftMouseDown) | maskOf(EventType::leftMouseUp);
    Registration global = desktop.events.addGlobalMonitor(mask, [&](const Event& event) {
        heard += "global" + std::to_string(static_cast<int>(event.type)) + " ";
        EXPECT_EQ(event.location.y, 888);
    });
    Registration local = desktop.events.addLocalMonitor(mask, [&](const Event& event) {
        heard += "local" + std::to_string(static_cast<int>(event.type)) + " ";
        EXPECT_EQ(event.window, own->button()->windowNumber());
        return swallow;
    });
    auto clickAt = [&](double place) {
        heard.clear();
        desktop.events.move({place, 12});
        desktop.events.press(false);
        desktop.events.release(false);
        desktop.loop.runReady();
        return heard;
    };
    EXPECT_EQ(clickAt(1190), "local1 local2 action ");
    EXPECT_EQ(clickAt(1210), "global1 global2 ");
    EXPECT_EQ(desktop.events.clickCount("a"), 1);
    swallow = true;
    EXPECT_EQ(clickAt(1190), "local1 local2 ");
    swallow = false;
    own->button()->setEnabled(false);
    EXPECT_EQ(clickAt(1190), "local1 local2 ");
    global.reset();
    EXPECT_EQ(clickAt(1210), "");
}

TEST_F(SimBarTest, FaultsStrikeAsOftenAsAskedAndOnlyWhereAsked) {
    auto level = [&](const char* label) {
        return desktop.windowServer.windowLevel(window(label)).has_value();
    };
    desktop.faults.add(SimOperation::windowLevel, window("a"), 2);
    EXPECT_TRUE(level("b"));
    EXPECT_FALSE(level("a"));
    EXPECT_FALSE(level("a"));
    EXPECT_TRUE(level("a"));
    desktop.faults.add(SimOperation::windowLevel, std::nullopt, std::nullopt);
    EXPECT_FALSE(level("b"));
    desktop.faults.clear(SimOperation::windowLevel);
    EXPECT_TRUE(level("b"));
    for (const std::string& name : SimFaults::names()) {
        EXPECT_EQ(SimFaults::names()[static_cast<std::size_t>(*SimFaults::operation(name))], name);
    }
    EXPECT_EQ(SimFaults::operation("extrasMenuBar"), SimOperation::extrasMenuBar);
    EXPECT_EQ(SimFaults::operation("drag"), SimOperation::drag);
}

TEST_F(SimBarTest, PicturesNeedThePermission) {
    std::vector<WindowNumber> both{window("a"), window("c")};
    auto composite = desktop.windowServer.compositeImage(both);
    ASSERT_TRUE(composite);
    EXPECT_EQ(composite->size, (Size{240, 48}));
    auto single = desktop.windowServer.windowImage(window("c"));
    ASSERT_TRUE(single);
    auto part = cropped(*composite, {140, 0, 100, 48});
    EXPECT_EQ(*part->bitmap, *single->bitmap);
    desktop.permissions.screenRecording = false;
    EXPECT_FALSE(desktop.windowServer.windowImage(window("c")));
    EXPECT_FALSE(desktop.windowServer.compositeImage(both));
}

TEST(SimScreens, CoordinatesTurnOverTheMainDisplay) {
    SimDesktop desktop;
    int told = 0;
    Registration observer = desktop.notifications.addObserver(
        "NSApplicationDidChangeScreenParametersNotification", [&](const auto&) { ++told; });
    desktop.putDisplay({2, {-1000, -200, 1000, 800}, 32, 1});
    desktop.loop.runReady();
    EXPECT_EQ(told, 1);
    Screen second = desktop.screens.screens().at(1);
    EXPECT_EQ(second.frame, (Rect{-1000, 300, 1000, 800}));
    EXPECT_EQ(second.safeAreaTop, 32);
    EXPECT_TRUE(desktop.removeDisplay(1));
    EXPECT_EQ(desktop.screens.mainScreen()->frame, (Rect{0, 0, 1000, 800}));
    EXPECT_TRUE(desktop.removeDisplay(2));
    EXPECT_FALSE(desktop.screens.mainScreen());
}

TEST(SimDefaults, OwnChangesAreTold) {
    SimDesktop desktop;
    int told = 0;
    Registration observer = desktop.notifications.addObserver(userDefaultsDidChangeNotification,
                                                              [&](const auto&) { ++told; });
    desktop.defaults.standard().set("k", true);
    EXPECT_EQ(told, 1) << "during the call";
    desktop.defaults.write(desktop.program.bundleIdentifier, "k", 2.5);
    EXPECT_EQ(told, 1);
    desktop.loop.runReady();
    EXPECT_EQ(told, 2);
    auto other = desktop.defaults.suite("com.example.other");
    other->set("k", std::string("v"));
    desktop.loop.runReady();
    EXPECT_EQ(told, 2);
    EXPECT_EQ(desktop.defaults.read("com.example.other", "k"), DefaultsValue(std::string("v")));
    desktop.defaults.setOpenable("com.example.other", false);
    EXPECT_EQ(desktop.defaults.suite("com.example.other"), nullptr);
}

}  // namespace
}  // namespace nevo
