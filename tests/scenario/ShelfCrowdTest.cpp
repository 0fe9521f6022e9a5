// A row that is much longer than the screen is wide, in the whole program.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sstream>

#include "scenario/ScenarioRun.h"

namespace nevo {
namespace {

constexpr int crowd = 100;

Outcome run(const std::string& text) {
    std::istringstream stream(text);
    Scenario scenario = readScenario("crowd", stream);
    if (!scenario.errors.empty()) return Outcome::unreadable(scenario.errors.front());
    return ScenarioRun(scenario).run();
}

/// Opens the shelf, has an item's slot pressed, and expects that its item, and no other, comes out
/// and gets the next click.
std::string reach(int item, bool byKeys) {
    std::string steps = "hot-key\nwait 0.5\n";
    if (byKeys) {
        // From the nearer end; the first item stands at the right one.
        bool fromEnd = item < crowd / 2;
        steps += fromEnd ? "key end\n" : "key home\n";
        for (int i = fromEnd ? 0 : item + 1; i < (fromEnd ? item : crowd); ++i)
            steps += fromEnd ? "key left\n" : "key right\n";
        steps += fmt::format("expect slot i{0} focus yes\nkey return\n", item);
    } else {
        steps += fmt::format("click slot i{0}\n", item);
    }
    return steps + fmt::format(
                       "wait 1\nexpect shelf closed\nexpect floating i{0}\nclick i{0}\n"
                       "expect clicks i{0} 1\n",
                       item);
}

TEST(ShelfCrowd, EachOfAHundredItemsIsReachedByPointerAndByKeys) {
    for (const char* style : {"classic", "floatingGlass"}) {
        std::string text = fmt::format(
            "display 1 0 0 1280 800\nset nevo displayMode string shelf\n"
            "set nevo nevo_shelf_bar_style string {}\n",
            style);
        std::string order;
        for (int i = 0; i < crowd; ++i) {
            text += fmt::format("app a{0} com.example.a{0}\nitem i{0} a{0} width 24\n", i);
            order = fmt::format(" i{}", i) + order;
        }
        text +=
            "start\nsettle\ntoggle\nwait 0.5\nexpect shelf shown" + order + "\ntoggle\nwait 1\n";
        for (int i = 0; i < crowd; i += 3) text += reach(i, i % 2 == 0);
        text += reach(crowd - 2, true);
        Outcome outcome = run(text);
        EXPECT_TRUE(outcome) << style << ": " << outcome.message;
    }
}

}  // namespace
}  // namespace nevo
