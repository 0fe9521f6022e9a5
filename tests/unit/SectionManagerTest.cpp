// The three status items and the sections they define, at the edges that decide which side an item
// is on.
#include "LogicTest.h"
#include "placement/SectionManager.h"

namespace nevo {
namespace {

ScannedBarItem itemAt(double centerX) {
    ScannedBarItem item;
    item.persistedID = "Item >>> org.example";
    item.centerX = centerX;
    return item;
}

class SectionManagerTest : public LogicTest {
protected:
    void SetUp() override {
        desktop.loop.runFor(1);
        toggleX = SectionManager::frame(*sections.toggleItem)->x;
    }

    /// Opens the divider to `length`, left of an item of `width` points beside the toggle.
    void placeDivider(double length, double width) {
        launch("Between", "org.between", width);
        std::string key = "NSStatusItem Preferred Position Nevo_Separator";
        desktop.defaults.write(desktop.defaults.ownDomain(), key, 4000.0);
        sections.hiddenDivider->setLength(length);
        desktop.loop.runFor(1);
        divider = *SectionManager::frame(*sections.hiddenDivider);
    }

    std::size_t hiddenAt(double centerX) {
        return sections.classify({itemAt(centerX)})[SectionName::hidden].size();
    }

    SectionManager sections{platform};
    double toggleX = 0;
    Rect divider;
};

TEST_F(SectionManagerTest, DividerWithoutWidthLeavesTheToggleToDecide) {
    EXPECT_EQ(hiddenAt(toggleX - 2.0), 0U) << "the boundary itself is visible";
    EXPECT_EQ(hiddenAt(toggleX - 2.0001), 1U);
    placeDivider(2.0, 40);
    EXPECT_EQ(hiddenAt(divider.midX() + 5), 1U) << "a divider of exactly 2 points isn't usable";
}

TEST_F(SectionManagerTest, DividerNearTheToggleDecides) {
    placeDivider(10.0, 194.0);
    EXPECT_EQ(hiddenAt(divider.midX() - 2.0), 0U);
    EXPECT_EQ(hiddenAt(divider.midX() - 2.5), 1U);
}

TEST_F(SectionManagerTest, DividerTooFarFromTheToggleDoesNotDecide) {
    placeDivider(10.0, 195.0);
    EXPECT_EQ(hiddenAt(divider.midX() + 10), 1U) << "200 points away: the toggle decides";
}

TEST_F(SectionManagerTest, CollapsedIsALengthNotAnEquality) {
    sections.hiddenDivider->setLength(9998.9);
    EXPECT_FALSE(sections.isHiddenDividerCollapsed());
    sections.hiddenDivider->setLength(9999.0);
    EXPECT_TRUE(sections.isHiddenDividerCollapsed());
}

TEST_F(SectionManagerTest, ItemsOfAnotherScreenAreInNoSectionUnlessTheDividerIsCollapsed) {
    desktop.putDisplay({7, {3000, 0, 1000, 800}, 0, 2});
    auto count = [&] {
        auto result = sections.classify({itemAt(3500)});
        return result[SectionName::hidden].size() + result[SectionName::visible].size();
    };
    EXPECT_EQ(count(), 0U);
    double edge = platform.screens.mainScreen()->frame.maxX();
    EXPECT_EQ(sections.classify({itemAt(edge)})[SectionName::visible].size(), 1U)
        << "edges belong to the screen";
    sections.setDividerLength(*sections.hiddenDivider, true);
    EXPECT_EQ(count(), 1U);
}

TEST_F(SectionManagerTest, WithoutAnyFrameNothingIsHidden) {
    desktop.faults.add(SimOperation::statusItemWindow, std::nullopt, std::nullopt);
    EXPECT_EQ(hiddenAt(-5000), 0U);
    EXPECT_TRUE(logHas("[Classify] no reference frame, all visible"));
    EXPECT_TRUE(sections.ownWindowIDs().empty());
}

TEST_F(SectionManagerTest, ExpandingRestoresTransparentWindowsOnlyWhenAsked) {
    WindowNumber window = launch("Veiled", "org.veiled", 30);
    WindowNumber ruled = launch("Ruled", "org.ruled", 30);
    sections.opacity.add(ItemOpacity::Reason::stray, window);
    sections.opacity.setRule(ruled, true, false);
    sections.expand(false);
    EXPECT_EQ(platform.windows.windowAlpha(window), 0.0F);
    sections.expand(true);
    EXPECT_EQ(platform.windows.windowAlpha(window), 1.0F);
    EXPECT_EQ(platform.windows.windowAlpha(ruled), 0.0F) << "a rule outlasts the opening";
}

TEST_F(SectionManagerTest, AlwaysHiddenDividerIsMadeAnewWithTheItemsThatBelongBehindIt) {
    ScannedBarItem item = itemAt(100);
    item.bundleID = "org.example";
    sections.recreateAlwaysHiddenDivider({item.persistedID, "Gone >>> org.gone"}, {item}, 421);
    EXPECT_EQ(desktop.defaults.readNumber("org.example", "NSStatusItem Preferred Position Item"),
              5000.0);
    EXPECT_TRUE(
        logHas("[SectionMgr] wrote org.example NSStatusItem Preferred Position Item=5000 (was 0)"));
    EXPECT_TRUE(logHas("[SectionMgr] alwaysHiddenDivider recreated at position=421"));
    EXPECT_TRUE(sections.alwaysHiddenDivider->isVisible());
    EXPECT_EQ(sections.alwaysHiddenDivider->length(), 10000.0);
    sections.reapplyDividerVisibilityAfterWake();
    EXPECT_TRUE(
        logHas("[SectionMgr] reapplyDividerVisibilityAfterWake: hiddenCollapsed=false, "
               "alwaysHiddenActive=true"));
    sections.deactivateAlwaysHiddenDivider();
    EXPECT_FALSE(sections.alwaysHiddenDivider->isVisible());
    EXPECT_EQ(sections.alwaysHiddenDivider->length(), -1.0);
}

}  // namespace
}  // namespace nevo
