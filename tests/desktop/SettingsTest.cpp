// The settings window as a person uses it: each change is in force at once, and stored.

#include <algorithm>

#include "desktop/SettingsSession.h"

namespace nevo::desktoptest {
namespace {

class Settings : public SettingsSession {
protected:
    void SetUp() override {
        SettingsSession::SetUp();
        startAll();
        openSettings();
    }
    std::vector<std::uint32_t> pixelsOfToggle() const {
        return screenshot().pixels(toggleItem().place);
    }
    Names entriesAtLogin() const {
        Names lines;
        auto autostart = folder / "home/.config/autostart";
        if (!std::filesystem::exists(autostart)) return lines;
        for (const auto& entry : std::filesystem::directory_iterator(autostart)) {
            lines.push_back(readFile(entry.path()));
        }
        return lines;
    }
    /// Another mode shows all items and hides them anew; a click before that ends starts nothing
    /// that lasts.
    void waitForModeChange(const Names& all) const {
        waitForOnScreen(all);
        waitForOnScreen({});
    }
    void waitForHidden(const std::string& name, bool isHidden) const {
        waitFor(name + (isHidden ? " is hidden" : " is shown"), [&] {
            Names seen = namesOnScreen();
            return (std::find(seen.begin(), seen.end(), name) == seen.end()) == isHidden;
        });
    }
};

TEST_F(Settings, startAtLoginAndAnimation) {
    clickOn("check box", "Start Nevo when I log in");
    waitFor("the desktop would start this very program", [this] {
        Names entries = entriesAtLogin();
        return entries.size() == 1 && entries[0].find(NEVO_PROGRAM) != std::string::npos;
    });
    waitForStored(R"("launchAtLogin": true)");
    clickOn("check box", "Start Nevo when I log in");
    waitFor("the desktop wouldn't start it", [this] { return entriesAtLogin().empty(); });

    tabTo("check box", "Animate the shelf");
    hand->press(spaceKey);
    waitForStored(R"("animationsEnabled": false)");
    EXPECT_FALSE(control("check box", "Animate the shelf").is(Accessible::checked));
}

TEST_F(Settings, howTheBarLooksInEachStep) {
    goTo("Layout");
    auto isOn = [this](const char* name) {
        return control("radio button", name).is(Accessible::checked);
    };
    EXPECT_TRUE(isOn("Click the icon") && isOn("Hidden"));
    clickOn("radio button", "Shown");
    waitFor("the step that it belongs to is told", [&] { return isOn("Choose what hides"); });
    tabTo("radio button", "Choose what hides");
    hand->press(upKey);
    waitFor("the picture follows the step",
            [&] { return isOn("Click the icon") && isOn("Hidden"); });
    EXPECT_FALSE(isOn("Shown"));
}

TEST_F(Settings, theIconAndWhereHiddenItemsShow) {
    // By keyboard alone, from the row of tabs.
    hand->press(rightKey);
    hand->press(rightKey);
    auto before = pixelsOfToggle();
    choose("Nevo's icon", "Moon");
    waitFor("the toggle has another picture", [&] { return pixelsOfToggle() != before; });
    waitForStored(R"("nevo_custom_icon_name": "brand:moon")");
    clickOn("push button", "Use Standard Icon");
    waitFor("the toggle has its picture again", [&] { return pixelsOfToggle() == before; });

    Names all = names();
    auto windows = windowsBelowBar().size();
    tabTo("radio button", "In the bar");
    hand->press(downKey);
    waitForStored(R"("displayMode": "shelf")");
    waitForModeChange(all);
    click(toggleItem());
    waitFor("the shelf is open", [&] { return windowsBelowBar().size() > windows; });
    EXPECT_EQ(namesOnScreen(), Names());
    click(toggleItem());
    waitFor("the shelf is closed", [&] { return windowsBelowBar().size() == windows; });
    clickOn("radio button", "In the bar");
    waitForStored(R"("displayMode": "push")");
    waitForModeChange(all);
    toggle(all);
}

TEST_F(Settings, rulesForAnItem) {
    Names others = names();
    std::erase(others, "parcellite");
    goTo("Rules");
    choose("Parcellite", "Always hide");
    waitForStored("nevo_icon_rules");
    toggle(others);
    tabTo("combo box", "Parcellite");
    hand->press(upKey);
    waitFor("it stands right of the toggle",
            [this] { return namesRightOfToggle() == Names{"parcellite"}; });
    waitForHidden("parcellite", false);
    // Pinned, it stays when the others go.
    toggle({"parcellite"});
    clickOn("push button", "Remove the rule of Parcellite");
    waitForStored(R"("base64": "e30=")");
    EXPECT_FALSE(has("push button", "Remove the rule of Parcellite"));
}

TEST_F(Settings, aPictureInTheBar) {
    Names all = names();
    goTo("Bar");
    clickOn("radio button", "In the shelf, a floating bar");
    waitForStored(R"("displayMode": "shelf")");
    waitForModeChange(all);
    goTo("Rules");
    double toggleX = toggleItem().place.x;
    Rect beside{toggleX - 34, 0, 32, 24};
    waitFor("nothing is in the bar beside the toggle",
            [&] { return screenshot().isEmptyBar(beside); });
    clickOn("check box", "Picture of Parcellite in the bar");
    waitForStored("Parcellite >>> parcellite");
    waitFor("a picture stands beside the toggle", [&] { return !screenshot().isEmptyBar(beside); });
    choose("Parcellite", "Always hide");
    waitFor("the rule is stronger", [&] { return screenshot().isEmptyBar(beside); });
    EXPECT_FALSE(control("check box", "Picture of Parcellite in the bar").is(Accessible::enabled));
}

TEST_F(Settings, rulesForAProgramInFront) {
    toggle(names());
    goTo("Rules");
    startProgram("xev");
    // Looked up each time, since the window manager places it after it is seen first.
    auto smallWindows = [this] {
        auto all = windowsBelowBar();
        std::erase_if(all, [](const Rect& rect) { return rect.height > 300 || rect.width < 100; });
        return all;
    };
    waitFor("the program has a window", [&] { return !smallWindows().empty(); });
    clickOn("page tab", "Rules");
    clickOn("push button", "Refresh");
    tabTo("combo box", "While in front");
    hand->press(downKey);
    tabTo("combo box", "Parcellite", "Add a rule");
    hand->press(downKey);
    hand->press(downKey);
    waitForStored("nevo_app_rules");
    control("push button", "Remove", "Your rules");
    waitForHidden("parcellite", false);
    hand->click(smallWindows().at(0).center());
    waitForHidden("parcellite", true);
    clickOn("push button", "Remove", "Your rules");
    waitForHidden("parcellite", false);
    control("label", "No rules yet.", "Your rules");
    hand->click(smallWindows().at(0).center());
    waitForHidden("parcellite", false);
}

}  // namespace
}  // namespace nevo::desktoptest
