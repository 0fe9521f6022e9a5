// What must never stay transparent, and what must never be seen.
#include "LogicTest.h"
#include "placement/ItemOpacity.h"

namespace nevo {
namespace {

using Reason = ItemOpacity::Reason;

constexpr Reason allReasons[] = {Reason::blanked,      Reason::broughtOut,   Reason::hiddenInFront,
                                 Reason::shownInFront, Reason::hiddenByRule, Reason::shownByRule,
                                 Reason::stray};

bool hides(Reason reason) {
    return reason == Reason::blanked || reason == Reason::hiddenInFront ||
           reason == Reason::hiddenByRule || reason == Reason::stray;
}

class ItemOpacityTest : public LogicTest {
protected:
    float alpha() const { return *platform.windows.windowAlpha(window); }

    WindowNumber window = launch("Item", "org.item", 30);
    ItemOpacity opacity{platform.windows};
};

TEST_F(ItemOpacityTest, TheStrongestReasonDecidesWhateverCameFirst) {
    for (Reason strong : allReasons) {
        for (Reason weak : allReasons) {
            if (!(strong < weak)) continue;
            for (bool strongFirst : {true, false}) {
                opacity.add(strongFirst ? strong : weak, window);
                opacity.add(strongFirst ? weak : strong, window);
                EXPECT_EQ(alpha(), hides(strong) ? 0.0F : 1.0F);
                opacity.remove(strong, window);
                EXPECT_EQ(alpha(), hides(weak) ? 0.0F : 1.0F) << "the other one is left";
                opacity.remove(weak, window);
                EXPECT_EQ(alpha(), 1.0F) << "none is left";
            }
        }
    }
}

TEST_F(ItemOpacityTest, ARuleReplacesTheOneBefore) {
    opacity.setRule(window, true, false);
    opacity.setRule(window, false, true);
    EXPECT_EQ(alpha(), 1.0F);
    EXPECT_EQ(opacity.alwaysShowProtectedWIDs(), std::set<WindowNumber>{window});
    opacity.setRule(window, true, false);
    EXPECT_EQ(opacity.alphaHiddenWindows(), std::set<WindowNumber>{window});
    EXPECT_TRUE(opacity.alwaysShowProtectedWIDs().empty());
    opacity.add(Reason::broughtOut, window);
    EXPECT_TRUE(opacity.alphaHiddenWindows().empty());
    opacity.remove(Reason::broughtOut, window);
    opacity.setRule(window, false, false);
    EXPECT_EQ(alpha(), 1.0F);
}

TEST_F(ItemOpacityTest, ARefusedWriteIsMadeUpFor) {
    opacity.add(Reason::stray, window);
    desktop.faults.add(SimOperation::setWindowAlpha, window, 1);
    opacity.removeAll(Reason::stray);
    EXPECT_EQ(alpha(), 0.0F);
    opacity.writeAgain();
    EXPECT_EQ(alpha(), 1.0F);
}

TEST_F(ItemOpacityTest, AtTheEndAndOutsideTheBarEverythingIsOpaque) {
    WindowNumber other = launch("Other", "org.other", 30);
    for (WindowNumber each : {window, other}) opacity.add(Reason::hiddenByRule, each);
    opacity.forgetOthersThan({other});
    EXPECT_EQ(alpha(), 1.0F);
    EXPECT_FALSE(opacity.has(Reason::hiddenByRule, window));
    opacity.end();
    EXPECT_EQ(*platform.windows.windowAlpha(other), 1.0F);
    EXPECT_FALSE(opacity.add(Reason::blanked, other));
    EXPECT_EQ(*platform.windows.windowAlpha(other), 1.0F);
}

}  // namespace
}  // namespace nevo
