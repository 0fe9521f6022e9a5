// What both desktops must do alike, so that the simulated one can't drift from the real one.

#include <algorithm>
#include <csignal>

#include "desktop/ContractSessions.h"
#include "desktop/TestClients.h"
#include "platform/menubar/BarProtocol.h"

namespace nevo::desktoptest {
namespace {

/// Three items from left to right: another program's, one of our own that is 20 wide, and again
/// another program's.
template <class Session>
class Contract : public Session {
protected:
    void SetUp() override {
        Session::SetUp();
        show("right");
        own = this->platform().statusBar.statusItem(ownWidth);
        own->setAutosaveName("Contract_Item");
        ASSERT_TRUE(this->comesToStand({"own", "right"}));
        show("left");
        ASSERT_TRUE(comesToStand({"left", "own", "right"}));
        left = frame("left");
        right = frame("right");
    }

    void TearDown() override {
        own.reset();
        Session::TearDown();
    }

    WindowServer& windows() { return this->platform().windows; }

    void show(const std::string& label) {
        pids[label] = this->showItem(label);
        ASSERT_TRUE(this->soon([&] { return frame(label).width > 0; })) << label;
    }

    WindowNumber number(const std::string& label) {
        if (label == "own") return own->button()->windowNumber().value_or(0);
        for (WindowNumber window : listed()) {
            auto description = windows().windowDescription(window);
            if (description && description->ownerPid == pids[label]) return window;
        }
        return 0;
    }

    std::vector<WindowNumber> listed() {
        return windows().menuBarWindowList(100).value_or(std::vector<WindowNumber>());
    }

    Rect frame(const std::string& label) {
        return windows().windowFrame(number(label)).value_or(Rect());
    }

    /// By their places, left to right.
    Names row() {
        Names names;
        for (const char* label : {"left", "own", "right"}) {
            if (number(label) != 0) names.push_back(label);
        }
        std::sort(names.begin(), names.end(), [this](const auto& a, const auto& b) {
            return frame(a).midX() < frame(b).midX();
        });
        return names;
    }

    /// Whether these items soon stand in that order, side by side and nobody else with them.
    testing::AssertionResult comesToStand(const Names& expected) {
        bool stands = this->soon([&] {
            bool sideBySide = true;
            for (std::size_t i = 1; i < expected.size(); ++i) {
                sideBySide = sideBySide && frame(expected[i - 1]).maxX() == frame(expected[i]).x;
            }
            return sideBySide && row() == expected;
        });
        if (stands) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "stands as " << testing::PrintToString(row());
    }

    /// A drag by the program of a window that it names, from a place where that window may not be.
    void dragNamed(const std::string& label, Point from, Point to) {
        Platform on = this->platform();
        auto source = on.events.createEventSource();
        ASSERT_TRUE(source);
        Point middle{(from.x + to.x) / 2, to.y};
        for (auto [type, place] : {std::pair{EventType::leftMouseDown, from},
                                   {EventType::leftMouseDragged, middle},
                                   {EventType::leftMouseDragged, to},
                                   {EventType::leftMouseUp, to}}) {
            auto event = on.events.createMouseEvent(*source, type, place);
            ASSERT_TRUE(event);
            event->flags = commandModifier;
            event->fields[EventField::windowNumber] = number(label);
            on.events.post(*event);
            on.runLoop.blockFor(0.02);
        }
    }

    static constexpr double ownWidth = 20;
    std::unique_ptr<StatusItem> own;
    std::map<std::string, ProcessId> pids;
    Rect left;
    Rect right;
};

using Desktops = testing::Types<SimSession, X11Session>;
TYPED_TEST_SUITE(Contract, Desktops);

TYPED_TEST(Contract, aLongItemPushesWhatIsLeftOfItOffTheScreen) {
    this->own->setLength(10000);
    EXPECT_TRUE(this->soon([&] { return this->frame("left").maxX() < 0; }));
    EXPECT_EQ(this->frame("right"), this->right);
    EXPECT_EQ(this->frame("own").width, 10000);
    this->own->setLength(0);
    EXPECT_TRUE(this->soon([&] { return this->frame("left").maxX() == this->right.x; }));
    this->own->setLength(this->ownWidth);
    EXPECT_TRUE(this->soon([&] { return this->frame("left") == this->left; }));
    EXPECT_EQ(this->frame("right"), this->right);
}

TYPED_TEST(Contract, anItemThatGrowsFromNothingStandsAtItsSavedPosition) {
    this->own->setLength(0);
    // A bar that hears of both lengths at once has seen no growth.
    EXPECT_TRUE(this->soon([&] { return this->frame("left").maxX() == this->right.x; }));
    auto& store = this->platform().defaults.standard();
    store.set(std::string(barprotocol::preferredPositionPrefix) + "Contract_Item", 0.0);
    store.synchronize();
    this->own->setLength(this->ownWidth);
    EXPECT_TRUE(this->comesToStand({"left", "right", "own"}));
}

TYPED_TEST(Contract, aTransparentItemKeepsItsPlace) {
    WindowNumber window = this->number("left");
    for (float alpha : {0.0F, 0.5F, 1.0F}) {
        EXPECT_TRUE(this->windows().setWindowAlpha(window, alpha));
        EXPECT_NEAR(this->windows().windowAlpha(window).value_or(-1), alpha, 0.01);
        EXPECT_EQ(this->frame("left"), this->left);
        EXPECT_EQ(this->row(), (Names{"left", "own", "right"}));
    }
    EXPECT_FALSE(this->windows().setWindowAlpha(987654, 0));
}

TYPED_TEST(Contract, aMoveFloatsAnotherProgramsItemUntilItComesNearItsSlot) {
    WindowNumber window = this->number("left");
    auto before = this->listed();
    Point away{this->left.x - 300, this->left.y};
    auto isAway = [&] { return this->frame("left").x == away.x; };
    auto isBack = [&] { return this->frame("left") == this->left; };
    EXPECT_TRUE(this->windows().moveWindow(window, away));
    EXPECT_TRUE(this->soon(isAway));
    EXPECT_EQ(this->frame("right"), this->right);
    EXPECT_EQ(this->listed(), before);
    EXPECT_TRUE(this->windows().moveWindow(window, {this->left.x - 30, this->left.y}));
    EXPECT_TRUE(this->soon(isBack));
    // Partly beyond the bar's end it is kept on the bar, and off the screen it goes back.
    EXPECT_TRUE(this->windows().moveWindow(window, {-10, this->left.y}));
    EXPECT_TRUE(this->soon([&] { return this->frame("left").x == 0; }));
    this->windows().moveWindow(window, {away.x, 3000});
    EXPECT_TRUE(this->soon(isBack));

    // What floats beside a closed divider goes back when it opens.
    this->own->setLength(10000);
    EXPECT_TRUE(this->soon([&] { return this->frame("left").maxX() < 0; }));
    EXPECT_TRUE(this->windows().moveWindow(window, away));
    EXPECT_TRUE(this->soon(isAway));
    this->own->setLength(this->ownWidth);
    EXPECT_TRUE(this->soon(isBack));

    Rect ownFrame = this->frame("own");
    EXPECT_FALSE(this->windows().moveWindow(this->number("own"), away));
    EXPECT_EQ(this->frame("own"), ownFrame);
}

TYPED_TEST(Contract, aHandReordersByDragging) {
    this->drag(this->left.center(), this->right.center());
    EXPECT_TRUE(this->comesToStand({"own", "left", "right"}));
    Rect middle = this->frame("left");
    this->drag(middle.center(), {middle.midX() + 3, middle.midY()});
    this->drag(this->frame("own").center(), {this->right.maxX() - 1, this->right.midY()});
    EXPECT_TRUE(this->comesToStand({"left", "right", "own"}));
}

TYPED_TEST(Contract, aProgramDragsTheWindowThatItNames) {
    // From a place where another item lies, and from one outside of every screen.
    this->dragNamed("left", this->right.center(), {this->right.maxX() - 1, this->right.midY()});
    EXPECT_TRUE(this->comesToStand({"own", "right", "left"}));
    this->dragNamed("left", {20000, 20000}, {this->left.x - 40, this->left.midY()});
    EXPECT_TRUE(this->comesToStand({"left", "own", "right"}));
    EXPECT_EQ(this->frame("left"), this->left);
}

TYPED_TEST(Contract, anEndedProgramsItemGoesAndItsNumberIsNeverUsedAgain) {
    WindowNumber window = this->number("left");
    this->endProgram("left");
    EXPECT_TRUE(this->comesToStand({"own", "right"}));
    EXPECT_FALSE(this->windows().windowFrame(window));
    EXPECT_FALSE(this->windows().windowAlpha(window));
    EXPECT_FALSE(this->windows().setWindowAlpha(window, 0));
    this->show("left");
    EXPECT_TRUE(this->soon([&] { return this->frame("left") == this->left; }));
    EXPECT_NE(this->number("left"), window);
}

class ContractOnX11 : public Contract<X11Session> {
protected:
    Item barItem(const std::string& label) {
        for (const Item& item : items()) {
            if (item.pid == pids.at(label)) return item;
        }
        throw Failed("there is no item of " + label);
    }
    std::optional<float> alpha(const std::string& label) {
        return windows().windowAlpha(number(label));
    }
};

TEST_F(ContractOnX11, whatIsMadeTransparentTwiceIsHeldByBothAndByALaterBar) {
    auto holder = std::make_unique<LeaseHolder>();
    for (const char* label : {"left", "right"}) {
        holder->bar().setOpacity(barItem(label), 0, holder->window());
        ASSERT_TRUE(soon([&] { return alpha(label) == 0.0F; }));
    }
    // Asking again for what one holds costs nothing, and does no harm.
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(windows().setWindowAlpha(number("right"), 0));
    holder.reset();
    EXPECT_TRUE(soon([&] { return alpha("left") == 1.0F; }));
    EXPECT_EQ(alpha("right"), 0.0F);

    kill(bar(), SIGTERM);
    startBar();
    ASSERT_TRUE(soon([&] { return alpha("right") == 1.0F; }));
    EXPECT_TRUE(windows().setWindowAlpha(number("right"), 0));
    EXPECT_EQ(alpha("right"), 0.0F);
    EXPECT_TRUE(windows().setWindowAlpha(number("right"), 1));
    EXPECT_EQ(alpha("right"), 1.0F);
}

}  // namespace
}  // namespace nevo::desktoptest
