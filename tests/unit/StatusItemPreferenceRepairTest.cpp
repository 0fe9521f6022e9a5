#include "LogicTest.h"
#include "placement/StatusItemPreferenceRepair.h"

namespace nevo {
namespace {

using Mutations = std::vector<StatusItemPreferenceRepair::Mutation>;

std::string key(const std::string& name) { return "NSStatusItem Preferred Position " + name; }

class StatusItemPreferenceRepairTest : public LogicTest {
protected:
    void write(const std::string& name, DefaultsValue value) {
        desktop.defaults.write("org.example", key(name), std::move(value));
    }
    std::optional<double> read(const std::string& name) {
        return desktop.defaults.readNumber("org.example", key(name));
    }

    StatusItemPreferenceRepair preferences{desktop.defaults};
};

TEST_F(StatusItemPreferenceRepairTest, HidingWritesOnlyBelowTheThreshold) {
    EXPECT_EQ(preferences.markHidden("org.example", "Item-4 >>> org.example")->previousValue, 0.0);
    EXPECT_EQ(read("Item-0"), 5000.0) << "every unnamed item shares a key";
    EXPECT_EQ(preferences.markHidden("org.example", "Item-4 >>> org.example"), std::nullopt);
    write("Sync", 4999.9);
    EXPECT_EQ(preferences.markHidden("org.example", "Sync >>> org.example")->newValue, 5000.0);
    EXPECT_EQ(preferences.markHidden("", "Sync >>> org.example"), std::nullopt);
}

TEST_F(StatusItemPreferenceRepairTest, RepairTreatsTheItemThenAllUnnamedOnesAscending) {
    write("Sync", 5000.0);
    write("Item-2", std::int64_t{6000});
    write("Item-0", 7000.0);
    write("Item-1", 4999.9);
    write("Item-3", std::string("9000"));
    write("Other", 9000.0);
    Mutations expected{
        {key("Sync"), 5000, 212}, {key("Item-0"), 7000, 212}, {key("Item-2"), 6000, 212}};
    EXPECT_EQ(preferences.repair("", "Sync >>> org.example"), expected);
    EXPECT_EQ(read("Item-1"), 4999.9);
    EXPECT_EQ(read("Other"), 9000.0);
    EXPECT_TRUE(preferences.repair("", "Sync >>> org.example").empty()) << "nothing left to repair";
    EXPECT_TRUE(preferences.repair("", "Sync").empty()) << "no identifier to be had";
}

TEST_F(StatusItemPreferenceRepairTest, StartUpRepairsPinnedItemsOnly) {
    using Rule = AppState::IconRule;
    write("Item-0", 5000.0);
    desktop.defaults.setOpenable("org.closed", false);
    auto repairs =
        preferences.repairAlwaysShowRules({{"org.example", Rule::alwaysShow},
                                           {"Sync >>> org.closed", Rule::alwaysShow},
                                           {"Veiled >>> org.veiled", Rule::alwaysHide},
                                           {"Control Center >>> org.example", Rule::alwaysShow}});
    ASSERT_EQ(repairs.size(), 2U);
    EXPECT_EQ(repairs[0].persistedID, "Sync >>> org.closed");
    EXPECT_TRUE(repairs[0].mutations.empty()) << "listed even when there was nothing to do";
    EXPECT_EQ(repairs[1].bundleID, "org.example") << "an id that is a bundle identifier in full";
    EXPECT_EQ(repairs[1].mutations.size(), 1U);
}

TEST_F(StatusItemPreferenceRepairTest, RestoringLogsEachChange) {
    write("Sync", 5001.5);
    ScannedBarItem item;
    item.persistedID = "Sync >>> org.example";
    preferences.restoreAll({"Gone >>> org.gone", item.persistedID}, {item});
    EXPECT_TRUE(logHas(
        "[SectionMgr] restored org.example NSStatusItem Preferred Position Sync=212 (was 5001)"));
}

TEST_F(StatusItemPreferenceRepairTest, DividerFollowsTheTogglesSavedPlace) {
    const std::string own = desktop.defaults.ownDomain();
    preferences.syncSeparatorPosition();
    EXPECT_TRUE(desktop.defaults.keys(own).empty())
        << "a toggle without a saved place changes nothing";
    preferences.seedSeparatorPosition();
    EXPECT_EQ(desktop.defaults.readNumber(own, key("Nevo_Toggle")), 0.0);
    EXPECT_EQ(desktop.defaults.readNumber(own, key("Nevo_Separator")), 0.0);
    desktop.defaults.write(own, key("Nevo_Toggle"), 180.0);
    preferences.syncSeparatorPosition();
    EXPECT_EQ(desktop.defaults.readNumber(own, key("Nevo_Separator")), 180.0);
}

}  // namespace
}  // namespace nevo
