// What a user is promised of always-hidden items and of the row's order, over rows made up from a
// seed: each line that is played is one of the scenario language, and a failure prints them all.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "entry/NevoApp.h"
#include "randomrun/RandomSource.h"
#include "scenario/Command.h"
#include "scenario/ScenarioRun.h"

namespace nevo {
namespace {

/// What items and the toggle have of the main display.
constexpr int barEnd = 1440 - static_cast<int>(SimBar::systemAreaWidth);
constexpr int room = barEnd - 20;
constexpr int narrowest = 16;

class Rows : public testing::TestWithParam<int> {
protected:
    void play(const std::string& line) {
        played += line + "\n";
        LineReader reader(*splitLine(line));
        Step step = readCommand(reader, false);
        ASSERT_EQ(reader.error(), "") << line;
        Outcome outcome = step(run);
        ASSERT_TRUE(outcome) << outcome.message << "\n" << played;
        desktop.loop.runReady();
        desktop.reap();
    }

    /// Wider than the bar now and then.
    void fillRow() {
        int left = random.between(narrowest, random.chance(30) ? 2 * room : room);
        int count = random.between(1, 60);
        int widest = random.oneOf(std::vector<int>{30, 100, 300});
        for (int i = 0; i < count && left >= narrowest; ++i) {
            int width = std::min(left, random.between(narrowest, widest));
            left -= width;
            std::string name = fmt::format("i{}", i);
            names.push_back(name);
            play(fmt::format("app {} com.example.{}", name, name));
            play(fmt::format("item {} {} name {} width {}", name, name, name, width));
        }
        play("wait 0.1");
    }

    /// Puts the toggle anywhere in the open section, by hand.
    void placeToggle() {
        play("start");
        rest();
        if (!isOpen()) play("toggle");
        rest();
        double x = random.between(std::max(1, barEnd - rowWidth()), barEnd);
        play(fmt::format("drag toggle to {}", x));
        rest();
        if (isOpen()) play("toggle");
        rest();
        former = row();
    }

    void setRule(const std::string& name, const char* rule) {
        play(fmt::format("rule \"{} >>> com.example.{}\" {}", name, name, rule));
        if (random.chance(60)) rest();
    }

    void pinSome() {
        int count = random.between(1, 5);
        for (int i = 0; i < count; ++i) {
            const std::string& name = random.oneOf(names);
            if (!isPinned(name)) pinned.push_back(name);
            setRule(name, "alwaysHide");
        }
        rest();
        check("after the rules");
    }

    void logIn() {
        play("quit");
        play("wait 1");
        for (const std::string& name : names) play("kill " + name);
        play("wait 1");
        std::vector<std::string> coming = names;
        bool isFirst = random.chance(50);
        if (isFirst) play("start");
        while (!coming.empty()) {
            std::size_t at = random.below(coming.size());
            play("launch " + coming[at]);
            if (random.chance(20)) play("wait 0.3");
            coming.erase(coming.begin() + static_cast<std::ptrdiff_t>(at));
        }
        if (!isFirst) play("start");
    }

    void happen() {
        const std::string& name = random.oneOf(random.chance(50) ? names : pinned);
        switch (random.below(4)) {
            case 0:
                play("kill " + name);
                play(fmt::format("wait {}", random.between(0, 3)));
                play("launch " + name);
                break;
            case 1:
                play("quit");
                play("wait 1");
                play("start");
                break;
            case 2:
                play("crash");
                play(fmt::format("wait {}", random.between(0, 3)));
                play("start");
                break;
            default:
                if (!isShelf) clickTwice();
        }
        rest();
    }

    void clickTwice() {
        if (!isSomethingHidden()) return;
        bool wasOpen = isOpen();
        for (bool opens : {!wasOpen, wasOpen}) {
            play("click toggle");
            rest();
            EXPECT_EQ(isOpen(), opens) << played;
            check(opens ? "in the open section" : "in the closed section");
        }
    }

    /// Whatever Nevo does after an event is done by then.
    void rest() { play("wait 8"); }

    void check(const char* when) {
        SCOPED_TRACE(when);
        std::set<std::string> fitting = withRoom();
        for (const std::string& name : row()) {
            EXPECT_EQ(isSeen(name), fitting.contains(name)) << name << "\n" << played;
        }
        EXPECT_EQ(ordinary(row()), ordinary(former)) << played;
    }

    /// What has to be seen: the toggle, what stands from the system area to it, and in an open
    /// section what stands left of it; each as far as there is room for a part of it.
    std::set<std::string> withRoom() {
        std::vector<std::string> claims = ordinary(row());
        std::reverse(claims.begin(), claims.end());
        auto toggle = std::find(claims.begin(), claims.end(), "toggle");
        if (!isOpen()) claims.erase(toggle + 1, claims.end());
        std::rotate(claims.begin(), toggle, toggle + 1);
        auto right = static_cast<std::size_t>(toggle - claims.begin());
        std::set<std::string> fitting;
        double left = barEnd;
        for (std::size_t i = 0; i < claims.size() && left > 0; ++i) {
            left -= desktop.bar.find(windowOf(claims[i]))->length;
            // Right of the toggle whatever doesn't fit wholly makes room.
            if (left < 0 && i <= right) break;
            fitting.insert(claims[i]);
        }
        return fitting;
    }

    std::vector<std::string> row() {
        std::vector<std::string> result;
        for (WindowNumber window : desktop.bar.order()) {
            std::string name = run.shortName(desktop.bar.find(window)->label);
            if (name.find("divider") == std::string::npos) result.push_back(name);
        }
        return result;
    }
    std::vector<std::string> ordinary(std::vector<std::string> all) {
        std::erase_if(all, [this](const std::string& name) { return isPinned(name); });
        return all;
    }
    bool isPinned(const std::string& name) const {
        return std::find(pinned.begin(), pinned.end(), name) != pinned.end();
    }
    bool isSomethingHidden() {
        auto all = ordinary(row());
        return !all.empty() && all.front() != "toggle";
    }
    WindowNumber windowOf(const std::string& name) {
        std::string problem;
        return run.window(name, problem);
    }
    bool isSeen(const std::string& name) {
        WindowNumber window = windowOf(name);
        return desktop.bar.isOnScreen(window) && desktop.windows.find(window)->alpha > 0;
    }
    bool isOpen() { return run.ownItem("divider")->length() == 0; }
    int rowWidth() {
        double width = 0;
        for (const std::string& name : names) {
            width += desktop.bar.findLabel(name)->length;
        }
        return static_cast<int>(width);
    }

    RandomSource random{static_cast<std::uint64_t>(GetParam())};
    ScenarioRun run{"row", [] { return std::nullopt; }};
    SimDesktop& desktop = run.desktop();
    std::string played;
    std::vector<std::string> names;
    std::vector<std::string> pinned;
    /// Before any rule.
    std::vector<std::string> former;
    bool isShelf = random.chance(50);
};

TEST_P(Rows, KeepTheirOrderAndHideWhatIsPinned) {
    ASSERT_NO_FATAL_FAILURE(fillRow());
    ASSERT_NO_FATAL_FAILURE(placeToggle());
    if (isShelf) {
        play("quit");
        play("wait 1");
        play("set nevo displayMode string shelf");
        play("start");
        rest();
    }
    check("before any rule");
    if (HasFailure()) return;
    pinSome();
    if (HasFailure()) return;
    for (int i = random.between(1, 5); i > 0 && !HasFailure(); --i) {
        happen();
        check("after an event");
    }
    if (HasFailure()) return;
    for (int i = 0; i < 3 && !HasFailure(); ++i) {
        logIn();
        rest();
        check("after a login");
    }
    if (HasFailure()) return;
    while (!pinned.empty()) {
        std::size_t at = random.below(pinned.size());
        std::string name = pinned[at];
        pinned.erase(pinned.begin() + static_cast<std::ptrdiff_t>(at));
        setRule(name, "auto");
    }
    rest();
    check("when all rules have gone");
}

INSTANTIATE_TEST_SUITE_P(Seeds, Rows, testing::Range(1, 101));

}  // namespace
}  // namespace nevo
