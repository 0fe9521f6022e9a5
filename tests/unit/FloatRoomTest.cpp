// Where an item that has been brought out stands, and what makes way for it.
#include <gtest/gtest.h>

#include "platform/menubar/FloatRoom.h"

namespace nevo {
namespace {

using Key = MenuBarRow::Key;

constexpr Key hidden = 1;
constexpr Key seen = 2;
constexpr Key toggle = 4;
constexpr Key clock = 5;
constexpr Key mail = 6;

/// hidden (40 wide) | seen (100) | divider | toggle (30) | clock (60) | mail (50): the toggle at
/// 360 in a bar of 500 whose system area begins there and ends at 600.
class FloatRoomTest : public testing::Test {
protected:
    FloatRoomTest() { make(10000); }
    void make(double dividerLength) {
        row = MenuBarRow();
        MenuBarRow::Order order{"mail", "clock", "toggle", "divider", "seen", "hidden"};
        add(mail, "mail", 50, MenuBarRow::Role::ordinary);
        add(clock, "clock", 60, MenuBarRow::Role::ordinary);
        add(toggle, "toggle", 30, MenuBarRow::Role::keptInSight);
        add(3, "divider", dividerLength, MenuBarRow::Role::native);
        add(seen, "seen", 100, MenuBarRow::Role::ordinary);
        add(hidden, "hidden", 40, MenuBarRow::Role::ordinary);
    }
    void add(Key key, const std::string& name, double length, MenuBarRow::Role role) {
        row.insert({key, name, name, length, {}, role});
    }
    bool begin(Key key, bool pointerRests = false) {
        return floatRoom.begin(row, key, room, pointerRests, isSeen);
    }
    /// Where the layout has the item, or the float itself; -1 for one that has given way.
    double x(Key key) {
        MenuBarRow::Room open = floatRoom.update(row, room, isSeen);
        if (floatRoom.item() == key) return floatRoom.x(row, open);
        auto slot = *row.slot(key, open);
        return slot.hasGivenWay ? -1 : slot.x;
    }

    MenuBarRow row;
    MenuBarRow::Room room{0, 500, 600};
    FloatRoom floatRoom;
    FloatRoom::IsSeen isSeen = [](Key) { return true; };
};

TEST_F(FloatRoomTest, ARoomOpensRightOfTheToggleAndCountsInNoPosition) {
    double position = *row.position(seen);
    ASSERT_TRUE(begin(hidden));
    EXPECT_EQ(x(toggle), 320);
    EXPECT_EQ(x(hidden), 350);
    EXPECT_EQ(x(clock), 390);
    EXPECT_EQ(row.position(seen), position);
    // It grows with its item, and stays after it until it is closed.
    row.setLength(hidden, 70);
    EXPECT_EQ(x(toggle), 290);
    floatRoom.close();
    EXPECT_EQ(x(toggle), 290);
    floatRoom.end();
    EXPECT_EQ(x(toggle), 290);
    EXPECT_TRUE(floatRoom.isLeftOpen());
    // What is dropped into it stands right of the toggle.
    row.drop(hidden, 325, floatRoom.update(row, room, isSeen));
    EXPECT_EQ(row.items()[row.items().size() - 3].key, hidden);
    floatRoom.close();
    EXPECT_EQ(x(toggle), 290) << "its own width is in the row now";
}

TEST_F(FloatRoomTest, UnderARestingPointerTheItemComesOutLeftOfTheToggle) {
    ASSERT_TRUE(begin(hidden, true));
    EXPECT_EQ(x(toggle), 360);
    EXPECT_EQ(x(hidden), 320);
    // The section opens: the ground is taken, by what can be seen.
    make(0);
    isSeen = [](Key key) { return key != seen; };
    EXPECT_EQ(x(hidden), 320);
    isSeen = [](Key) { return true; };
    EXPECT_EQ(x(toggle), 320);
    EXPECT_EQ(x(hidden), 350);
}

TEST_F(FloatRoomTest, WhereTheRightSideIsFullItComesOutLeftOrTheLeftmostGiveWay) {
    row.setLength(clock, 420);  // toggle at 0
    ASSERT_TRUE(begin(hidden));
    EXPECT_EQ(x(hidden), 30) << "no ground left of the toggle";
    EXPECT_EQ(x(clock), -1);
    EXPECT_EQ(x(mail), 450);
    EXPECT_EQ(x(toggle), 0) << "it isn't moved more than need be";
    floatRoom.end();
    floatRoom.close();
    EXPECT_EQ(x(clock), 30);

    row.setLength(clock, 360);  // 60 free
    row.setLength(hidden, 61);
    ASSERT_TRUE(begin(hidden));
    EXPECT_EQ(x(clock), -1);
    row.setLength(hidden, 60);
    EXPECT_EQ(x(clock), 90);
    EXPECT_EQ(x(toggle), 0);
}

TEST_F(FloatRoomTest, WhatIsTooWideOrGoneHasNoRoom) {
    row.setLength(seen, 301);
    EXPECT_FALSE(begin(seen));
    EXPECT_TRUE(begin(hidden));
    EXPECT_FALSE(begin(seen));
    EXPECT_EQ(floatRoom.item(), hidden);
    row.remove(hidden);
    x(toggle);
    EXPECT_FALSE(floatRoom.item());
    row.remove(toggle);
    EXPECT_FALSE(begin(seen));
}

}  // namespace
}  // namespace nevo
