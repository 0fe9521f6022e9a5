// The rows of the rules: what tells items apart, and which buttons a rule brings.
#include "LogicTest.h"
#include "surfaces/RulesSettingsTab.h"

namespace nevo {
namespace {

class RulesSettingsTabTest : public LogicTest {
protected:
    /// A program with two items.
    void launchTwins() {
        SimOtherProgram program;
        program.handle = "Twins";
        program.application.bundleIdentifier = "org.twins";
        program.application.localizedName = "Twins";
        for (const char* name : {"Twins", "Second"}) {
            SimItemPlan item;
            item.label = name;
            item.name = name;
            program.items.push_back(item);
        }
        desktop.applications.add(program);
        desktop.applications.launch("Twins");
        desktop.loop.runFor(1);
        list->scan();
        desktop.loop.runFor(1);
    }

    /// The row of the item's picker; fails without one.
    Control rowOf(const std::string& id) {
        Control page = RulesSettingsTab(services, *list).content();
        for (Control& row : page.children.at(0).children) {
            if (row.children.back().key == "rule " + id) return row;
        }
        ADD_FAILURE() << "no row of " << id;
        return {};
    }

    AppState state{platform};
    ScreenCaptureService capture{platform};
    MenuBarScanner scanner{platform, capture};
    AccessibilityService accessibility{platform};
    SettingsServices services{platform, state, scanner, accessibility, {}, {}};
    std::shared_ptr<MenuBarItemList> list = std::make_shared<MenuBarItemList>(services, [] {});
};

TEST_F(RulesSettingsTabTest, ItemsOfOneProgramHaveTitlesOfTheirOwn) {
    launchTwins();
    EXPECT_EQ(rowOf("Twins >>> org.twins").children.back().title, "Twins");
    EXPECT_EQ(rowOf("Second >>> org.twins").children.back().title, "Twins (Second)");
}

TEST_F(RulesSettingsTabTest, OnlyAnItemThatIsAlwaysHiddenCanBeBroughtOut) {
    launchTwins();
    const std::string id = "Second >>> org.twins";
    std::vector<std::string> broughtOut;
    for (bool isPossible : {false, true}) {
        if (isPossible) {
            services.bringOut = [&](const std::string& item) { broughtOut.push_back(item); };
        }
        state.rules.setIconRule(IconRule::automatic, id);
        EXPECT_EQ(rowOf(id).children.size(), 3U) << "nothing to take away";
        state.rules.setIconRule(IconRule::alwaysShow, id);
        EXPECT_EQ(rowOf(id).children.size(), 4U);
        state.rules.setIconRule(IconRule::alwaysHide, id);
        EXPECT_EQ(rowOf(id).children.size(), isPossible ? 5U : 4U);
    }
    rowOf(id).children[2].press();
    EXPECT_EQ(broughtOut, std::vector<std::string>{id});
    rowOf(id).children[3].press();
    EXPECT_EQ(state.rules.loadIconRules(), IconRules{});
}

}  // namespace
}  // namespace nevo
