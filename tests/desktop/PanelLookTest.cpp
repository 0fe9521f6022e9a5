// How a panel looks on the real desktop, to the pixel.

#include <cstdlib>

#include "desktop/PanelSession.h"

namespace nevo::desktoptest {
namespace {

constexpr std::uint32_t bluePixel = 0x0000ff, redPixel = 0xff0000;

/// Whatever scale the user has set for Qt's windows: a point is a pixel, as in the bar.
class PanelLook : public PanelSession, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        ::setenv("QT_SCALE_FACTOR", GetParam(), 1);
        PanelSession::SetUp();
    }
    void TearDown() override {
        PanelSession::TearDown();
        ::unsetenv("QT_SCALE_FACTOR");
    }

    Point at(double x, double y) const { return {place.x + x, place.y + y}; }
    std::vector<std::uint32_t> part(double x, double y, double width, double height) const {
        return screenshot().pixels({place.x + x, place.y + y, width, height});
    }

    /// Odd, so that half a unit of Qt's shows.
    const Rect place{101, 203, 91, 39};
};

INSTANTIATE_TEST_SUITE_P(Scales, PanelLook, testing::Values("1", "1.5", "2"));

TEST_P(PanelLook, standsInItsPlaceToThePixelWithItsBorderInsideAndItsCornersCutOff) {
    PanelView body = filled(place, blue);
    body.cornerRadius = 10;
    body.borderWidth = 2;
    body.borderColor = red;
    auto panel = create(place);
    panel->setViews({body});
    EXPECT_FALSE(panel->isVisible());
    panel->orderFront();
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->frame(), frameOf(place));
    ASSERT_TRUE(showsSoon(at(45, 19), bluePixel));

    for (auto [x, y] : {std::pair{0, 19},
                        {1, 19},
                        {89, 19},
                        {90, 19},
                        {45, 0},
                        {45, 1},
                        {45, 37},
                        {45, 38},
                        {3, 3},
                        {87, 35}}) {
        EXPECT_EQ(pixel(at(x, y)), redPixel) << x << ", " << y;
    }
    for (auto [x, y] : {std::pair{2, 19}, {88, 19}, {45, 2}, {45, 36}, {6, 6}, {84, 32}}) {
        EXPECT_EQ(pixel(at(x, y)), bluePixel) << x << ", " << y;
    }
    for (auto [x, y] : {std::pair{-1, 19},
                        {91, 19},
                        {45, -1},
                        {45, 39},
                        {0, 0},
                        {1, 1},
                        {90, 0},
                        {0, 38},
                        {90, 38}}) {
        EXPECT_EQ(pixel(at(x, y)), ground) << x << ", " << y;
    }

    Rect next{300, 250, 33, 21};
    panel->setFrame(frameOf(next));
    body.frame = {0, 0, next.width, next.height};
    panel->setView(body);
    EXPECT_TRUE(showsSoon({next.x + 16, next.maxY() - 3}, bluePixel));
    EXPECT_EQ(pixel({next.maxX(), next.midY()}), ground);
    EXPECT_EQ(pixel(at(45, 19)), ground);
    panel->orderOut();
    EXPECT_FALSE(panel->isVisible());
    EXPECT_TRUE(showsSoon(next.center(), ground));
}

TEST_P(PanelLook, aPictureKeepsItsPixelsUnlessItIsTooLargeAndATemplateTakesAColor) {
    auto in = [](const Rect& frame, const std::string& key, const Image& image) {
        PanelView view;
        view.key = key;
        view.frame = frame;
        view.image = image;
        return view;
    };
    std::vector<std::uint32_t> colors;
    for (std::uint32_t i = 0; i < 8 * 6; ++i) colors.push_back(0xff000000U + i * 0x050301U);
    Image mask = picture(10, 10, std::vector<std::uint32_t>(100, 0xff00ff00));
    mask.isTemplate = true;
    PanelView tinted = in({60, 9, 20, 20}, "tinted", mask);
    tinted.contentTintColor = red;
    Image large = picture(40, 20, std::vector<std::uint32_t>(800, 0xffffff00));

    auto panel = create(place);
    panel->setViews({filled(place, blue), in({5, 9, 20, 20}, "exact", picture(8, 6, colors)),
                     in({30, 9, 20, 20}, "large", large), tinted});
    panel->orderFront();
    ASSERT_TRUE(showsSoon(at(45, 2), bluePixel));

    for (auto& color : colors) color &= 0xffffffU;
    EXPECT_EQ(part(11, 17, 8, 6), colors);
    EXPECT_EQ(part(30, 15, 20, 10), std::vector<std::uint32_t>(200, 0xffff00));
    EXPECT_EQ(part(30, 14, 20, 1), std::vector<std::uint32_t>(20, bluePixel));
    EXPECT_EQ(part(65, 15, 10, 10), std::vector<std::uint32_t>(100, redPixel));
    EXPECT_EQ(part(60, 14, 20, 1), std::vector<std::uint32_t>(20, bluePixel));

    // Without a tint in the color of text, which can be read on every material.
    tinted.contentTintColor.reset();
    tinted.material = Material::menu;
    panel->setView(tinted);
    auto isLight = [](std::uint32_t color) { return (color & 0xff) > 0xc0; };
    auto isDark = [](std::uint32_t color) { return (color & 0xff) < 0x40; };
    EXPECT_TRUE(soon([&] { return isLight(pixel(at(70, 20))) && isDark(pixel(at(62, 20))); }));
}

TEST_P(PanelLook, textIsCutOffWhereItIsTooLong) {
    PanelView text;
    text.key = "text";
    text.frame = {30, 0, 24, 39};
    text.text = "WWWWWWWW";
    text.fontSize = 9;
    text.textColor = Color::white(1);
    auto panel = create(place);
    panel->setViews({filled(place, blue), text});
    panel->orderFront();
    ASSERT_TRUE(showsSoon(at(2, 2), bluePixel));
    auto isBlank = [](const std::vector<std::uint32_t>& pixels) {
        return pixels == std::vector(pixels.size(), bluePixel);
    };
    EXPECT_FALSE(isBlank(part(30, 10, 24, 19)));
    EXPECT_TRUE(isBlank(part(0, 0, 30, 39)));
    EXPECT_TRUE(isBlank(part(54, 0, 37, 39)));
    EXPECT_TRUE(isBlank(part(30, 0, 24, 10)));
    EXPECT_TRUE(isBlank(part(30, 29, 24, 10)));
}

TEST_P(PanelLook, hearsThePointerToThePixelAndPopsItsMenuUpThere) {
    auto panel = create(place);
    PanelView view = filled(place, blue);
    view.frame = {37, 10, 1, 1};
    panel->setViews({filled(place, red, "around"), view});
    listen(*panel);
    panel->orderFront();
    ASSERT_TRUE(showsSoon(at(37, 28), bluePixel));
    Rect menu;
    auto click = [&](double x, double y) {
        heard.clear();
        hand->click(at(x, y), 3);
        EXPECT_TRUE(soon([&] { return heardTypes().size() == 2; }));
        return heard.empty() ? Point{} : heard.front().location;
    };
    EXPECT_EQ(click(37, 29), (Point{37, 10}));
    EXPECT_EQ(heard.front().view, "body");
    EXPECT_EQ(click(36, 29), (Point{36, 10}));
    EXPECT_EQ(heard.front().view, "around");
    EXPECT_EQ(click(37, 30), (Point{37, 9}));
    EXPECT_EQ(heard.front().view, "around");
    EXPECT_EQ(click(90, 38), (Point{90, 1}));

    Registration watch = platform().runLoop.timer(0.02, true, [&] {
        auto windows = windowsBelowBar();
        if (windows.size() < 2) return;
        menu = windows.back();
        hand->press(escapeKey);
    });
    std::vector<MenuItem> items(1);
    items[0].key = items[0].title = "row";
    platform().menus.popUp(items, {7, 3}, *panel, nullptr);
    // Qt can't put it on each pixel when its units are larger.
    EXPECT_NEAR(menu.x, place.x + 7, 1);
    EXPECT_NEAR(menu.y, place.maxY() - 3, 1);
}

class PanelOnX11 : public PanelSession {
protected:
    const Rect place{100, 200, 90, 40};
};

TEST_F(PanelOnX11, aCompositorMakesItTranslucentWithAShadowAsLongAsItRuns) {
    auto panel = create(place, true);
    PanelView body = filled(place, {0, 0, 1, 0.75});
    body.cornerRadius = 10;
    panel->setViews({body});
    panel->orderFront();
    // Where nothing shines through, what is mostly opaque is so.
    ASSERT_TRUE(showsSoon(place.center(), bluePixel));
    EXPECT_EQ(pixel({place.x, place.y}), ground);
    EXPECT_EQ(windowPlace(), place);

    auto compositor = std::make_unique<IdleCompositor>();
    ASSERT_TRUE(soon([&] { return windowPlace() != place; }));
    EXPECT_EQ(panel->frame(), frameOf(place));
    Rect around = windowPlace();
    EXPECT_GT(around.width, place.width + 20);
    EXPECT_EQ(around.midX(), place.midX());
    auto left = static_cast<int>(place.x - around.x);
    auto top = static_cast<int>(place.y - around.y);
    auto alpha = [&](int x, int y) { return shade(left + x, top + y) >> 24; };
    ASSERT_TRUE(soon([&] { return alpha(45, 20) == 0xbf; }));
    EXPECT_EQ(shade(left + 45, top + 20) & 0xff, 0xbfU);
    EXPECT_LT(alpha(0, 0), 0x60U);
    // The shadow fades away from the edge, and ends within the window.
    EXPECT_GT(alpha(45, 41), 0x40U);
    EXPECT_GT(alpha(45, 41), alpha(45, 46));
    EXPECT_GT(alpha(45, 46), alpha(45, 54));
    EXPECT_GT(alpha(45, 54), 0U);
    EXPECT_EQ(shade(0, 0), 0U);
    EXPECT_EQ(shade(static_cast<int>(around.width) / 2, static_cast<int>(around.height) - 1), 0U);

    panel->setAlpha(0.5);
    EXPECT_TRUE(soon([&] { return alpha(45, 20) == 0x5f; }));
    compositor.reset();
    EXPECT_TRUE(showsSoon({place.x, place.y}, ground));
    EXPECT_TRUE(showsSoon(place.center(), bluePixel));
    EXPECT_EQ(windowPlace(), place);
}

TEST_F(PanelOnX11, viewsLieInTheirOrderTranslucentAsAWhole) {
    IdleCompositor compositor;
    auto panel = create(place);
    PanelView card = filled(place, red, "card");
    card.frame = {10, 10, 20, 20};
    card.image = picture(20, 20, std::vector<std::uint32_t>(400, 0xffffffff));
    card.alpha = 0.5;
    PanelView other = filled(place, {0, 1, 1, 1}, "other");
    other.frame = {20, 10, 20, 20};
    panel->setViews({filled(place, blue), card, other});
    panel->orderFront();
    // Half of the picture, nothing of what lies under it in the same view.
    ASSERT_TRUE(soon([&] { return (shade(15, 20) & 0xff0000) != 0; }));
    EXPECT_NEAR((shade(15, 20) >> 16) & 0xff, 0x80, 1);
    EXPECT_NEAR((shade(15, 20) >> 8) & 0xff, 0x80, 1);
    EXPECT_EQ(shade(25, 20), 0xff00ffffU);
    card.alpha = 1;
    panel->setView(card);
    panel->bringViewToFront("card");
    EXPECT_TRUE(soon([&] { return shade(25, 20) == 0xffffffff; }));

    // A shadow lies on the views below, outside of its own.
    card.shadow = {{0, 0, 0, 1}, 0.8, 6, {0, -2}};
    panel->setView(card);
    EXPECT_TRUE(soon([&] { return (shade(15, 31) & 0xff) < 0xe0; }));
    EXPECT_LT(shade(15, 31) & 0xff, shade(15, 8) & 0xff);
    EXPECT_EQ(shade(15, 20), 0xffffffffU);
    panel->setView(filled(place, blue, "no such view"));
    panel->setViews({});
    EXPECT_TRUE(soon([&] { return shade(15, 20) == 0; }));
}

TEST_F(PanelOnX11, aViewMovesOnWhileItsLooksChangeAndEndsExactly) {
    auto panel = create(place);
    PanelView mover = filled(place, red, "mover");
    mover.frame = {0, 0, 10, 40};
    panel->setViews({filled(place, blue), mover});
    panel->orderFront();
    ASSERT_TRUE(showsSoon({place.x + 5, place.midY()}, redPixel));

    constexpr double aWhile = 300;
    mover.frame.x = 80;
    panel->setView(mover, Animation{aWhile, TimingFunction::easeInEaseOut});
    mover.background = {1, 1, 0, 1};
    panel->setView(mover);
    EXPECT_TRUE(showsSoon({place.x + 5, place.midY()}, 0xffff00));
    EXPECT_EQ(pixel({place.x + 85, place.midY()}), bluePixel);
    // Another way begins where it stands.
    mover.frame.x = 40;
    panel->setView(mover, Animation{0.05, TimingFunction::easeOut});
    EXPECT_TRUE(showsSoon({place.x + 49, place.midY()}, 0xffff00));
    EXPECT_TRUE(showsSoon({place.x + 50, place.midY()}, bluePixel));
    EXPECT_TRUE(showsSoon({place.x + 39, place.midY()}, bluePixel));
    mover.frame.x = 0;
    panel->setView(mover);
    EXPECT_TRUE(showsSoon({place.x + 5, place.midY()}, 0xffff00));
    EXPECT_EQ(pixel({place.x + 45, place.midY()}), bluePixel);
}

TEST_F(PanelOnX11, aFadeTellsItsEndUnlessThePanelIsGone) {
    auto panel = create(place);
    panel->setViews({filled(place, blue)});
    panel->setAlpha(0);
    panel->orderFront();
    EXPECT_TRUE(panel->isVisible());
    Names done;
    auto note = [&done](const std::string& name) {
        return [&done, name] { done.push_back(name); };
    };
    // Nothing is half visible without a compositor: it is there at once.
    constexpr double aWhile = 300;
    panel->animateAlpha(1, {aWhile, TimingFunction::linear}, note("never"));
    EXPECT_TRUE(showsSoon(place.center(), bluePixel));
    panel->animateAlpha(0, {0.05, TimingFunction::linear}, note("out"));
    EXPECT_TRUE(showsSoon(place.center(), ground));
    EXPECT_TRUE(soon([&] { return !done.empty(); }));

    // One that another takes the place of tells its end, too.
    IdleCompositor compositor;
    ASSERT_TRUE(soon([&] { return window() != 0; }));
    panel->animateAlpha(0.5, {0.05, TimingFunction::linear}, note("half"));
    panel->animateAlpha(1, {0.1, TimingFunction::linear}, note("in"));
    EXPECT_TRUE(soon([&] { return done.size() == 3; }));
    EXPECT_EQ(done, (Names{"out", "half", "in"}));
    EXPECT_EQ(shade(45, 20), 0xff0000ffU);

    panel->animateAlpha(0, {0.01, TimingFunction::linear}, [&] {
        done.push_back("destroyed");
        panel.reset();
    });
    EXPECT_TRUE(soon([&] { return !panel; }));
    EXPECT_EQ(window(), 0U);
    auto other = create(place);
    other->orderFront();
    other->animateAlpha(0, {0.01, TimingFunction::linear}, note("never"));
    other.reset();
    letTimePass();
    EXPECT_EQ(done, (Names{"out", "half", "in", "destroyed"}));
}

TEST_F(PanelOnX11, isOnTheScreenThatShowsMostOfIt) {
    setMonitor("800/200x400/100+300+100");
    addSecondMonitor("300/80x300/80+0+0");
    ASSERT_TRUE(soon([&] { return platform().screens.screens().size() == 2; }));
    auto panel = create(place);
    panel->setViews({filled(place, blue)});
    // From the main monitor's bottom left corner, which is at 300, 500.
    panel->setFrame({10, 20, place.width, place.height});
    panel->orderFront();
    EXPECT_TRUE(showsSoon({310, 479}, bluePixel));
    EXPECT_EQ(pixel({310, 480}), ground);
    EXPECT_EQ(pixel({309, 479}), ground);
    // The bar comes to its monitor in its own time: not all of a screen stands still yet.
    auto screens = platform().screens.screens();
    ASSERT_TRUE(panel->screen());
    EXPECT_EQ(panel->screen()->id, screens[0].id);
    panel->setFrame({-60, 300, place.width, place.height});
    ASSERT_TRUE(panel->screen());
    EXPECT_EQ(panel->screen()->id, screens[1].id);
    EXPECT_TRUE(showsSoon({240, 199}, bluePixel));
    panel->setFrame({5000, 0, 10, 10});
    EXPECT_EQ(panel->screen(), std::nullopt);
}

}  // namespace
}  // namespace nevo::desktoptest
