// The windows as a screen reader and the keyboard have them.

#include <algorithm>
#include <set>

#include "desktop/SettingsSession.h"

namespace nevo::desktoptest {
namespace {

class Accessibility : public SettingsSession {
protected:
    using Parts = std::vector<Accessible>;

    /// Each control has a name, and no two of a group the same one.
    void checkNames(const std::string& page) const {
        Parts all = parts();
        std::set<std::pair<Names, std::string>> known;
        for (const Accessible& part : all) {
            if (!part.is(Accessible::focusable)) continue;
            EXPECT_NE(part.name, "") << page << ": a " << part.role << " without a name at "
                                     << testing::PrintToString(part.place);
            auto isNew = known.emplace(groupsOf(all, part), part.role + " " + part.name).second;
            EXPECT_TRUE(isNew) << page << ": twice the " << part.role << " " << part.name;
        }
    }
    /// Where Tab is to stop, in reading order.
    static Parts stopsOf(Parts all) {
        std::erase_if(all, [](const Accessible& part) {
            bool takesKeys = part.is(Accessible::focusable) && part.is(Accessible::enabled);
            // Of rows and of a choice one is a stop, and the arrow keys go on to the others.
            bool isRow = part.role == "list item" || part.role == "page tab";
            bool isOther = part.role == "radio button" && !part.is(Accessible::checked);
            return !takesKeys || isRow || isOther;
        });
        return all;
    }
    /// Tab leads around all controls as they are read, and they are read from top to bottom.
    void checkTabOrder(const std::string& page) {
        Parts stops = stopsOf(parts());
        for (std::size_t i = 1; i < stops.size(); ++i) {
            // The tabs stay in sight while their page scrolls.
            if (stops[i - 1].role == "page tab list") continue;
            EXPECT_GT(stops[i].place.maxY(), stops[i - 1].place.y)
                << page << ": " << stops[i].name << " is read after " << stops[i - 1].name;
        }
        auto first = std::find_if(stops.begin(), stops.end(), [](const Accessible& stop) {
            return stop.is(Accessible::focused);
        });
        ASSERT_NE(first, stops.end()) << page << ": the keys go nowhere";
        std::rotate(stops.begin(), first + 1, stops.end());
        if (stops.size() == 1) return;
        for (const Accessible& stop : stops) {
            hand->press(tabKey);
            waitFor(page + ": Tab leads on to " + stop.name, [&] {
                Parts now = stopsOf(parts());
                return std::any_of(now.begin(), now.end(), [&](const Accessible& part) {
                    return part.is(Accessible::focused) && part.path == stop.path;
                });
            });
        }
    }
    void check(const std::string& page) {
        checkNames(page);
        checkTabOrder(page);
    }
};

TEST_F(Accessibility, ofEachPageOfTheSettings) {
    // With every control that a setting brings along.
    startAll(R"(, "displayMode": "shelf", "showOnHover": true, "autoHideEnabled": true,
                  "nevo_shelf_appearance": "custom", "nevo_custom_icon_name": "brand:moon")");
    startProgram("xev");
    waitFor("the program has its window", [this] { return !windowsBelowBar().empty(); });
    openSettings();
    EXPECT_EQ(control("dialog", "Nevo Settings").name, "Nevo Settings");
    for (const char* page : {"General", "Layout", "Bar", "Rules", "Shortcuts"}) {
        goTo(page);
        if (page == std::string("Rules")) {
            choose("While in front", "xev");
            choose("Parcellite", "Always hide", "Add a rule");
            control("push button", "Remove");
            clickOn("page tab", page);
        }
        check(page);
    }
}

TEST_F(Accessibility, ofEachStepOfTheFirstRun) {
    startDesktop();
    startNevo();
    // Return takes what each step offers.
    for (const char* page :
         {"Welcome to Nevo", "What Nevo does", "Where should hidden items show?", "Permissions"}) {
        control("label", page);
        check(page);
        hand->press(returnKey);
        waitFor(std::string(page) + " is over", [&] { return !has("label", page); });
    }
    waitForOnScreen({});
}

}  // namespace
}  // namespace nevo::desktoptest
