// What both desktops must do alike with a panel.

#include "desktop/ContractSessions.h"

namespace nevo::desktoptest {
namespace {

template <class Session>
class PanelContract : public Session {
protected:
    void SetUp() override {
        Session::SetUp();
        height = this->platform().screens.mainScreen()->frame.height;
        PanelConfiguration configuration;
        configuration.frame = {100, height - 240, 75, 40};
        configuration.level = statusItemWindowLevel;
        panel = this->platform().panels.create(configuration);
        panel->onEvent = [this](const PanelEvent& event) { heard.push_back(event); };
        panel->setViews({view("left", 5), view("right", 40)});
    }
    void TearDown() override {
        panel.reset();
        Session::TearDown();
    }

    static PanelView view(const std::string& key, double x) {
        PanelView result;
        result.key = key;
        result.frame = {x, 5, 30, 30};
        result.background = Color::white(1);
        result.takesMouse = true;
        return result;
    }

    /// A real one is on the screen some turns of the loop later.
    void comesUp() {
        int turns = 0;
        EXPECT_TRUE(this->soon([&] { return ++turns >= 10; }));
    }

    bool hearsRelease() {
        return this->soon(
            [&] { return !heard.empty() && heard.back().type == EventType::leftMouseUp; });
    }

    double height = 0;
    std::unique_ptr<Panel> panel;
    std::vector<PanelEvent> heard;
};

using Desktops = testing::Types<SimSession, X11Session>;
TYPED_TEST_SUITE(PanelContract, Desktops);

TYPED_TEST(PanelContract, isWhereItWasPutOnceItIsBroughtToTheFront) {
    EXPECT_FALSE(this->panel->isVisible());
    this->panel->orderFront();
    EXPECT_TRUE(this->panel->isVisible());
    Rect next{300, this->height - 200, 20, 30};
    this->panel->setFrame(next);
    EXPECT_EQ(this->panel->frame(), next);
    EXPECT_EQ(this->panel->screen(), this->platform().screens.mainScreen());
    this->panel->orderOut();
    EXPECT_FALSE(this->panel->isVisible());
}

TYPED_TEST(PanelContract, aDragBelongsToTheViewInWhichItBegan) {
    this->panel->orderFront();
    this->comesUp();
    this->drag({120, 220}, {160, 225});
    ASSERT_TRUE(this->hearsRelease());
    for (const PanelEvent& event : this->heard) {
        EXPECT_EQ(event.view, "left");
        EXPECT_EQ(event.modifiers, commandModifier);
    }
    EXPECT_EQ(this->heard.front().type, EventType::leftMouseDown);
    EXPECT_EQ(this->heard.front().location, (Point{20, 20}));
    EXPECT_EQ(this->heard.back().location, (Point{60, 15}));

    // What a view was brought before hears nothing.
    this->heard.clear();
    PanelView front = this->view("left", 30);
    this->panel->setView(front);
    this->panel->bringViewToFront("left");
    this->drag({145, 220}, {155, 220});
    ASSERT_TRUE(this->hearsRelease());
    EXPECT_EQ(this->heard.front().view, "left");
}

TYPED_TEST(PanelContract, eachFadeTellsItsEndUnlessThePanelIsGone) {
    this->panel->orderFront();
    std::vector<int> done;
    this->panel->animateAlpha(0.5, {0.02, TimingFunction::linear}, [&] { done.push_back(1); });
    this->panel->animateAlpha(1, {0.04, TimingFunction::linear}, [&] { done.push_back(2); });
    EXPECT_TRUE(done.empty());
    EXPECT_TRUE(this->soon([&] { return done.size() == 2; }));
    EXPECT_EQ(done, (std::vector{1, 2}));
    this->panel->animateAlpha(0, {0.01, TimingFunction::linear}, [&] {
        done.push_back(3);
        this->panel.reset();
    });
    EXPECT_TRUE(this->soon([&] { return done.size() == 3; }));
    EXPECT_FALSE(this->panel);
}

}  // namespace
}  // namespace nevo::desktoptest
