// Where items come to stand in the row, and what is stored of it: alike on both desktops.

#include "desktop/Contract.h"

namespace nevo::desktoptest {
namespace {

template <class Session>
class RowContract : public Contract<Session> {};
TYPED_TEST_SUITE(RowContract, Desktops);

constexpr const char* boundary = barprotocol::boundaryName;
constexpr const char* toggle = barprotocol::keptInSightName;

TYPED_TEST(RowContract, theRowEndsAtTheSystemArea) {
    EXPECT_EQ(this->platform().statusBar.systemAreaLeft(), this->right.maxX());
}

TYPED_TEST(RowContract, aPushedOffItemComesBackOnItsSideAndItsOwnPositionIsStored) {
    this->own->setLength(10000);
    EXPECT_TRUE(this->soon([&] { return this->frame("left").maxX() < 0; }));
    this->endProgram("left");
    EXPECT_TRUE(this->storesSoon("left", this->left.width + this->right.width));
    this->show("left");
    EXPECT_TRUE(this->comesToStand({"left", "own", "right"}));
    this->own->setLength(this->ownWidth);
    EXPECT_TRUE(this->soon([&] { return this->frame("left") == this->left; }));
}

TYPED_TEST(RowContract, anUpBoundaryDividesTheRow) {
    this->showNative(boundary, 10000, this->right.width + this->ownWidth);
    EXPECT_TRUE(this->comesToStand({"left", boundary, "own", "right"}));
    this->show("new");
    EXPECT_TRUE(this->comesToStand({"left", boundary, "new", "own", "right"}));

    // A mark that another program writes while the item stands there is for its return.
    this->store("new", 7000);
    this->endProgram("new");
    EXPECT_TRUE(this->comesToStand({"left", boundary, "own", "right"}));
    EXPECT_EQ(this->stored("new"), 7000);
    this->show("new");
    EXPECT_TRUE(this->comesToStand({"left", "new", boundary, "own", "right"}));
    // It stays when others are dragged, and when the item leaves.
    this->drag(this->frame("own").center(), {this->right.maxX() - 1, this->right.midY()});
    EXPECT_TRUE(this->comesToStand({"left", "new", boundary, "right", "own"}));
    this->endProgram("left");
    EXPECT_TRUE(this->comesToStand({"new", boundary, "right", "own"}));
    this->show("left");
    EXPECT_TRUE(this->comesToStand({"left", "new", boundary, "right", "own"}));
    this->endProgram("new");
    EXPECT_TRUE(this->comesToStand({"left", boundary, "right", "own"}));
    EXPECT_EQ(this->stored("new"), 7000);
    this->show("new");
    EXPECT_TRUE(this->comesToStand({"left", "new", boundary, "right", "own"}));

    // Another position is obeyed at the next return, but not beyond the boundary.
    for (double position : {4999.0, 10.0}) {
        this->store("new", position);
        this->endProgram("new");
        EXPECT_TRUE(this->comesToStand({"left", boundary, "right", "own"}));
        EXPECT_EQ(this->stored("new"), position);
        this->show("new");
        EXPECT_TRUE(this->comesToStand(position > this->right.width
                                           ? Names{"left", boundary, "new", "right", "own"}
                                           : Names{"left", boundary, "right", "own", "new"}));
    }
}

TYPED_TEST(RowContract, aDropWritesEachPositionThatHasChangedAndTakesTheMarkOfTheDragged) {
    // Acknowledged at its return.
    this->store("left", 7000);
    this->endProgram("left");
    EXPECT_TRUE(this->comesToStand({"own", "right"}));
    this->show("left");
    EXPECT_TRUE(this->comesToStand({"left", "own", "right"}));
    this->drag(this->right.center(), this->frame("own").center());
    EXPECT_TRUE(this->comesToStand({"left", "right", "own"}));
    EXPECT_TRUE(this->storesSoon("right", this->ownWidth + this->right.width));
    EXPECT_EQ(this->stored("left"), 7000);
    this->drag(this->frame("left").center(), {this->right.maxX() - 1, this->right.midY()});
    EXPECT_TRUE(this->comesToStand({"right", "own", "left"}));
    EXPECT_TRUE(this->storesSoon("left", this->left.width));
    EXPECT_TRUE(this->storesSoon("right", this->left.width + this->ownWidth + this->right.width));
}

TYPED_TEST(RowContract, aChangedRowIsNotifiedAndOneThatKeepsChangingToo) {
    int notified = 0;
    Registration observer = this->platform().notifications.addObserver(
        screenParametersChangedNotification, [&](const auto&) { ++notified; });
    auto isNotifiedAfter = [&](const std::function<void()>& change) {
        int before = notified;
        change();
        return this->soon([&] { return notified > before; });
    };
    EXPECT_TRUE(isNotifiedAfter([&] { this->show("new"); }));
    EXPECT_TRUE(isNotifiedAfter([&] { this->endProgram("new"); }));
    EXPECT_TRUE(isNotifiedAfter([&] { this->drag(this->left.center(), this->right.center()); }));
    EXPECT_TRUE(this->comesToStand({"own", "left", "right"}));
    int before = notified;
    for (int i = 0; i < 100 && notified == before; ++i) {
        Names names = this->row();
        this->drag(this->frame(names.front()).center(),
                   {this->right.maxX() - 1, this->right.midY()});
        std::rotate(names.begin(), names.begin() + 1, names.end());
        ASSERT_TRUE(this->comesToStand(names));
    }
    EXPECT_GT(notified, before);
}

TYPED_TEST(RowContract, aDragOffTheScreenReordersInPlaceAndUnseen) {
    this->own->setLength(10000);
    EXPECT_TRUE(this->soon([&] { return this->frame("left").maxX() < 0; }));
    this->show("x");
    this->show("y");
    EXPECT_TRUE(this->comesToStand({"y", "x", "left", "own", "right"}));
    Rect screen = this->platform().screens.mainScreen()->frame;
    auto drag = [&](double targetX) {
        // Halfway it points into the bar.
        this->dragNamed("left", {screen.width - targetX, 20000}, {targetX, this->left.midY()}, [&] {
            Rect now = this->standing("left");
            EXPECT_FALSE(now.x < screen.width && now.maxX() > 0) << now.x;
        });
        EXPECT_EQ(this->frame("right"), this->right);
    };
    drag((this->frame("y").midX() + this->frame("x").midX()) / 2);
    EXPECT_TRUE(this->comesToStand({"y", "left", "x", "own", "right"}));
    drag(this->frame("y").x - 40);
    EXPECT_TRUE(this->comesToStand({"left", "y", "x", "own", "right"}));
    drag(this->frame("x").midX() + 1);
    EXPECT_TRUE(this->comesToStand({"y", "x", "left", "own", "right"}));
    // With the pointer it is the hand's, and one off the screen doesn't move it.
    Point pointer = this->platform().events.mouseLocation();
    drag(this->frame("y").x);
    EXPECT_EQ(this->platform().events.mouseLocation(), pointer);
}

TYPED_TEST(RowContract, theToggleStaysWhereItsRightSideIsWiderThanTheBar) {
    double all = this->left.width + this->ownWidth + this->right.width;
    this->showNative(toggle, 12, all + 12);
    EXPECT_TRUE(this->comesToStand({toggle, "left", "own", "right"}));
    this->own->setLength(this->platform().screens.mainScreen()->frame.width);
    EXPECT_TRUE(this->soon([&] { return this->frame(toggle).maxX() == this->right.x; }));
    EXPECT_EQ(this->frame("right"), this->right);
    EXPECT_EQ(this->frame("left").x, this->platform().screens.mainScreen()->frame.width);
    EXPECT_EQ(this->frame("left").maxX(), this->frame("own").x);
    this->own->setLength(this->ownWidth);
    EXPECT_TRUE(this->comesToStand({toggle, "left", "own", "right"}));
    EXPECT_EQ(this->frame("left"), this->left);
}

}  // namespace
}  // namespace nevo::desktoptest
