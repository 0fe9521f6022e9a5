#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "platform/menubar/MenuBarRow.h"
#include "platform/menubar/RowOrder.h"

namespace nevo {
namespace {

/// Items are named by one letter, which is their identity; their keys count up from 1.
class Row {
public:
    void insert(char name, double length, std::optional<double> position = std::nullopt,
                const std::string& domain = "other") {
        row.insert(item(name, length, position, domain));
    }
    void insertByOrder(char name, double length, const std::vector<std::string>& order) {
        row.insert(item(name, length, std::nullopt, "other"), order);
    }
    void insertNative(char name, double length, MenuBarRow::Role role) {
        auto native = item(name, length, std::nullopt, "nevo");
        native.role = role;
        row.insert(native);
    }
    static MenuBarRow::Key key(char name) { return static_cast<MenuBarRow::Key>(name); }

    /// Left to right.
    std::string order() const {
        std::string names;
        for (const auto& each : row.items()) names += each.identity;
        return names;
    }

    MenuBarRow row;

private:
    static MenuBarRow::Item item(char name, double length, std::optional<double> position,
                                 const std::string& domain) {
        return {key(name), domain, std::string(1, name), length, position};
    }
};

constexpr MenuBarRow::Room room{0, 1000, 1100};

TEST(MenuBarRow, InsertsByPositionCountedFromTheRight) {
    struct Case {
        std::optional<double> position;
        std::string expected;
    };
    // From the right c ends at 20, b at 50, a at 90; the newcomer's own 10 count in its position.
    for (const Case& c :
         {Case{0, "abcx"}, Case{29, "abcx"}, Case{30, "abxc"}, Case{59, "abxc"}, Case{60, "axbc"},
          Case{100, "xabc"}, Case{5000, "xabc"}, Case{std::nullopt, "xabc"}}) {
        Row bar;
        bar.insert('c', 20);
        bar.insert('b', 30);
        bar.insert('a', 40);
        bar.insert('x', 10, c.position);
        EXPECT_EQ(bar.order(), c.expected) << c.position.value_or(-1);
    }
}

TEST(MenuBarRow, EqualPositionsOfOneDomainStandSideBySideNewcomerLeft) {
    Row bar;
    bar.insert('c', 20);
    bar.insert('t', 24, 30, "nevo");
    bar.insert('b', 30);
    bar.insert('o', 30, 30, "other");
    bar.insert('d', 0, 30, "nevo");
    ASSERT_EQ(bar.order().find("dt"), bar.order().find('d')) << bar.order();
    // Again when the divider gets a length, wherever it stood meanwhile.
    bar.row.drop(Row::key('d'), room.right, room);
    bar.row.placeByPosition(Row::key('d'), 30);
    EXPECT_EQ(bar.order().find("dt"), bar.order().find('d')) << bar.order();
}

TEST(MenuBarRow, ACollapsedItemPushesButCountsForNothingInPositions) {
    Row bar;
    bar.insert('t', 24);
    bar.insert('d', 10000);
    bar.insert('a', 30);
    EXPECT_EQ(bar.row.slot(Row::key('a'), room)->x, room.right - 10054);
    EXPECT_EQ(bar.row.position(Row::key('a')), 54);
    EXPECT_EQ(bar.row.position(Row::key('d')), 24);
    bar.row.setLength(Row::key('d'), 9998);
    EXPECT_EQ(bar.row.position(Row::key('a')), 10052);
}

TEST(MenuBarRow, DropsByCentreAndInPlaceChangesNothing) {
    auto filled = [] {
        Row bar;
        bar.insert('c', 24);
        bar.insert('b', 60);
        bar.insert('a', 24);
        return bar;
    };
    // a from 892, b from 916, c from 976; centres 904, 946, 988.
    struct Case {
        char item;
        double center;
        std::string expected;
    };
    for (const Case& c : {Case{'a', 904, "abc"}, Case{'b', 946, "abc"}, Case{'c', 988, "abc"},
                          Case{'b', 905, "abc"}, Case{'b', 903, "bac"}, Case{'b', 989, "acb"},
                          Case{'a', 947, "bac"}, Case{'a', 1100, "bca"}, Case{'c', -9000, "cab"},
                          Case{'c', 945, "acb"}}) {
        Row bar = filled();
        bar.row.drop(Row::key(c.item), c.center, room);
        EXPECT_EQ(bar.order(), c.expected) << c.item << " at " << c.center;
    }
}

/// The row's slots as "name@x", those that have given way in brackets.
std::string places(const Row& bar, const MenuBarRow::Room& in) {
    std::string text;
    for (const auto& slot : bar.row.slots(in)) {
        std::string place =
            bar.row.find(slot.key)->identity + "@" + std::to_string(static_cast<int>(slot.x));
        text += (text.empty() ? "" : " ") + (slot.hasGivenWay ? "(" + place + ")" : place);
    }
    return text;
}

/// h T a b c, each 20 wide.
Row rowAroundToggle() {
    Row bar;
    for (char name : {'c', 'b', 'a'}) bar.insert(name, 20);
    bar.insertNative('T', 20, MenuBarRow::Role::keptInSight);
    bar.insert('h', 20);
    return bar;
}

TEST(MenuBarRow, WhatIsRightOfTheToggleGivesWayWhereItDoesNotFit) {
    struct Case {
        double barLeft;
        std::string expected;
    };
    for (const Case& c :
         {Case{0, "h@0 T@20 a@40 b@60 c@80"}, Case{20, "h@0 T@20 a@40 b@60 c@80"},
          Case{21, "h@20 T@40 (a@120) b@60 c@80"}, Case{60, "h@40 T@60 (a@120) (b@140) c@80"},
          Case{61, "h@60 T@80 (a@120) (b@140) (c@160)"},
          Case{300, "h@60 T@80 (a@120) (b@140) (c@160)"}}) {
        EXPECT_EQ(places(rowAroundToggle(), {c.barLeft, 100, 120}), c.expected) << c.barLeft;
    }
    Row bar;
    bar.insert('c', 500);
    bar.insertNative('T', 20, MenuBarRow::Role::keptInSight);
    bar.insertNative('D', 10000, MenuBarRow::Role::native);
    EXPECT_EQ(places(bar, {100, 400, 500}), "D@-9620 T@380 (c@500)");
    // Even a divider that stands on the wrong side.
    Row wrong = rowAroundToggle();
    wrong.row.setLength(Row::key('b'), 10000);
    EXPECT_EQ(places(wrong, {0, 100, 120}), "h@40 T@60 (a@120) (b@140) c@80");
}

TEST(MenuBarRow, DropsGoByTheItemsThatStand) {
    // h@40 T@60 (a) (b) c@80, centres 50, 70, 90.
    struct Case {
        char item;
        double center;
        std::string expected;
    };
    for (const Case& c : {Case{'T', 70, "hTabc"}, Case{'T', 89, "hTabc"}, Case{'T', 91, "habcT"},
                          Case{'T', 49, "Thabc"}, Case{'h', 80, "Tabhc"}, Case{'h', 60, "hTabc"},
                          Case{'c', 60, "hcTab"}, Case{'c', 90, "hTabc"}, Case{'a', 60, "haTbc"},
                          Case{'b', 95, "hTacb"}, Case{'a', -500, "ahTbc"}}) {
        Row bar = rowAroundToggle();
        bar.row.drop(Row::key(c.item), c.center, {60, 100, 120});
        EXPECT_EQ(bar.order(), c.expected) << c.item << " at " << c.center;
    }
}

TEST(MenuBarRow, AnItemPlacedByItsOwnPositionStaysWhereItWas) {
    for (double dividerLength : {0.0, 10.0, 10000.0}) {
        Row bar;
        bar.insert('c', 24);
        bar.insert('d', dividerLength);
        bar.insert('b', 60);
        bar.insert('a', 17);
        for (char name : {'a', 'b'}) {
            bar.row.placeByPosition(Row::key(name), *bar.row.position(Row::key(name)));
            EXPECT_EQ(bar.order(), "abdc") << name << " with " << dividerLength;
        }
    }
}

TEST(MenuBarRow, AnUnknownItemChangesNothing) {
    Row bar;
    bar.insert('a', 24);
    bar.row.drop(99, 0, room);
    bar.row.remove(99);
    bar.row.setLength(99, 5);
    bar.row.placeByPosition(99, 5);
    EXPECT_EQ(bar.order(), "a");
    EXPECT_FALSE(bar.row.slot(99, room));
    EXPECT_FALSE(bar.row.position(99));
}

std::vector<std::string> letters(const std::string& names) {
    std::vector<std::string> result;
    for (char name : names) result.emplace_back(1, name);
    return result;
}

TEST(RowOrder, ItemsComeBackInTheOldOrderWhicheverDocksFirst) {
    std::string docking = "abcde";
    do {
        Row bar;
        auto remembered = letters("abcde");
        for (char name : docking) {
            bar.insertByOrder(name, 24, remembered);
            // As the bar does at each change: what is written meanwhile must not lose the order.
            std::vector<std::string> present = letters(bar.order());
            remembered = mergedRowOrder(remembered, present);
        }
        ASSERT_EQ(bar.order(), "abcde") << docking;
    } while (std::next_permutation(docking.begin(), docking.end()));
}

TEST(RowOrder, AnUpBoundaryKeepsArrivalsOnTheirSide) {
    struct Case {
        std::string order;
        std::optional<double> position;
        bool isForeign;
        std::string upRow, downRow;
    };
    // Left to right a, the boundary B, b (20 wide), x the newcomer (10).
    for (const Case& c : {
             Case{"", std::nullopt, false, "aBxb", "xaBb"},  // a stranger
             Case{"axBb", std::nullopt, false, "axBb", "axBb"},
             Case{"xaBb", 10, false, "xaBb", "xaBb"},
             Case{"aBxb", std::nullopt, false, "aBxb", "aBxb"},
             Case{"aBbx", std::nullopt, false, "aBbx", "aBbx"},
             Case{"xb", std::nullopt, false, "aBxb", "xaBb"},  // no neighbour is known
             Case{"axb", std::nullopt, false, "aBxb", "axBb"},
             Case{"axBb", 10, true, "aBbx", "aBbx"},    // another program's wish
             Case{"axBb", 4999, true, "aBxb", "xaBb"},  // never beyond the boundary
             Case{"", 5000, true, "axBb", "xaBb"},      // a mark
             Case{"xaBb", 5000, true, "xaBb", "xaBb"},  // among the others by the order
             Case{"aBbx", 5000, true, "axBb", "xaBb"},
             Case{"aBbx", 5000, false, "axBb", "aBbx"},
             Case{"", 5000, false, "axBb", "xaBb"},
         }) {
        for (bool isUp : {true, false}) {
            Row bar;
            bar.insert('b', 20);
            bar.insertNative('B', isUp ? 10000 : 0, MenuBarRow::Role::boundary);
            bar.row.insert({Row::key('a'), "other", "a", 30, 5000, {}}, letters("aBb"));
            ASSERT_EQ(bar.order(), "aBb");
            bar.row.insert({Row::key('x'), "other", "x", 10, c.position, {}}, letters(c.order),
                           c.isForeign);
            EXPECT_EQ(bar.order(), isUp ? c.upRow : c.downRow)
                << c.order << " " << c.position.value_or(-1) << c.isForeign << isUp;
            // A native item is placed as if there were none.
            bar.insertNative('T', 12, MenuBarRow::Role::keptInSight);
            EXPECT_EQ(bar.order().front(), 'T');
        }
    }
    using Role = MenuBarRow::Role;
    EXPECT_EQ(MenuBarRow::roleOf(true, "Nevo_AlwaysHiddenDivider"), Role::boundary);
    EXPECT_EQ(MenuBarRow::roleOf(true, "Nevo_Toggle"), Role::keptInSight);
    EXPECT_EQ(MenuBarRow::roleOf(true, "Nevo_Separator"), Role::native);
    EXPECT_EQ(MenuBarRow::roleOf(false, "Nevo_Toggle"), Role::ordinary);
}

TEST(RowOrder, AbsentItemsStayByTheNeighboursThatHaveNotMoved) {
    struct Case {
        std::string remembered, present, expected, placed;
    };
    for (const Case& c :
         {Case{"abc", "abc", "abc", ""}, Case{"abc", "cab", "cab", ""},
          Case{"axyb", "ba", "baxy", ""}, Case{"axyb", "ba", "xyba", "a"},
          Case{"axyb", "ba", "baxy", "b"}, Case{"axyb", "ab", "axyb", "a"},
          Case{"xab", "ab", "xab", ""}, Case{"xab", "nab", "nxab", ""},
          Case{"ab", "nab", "nab", "n"}, Case{"", "ab", "ab", ""}, Case{"ab", "", "ab", ""}}) {
        EXPECT_EQ(mergedRowOrder(letters(c.remembered), letters(c.present), c.placed),
                  letters(c.expected))
            << c.remembered << " " << c.present << " " << c.placed;
    }
}

TEST(RowOrder, ItemsUnderEverNewNamesPushOutOnlyEachOther) {
    std::vector<std::string> order{"chat|a", "mail|a", "chat|b", "chat|c", "music|a", "mail|b"};
    forgetAbsent(order, {"chat|b"}, 6);
    EXPECT_EQ(order.size(), 6U) << "there is room for all";
    auto kept = order;
    forgetAbsent(kept, {"chat|b", "music|a"}, 3);
    EXPECT_EQ(kept, (std::vector<std::string>{"chat|b", "music|a"}));
    kept = order;
    forgetAbsent(kept, {"mail|a", "mail|b"}, 4);
    EXPECT_EQ(kept, (std::vector<std::string>{"mail|a", "music|a", "mail|b"}));
    kept = order;
    forgetAbsent(kept, order, 1);
    EXPECT_EQ(kept, order) << "what is there is never forgotten";
}

}  // namespace
}  // namespace nevo
