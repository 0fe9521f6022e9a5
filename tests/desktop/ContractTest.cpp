// What both desktops must do alike, so that the simulated one can't drift from the real one.

#include <csignal>

#include "desktop/Contract.h"
#include "desktop/TestClients.h"
#include "platform/menubar/BarProtocol.h"

namespace nevo::desktoptest {
namespace {

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

TYPED_TEST(Contract, aMovedItemFloatsBesideTheToggleInARoomThatCountsInNoFrame) {
    const std::string toggle = barprotocol::keptInSightName;
    EXPECT_FALSE(this->windows().moveWindow(this->number("left"), {300, 0})) << "there is none";
    this->showNative(toggle, 30, this->right.width + 30);
    ASSERT_TRUE(this->comesToStand({"left", "own", toggle, "right"}));
    WindowNumber window = this->number("left");
    Rect slot = this->frame("left");
    Rect toggleFrame = this->frame(toggle);
    auto before = this->listed();
    auto shift = [&](const std::string& label) {
        return this->windows().roomShift(this->number(label));
    };
    auto isOut = [&] {
        return this->frame("left").x == this->right.x - slot.width && shift(toggle) == -slot.width;
    };
    auto isClosed = [&] { return this->frame("left") == slot && shift(toggle) == 0; };

    EXPECT_TRUE(this->windows().moveWindow(window, {slot.x - 300, slot.y}));
    EXPECT_TRUE(this->soon(isOut));
    EXPECT_EQ(this->frame("right"), this->right);
    EXPECT_EQ(this->frame(toggle), toggleFrame);
    EXPECT_EQ(shift("right"), 0);
    EXPECT_EQ(this->listed(), before);
    EXPECT_TRUE(this->windows().moveWindow(window, {slot.x - 30, slot.y}));
    EXPECT_TRUE(this->soon(isClosed));
    // Off the screen it goes back.
    EXPECT_TRUE(this->windows().moveWindow(window, {300, slot.y}));
    EXPECT_TRUE(this->soon(isOut));
    this->windows().moveWindow(window, {300, 3000});
    EXPECT_TRUE(this->soon(isClosed));

    // What floats beside a closed divider goes back when it opens; the room doesn't close while the
    // pointer rests on the toggle.
    this->own->setLength(10000);
    EXPECT_TRUE(this->soon([&] { return this->frame("left").maxX() < 0; }));
    EXPECT_TRUE(this->windows().moveWindow(window, {300, slot.y}));
    EXPECT_TRUE(this->soon(isOut));
    this->movePointer({toggleFrame.midX() - slot.width, toggleFrame.midY()});
    this->own->setLength(this->ownWidth);
    EXPECT_TRUE(this->soon([&] { return this->frame("left").x == slot.x; }));
    EXPECT_EQ(shift(toggle), -slot.width);
    EXPECT_EQ(shift("left"), -slot.width);
    this->movePointer({300, 300});
    EXPECT_TRUE(this->soon(isClosed));

    // A hand's drag of the float holds.
    EXPECT_TRUE(this->windows().moveWindow(window, {300, slot.y}));
    EXPECT_TRUE(this->soon(isOut));
    Point middle = this->frame("left").center();
    this->drag(middle, {middle.x + 4, middle.y});
    EXPECT_TRUE(this->comesToStand({"own", toggle, "left", "right"}));
    EXPECT_EQ(shift(toggle), 0);

    Rect ownFrame = this->frame("own");
    EXPECT_FALSE(this->windows().moveWindow(this->number("own"), {300, slot.y}));
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

template <class Session>
class ScreenContract : public Session {};
TYPED_TEST_SUITE(ScreenContract, Desktops);

TYPED_TEST(ScreenContract, eachScreenHasItsBarAndTheLastNotificationComesWhenAllStand) {
    auto values = [this] {
        std::vector<std::pair<Rect, Rect>> result;
        for (const Screen& screen : this->platform().screens.screens())
            result.emplace_back(screen.frame, screen.visibleFrame);
        return result;
    };
    decltype(values()) seen;
    auto observer = this->platform().notifications.addObserver(
        screenParametersChangedNotification, [&](const Notification&) { seen = values(); });
    decltype(seen) both{{{0, 0, 800, 400}, {0, 0, 800, 376}},
                        {{-600, 200, 500, 300}, {-600, 200, 500, 276}}};
    this->setScreens({800, 400}, {-600, -100, 500, 300});
    EXPECT_TRUE(this->soon([&] { return seen == both; })) << testing::PrintToString(seen.size());
    EXPECT_EQ(values(), both);
    EXPECT_EQ(this->platform().screens.mainScreen()->frame, both.front().first);
    this->removeSecondScreen();
    both.pop_back();
    EXPECT_TRUE(this->soon([&] { return seen == both; }));
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
