#include "shelf/NevoBar.h"
#include "unit/LogicTest.h"

namespace nevo {

namespace {

Image picture(int width, int height, const std::function<std::uint32_t(int, int)>& pixel) {
    auto bitmap = std::make_shared<Bitmap>();
    bitmap->width = width;
    bitmap->height = height;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) bitmap->pixels.push_back(pixel(x, y));
    }
    return {bitmap, {static_cast<double>(width), static_cast<double>(height)}, false, "test"};
}

/// Of 100 by 100 pixels the first `count`, row by row from the middle on, so that few are near the
/// edge.
Image withPixels(int count, std::uint32_t color) {
    return picture(100, 100, [=](int x, int y) {
        bool inside = x >= 12 && x < 88 && y >= 12 && y < 88;
        int place = (y - 12) * 76 + (x - 12);
        return inside && place < count ? color : 0U;
    });
}

}  // namespace

TEST(ShelfIconRenderPolicy, TellsMasksFromPictures) {
    using enum ShelfIconRenderPolicy;
    constexpr std::uint32_t grey = 0xFF404040;
    constexpr std::uint32_t red = 0xFFFF0000;
    EXPECT_EQ(renderPolicy(withPixels(2000, grey)), templateTint);
    EXPECT_EQ(renderPolicy(withPixels(2000, red)), preserveOriginal);
    EXPECT_EQ(renderPolicy(withPixels(0, grey)), templateTint);
    // Just visible, and not.
    EXPECT_EQ(renderPolicy(withPixels(2000, 0x1E1E0000)), templateTint);
    EXPECT_EQ(renderPolicy(withPixels(2000, 0x28280000)), preserveOriginal);
    Image marked = withPixels(2000, red);
    marked.isTemplate = true;
    EXPECT_EQ(renderPolicy(marked), templateTint);
    EXPECT_EQ(renderPolicy(Image{}), preserveOriginal);

    // 8 of 100 visible ones may be colourful, 82 of 100 opaque, 22 of 100 at the edge full.
    auto colourful = [&](int count) {
        return renderPolicy(picture(100, 100, [=](int x, int y) {
            bool inside = x >= 40 && x < 50 && y >= 40 && y < 50;
            if (!inside) return 0U;
            return (y - 40) * 10 + x - 40 < count ? red : grey;
        }));
    };
    EXPECT_EQ(colourful(8), templateTint);
    EXPECT_EQ(colourful(9), preserveOriginal);
    auto edgeFilled = [&](int edgePixels) {
        int left = edgePixels;
        return renderPolicy(picture(80, 80, [=](int x, int y) mutable {
            bool isEdge = x < 10 || y < 10 || x >= 70 || y >= 70;
            return isEdge && left-- > 0 ? grey : 0U;
        }));
    };
    // Of the 2,800 pixels of the ring.
    EXPECT_EQ(edgeFilled(616), templateTint);
    EXPECT_EQ(edgeFilled(617), preserveOriginal);
}

class NevoBarTest : public LogicTest {
protected:
    static BarItem item(WindowNumber window, double width, bool hasIcon = true) {
        ScannedBarItem scanned;
        scanned.windowID = window;
        scanned.width = width;
        scanned.label = "Längliches";
        if (hasIcon) scanned.icon = picture(16, 16, [](int, int) { return 0xFF404040; });
        return BarItem(scanned);
    }
    SimPanel* panel() {
        auto visible = desktop.panels.visible();
        return visible.empty() ? nullptr : visible.back();
    }

    std::shared_ptr<NevoBar> bar = NevoBar::create(platform);
};

TEST_F(NevoBarTest, MeasuresItselfByItsStyle) {
    struct Case {
        ShelfBarStyle style;
        Rect frame;
        double firstSlot;
        double secondSlot;
        double slotHeight;
    };
    // Two items, 30 and 10 wide: the second slot is 20.
    const Case cases[] = {
        {ShelfBarStyle::classic, {500, 836, 64, 38}, 5, 39, 28},
        {ShelfBarStyle::capsule, {500, 832, 87, 42}, 16, 51, 32},
        {ShelfBarStyle::floatingGlass, {500, 826, 81, 48}, 12, 49, 32},
        {ShelfBarStyle::minimal, {500, 840, 70, 34}, 9, 41, 26},
    };
    bar->nevoIconX = 500;
    for (const Case& each : cases) {
        bar->barStyle = each.style;
        bar->show({item(1, 30), item(2, 10)});
        ASSERT_TRUE(bar->isPanelVisible());
        EXPECT_EQ(bar->panelFrame(), each.frame);
        EXPECT_EQ(panel()->view("slot:1")->frame.x, each.firstSlot);
        EXPECT_EQ(panel()->view("slot:2")->frame.x, each.secondSlot);
        EXPECT_EQ(panel()->view("slot:2")->frame.width, 20);
        EXPECT_EQ(panel()->view("slot:1")->frame.height, each.slotHeight);
    }
    // Its right edge stays on the screen.
    bar->barStyle = ShelfBarStyle::classic;
    bar->nevoIconX = 1430;
    bar->show({item(1, 30), item(2, 10)});
    EXPECT_EQ(bar->panelFrame().maxX(), 1436);
    // 41 slots fit into a row; one more makes two of 21.
    std::vector<BarItem> many;
    for (WindowNumber i = 1; i <= 41; ++i) many.push_back(item(i, 30));
    bar->show(many);
    EXPECT_EQ(bar->panelFrame(), (Rect{36, 836, 1400, 38}));
    many.push_back(item(42, 30));
    bar->show(many);
    EXPECT_EQ(bar->panelFrame(), (Rect{716, 804, 720, 70}));
    EXPECT_EQ(panel()->view("slot:21")->frame, (Rect{685, 37, 30, 28}));
    EXPECT_EQ(panel()->view("slot:22")->frame, (Rect{5, 5, 30, 28}));
}

TEST_F(NevoBarTest, HoldsAnyNumberOfItemsEachInReachOfThePointer) {
    std::vector<WindowNumber> clicked;
    bar->onItemClicked = [&](const BarItem& item) { clicked.push_back(item.windowID); };
    bar->animationsEnabled = false;
    Rect free = platform.screens.mainScreen()->visibleFrame;
    struct Case {
        ShelfBarStyle style;
        WindowNumber count;
        double widest;
    };
    for (const Case& each : {Case{ShelfBarStyle::classic, 100, 24},
                             {ShelfBarStyle::capsule, 100, 70},
                             {ShelfBarStyle::floatingGlass, 130, 24},
                             {ShelfBarStyle::minimal, 100, 24},
                             {ShelfBarStyle::classic, 40, 3000},
                             {ShelfBarStyle::floatingGlass, 3000, 30}}) {
        bar->barStyle = each.style;
        std::vector<BarItem> many;
        for (WindowNumber i = 1; i <= each.count; ++i)
            many.push_back(item(i, i % 3 == 0 ? each.widest : 24));
        for (WindowNumber i = 1; i <= each.count; i += each.count > 1000 ? 333 : 1) {
            bar->show(many);
            Rect frame = bar->panelFrame();
            EXPECT_TRUE(frame.x >= free.x && frame.maxX() <= free.maxX()) << each.count;
            EXPECT_TRUE(frame.y >= free.y && frame.maxY() <= free.maxY()) << each.count;
            Point place = panel()->view("slot:" + std::to_string(i))->frame.center();
            desktop.events.move({frame.x + place.x, 900 - frame.y - place.y});
            desktop.events.press(false);
            desktop.events.release(false);
            desktop.loop.runReady();
            ASSERT_EQ(clicked, std::vector<WindowNumber>{i}) << each.count;
            clicked.clear();
        }
    }
}

TEST_F(NevoBarTest, LabelsAnItemWithoutAPicture) {
    bar->show({item(1, 90, false), item(2, 10, false)});
    const PanelView* view = panel()->view("slot:1");
    EXPECT_EQ(view->text, "Läng");
    EXPECT_EQ(view->frame.width, 28);
    EXPECT_EQ(view->textColor, Color::label());
    EXPECT_EQ(panel()->view("slot:2")->frame.width, 20);
}

TEST_F(NevoBarTest, AFadeNeverClosesANewerPanel) {
    bar->show({item(1, 30)});
    bar->dismiss();
    EXPECT_TRUE(bar->isPanelVisible());
    desktop.loop.runFor(0.05);
    bar->show({item(2, 30)});
    desktop.loop.runFor(1);
    ASSERT_TRUE(bar->isPanelVisible());
    EXPECT_TRUE(panel()->view("slot:2"));
    EXPECT_EQ(panel()->alpha(), 1);
    EXPECT_EQ(desktop.panels.count(), 1U);
    bar->show({});
    desktop.loop.runFor(1);
    EXPECT_EQ(desktop.panels.count(), 0U);
    EXPECT_TRUE(logHas("[NevoBar] No items found, not showing panel"));
    bar->animationsEnabled = false;
    bar->show({item(1, 30)});
    bar->dismiss();
    EXPECT_EQ(desktop.panels.count(), 0U);
}

TEST_F(NevoBarTest, KeepsItsPicturesFreshWhileItIsOpen) {
    WindowNumber window = launch("mail", "com.example.mail", 30);
    bar->show({item(window, 30), item(999, 30)});
    std::string key = "slot:" + std::to_string(window);
    EXPECT_EQ(panel()->view(key)->image->source, "test");
    desktop.loop.runFor(0.55);
    EXPECT_NE(panel()->view(key)->image->source, "test");
    EXPECT_EQ(panel()->view(key)->image->size, (Size{30, 24}));
    // A window that can't be pictured keeps what it has.
    EXPECT_EQ(panel()->view("slot:999")->image->source, "test");

    // What doesn't change isn't read, what does is, twice a second at most.
    bar->show({item(window, 30)});
    desktop.loop.runFor(1);
    int reads = desktop.windowServer.imageReads();
    desktop.loop.runFor(60);
    EXPECT_EQ(desktop.windowServer.imageReads(), reads);
    EXPECT_EQ(desktop.loop.programTimerCount(), 0U);
    for (int i = 0; i < 50; ++i) {
        desktop.windowServer.repaint(window);
        desktop.loop.runFor(0.1);
    }
    desktop.loop.runFor(0.5);
    EXPECT_LE(desktop.windowServer.imageReads(), reads + 11);
    auto now = desktop.windowServer.picture(window, 2);
    EXPECT_EQ(*panel()->view(key)->image->bitmap, *now->bitmap);
}

TEST_F(NevoBarTest, DressesInStyleAndTheme) {
    bar->appearanceTheme = makeTheme(ShelfAppearanceMode::system, {}, 1);
    struct Case {
        ShelfBarStyle style;
        Color overlay;
        Color border;
        double width;
    };
    const Case cases[] = {
        {ShelfBarStyle::classic, Color::clear(), Color::white(0, 0.10), 0},
        {ShelfBarStyle::capsule, {0.30, 0.31, 0.54, 0.62}, Color::white(1, 0.34), 1},
        {ShelfBarStyle::floatingGlass, Color::white(1, 0.08), Color::white(0, 0.10), 1},
        {ShelfBarStyle::minimal, Color::clear(), Color::white(0, 0.10), 0},
    };
    for (const Case& each : cases) {
        bar->barStyle = each.style;
        bar->show({item(1, 30)});
        const PanelView* overlay = panel()->view("overlay");
        EXPECT_EQ(overlay->background, each.overlay);
        EXPECT_EQ(overlay->borderColor, each.border);
        EXPECT_EQ(overlay->borderWidth, each.width);
    }
    // Changed while it is open.
    bar->barStyle = ShelfBarStyle::classic;
    bar->show({item(1, 30)});
    bar->appearanceTheme = makeTheme(ShelfAppearanceMode::highContrast, {}, 1);
    bar->applyAppearance();
    EXPECT_EQ(panel()->view("overlay")->background, Color::white(0, 0.94));
    EXPECT_EQ(panel()->view("overlay")->borderWidth, 1);
    EXPECT_EQ(panel()->view("slot:1")->background, Color::white(1, 0.18));
    bar->barStyle = ShelfBarStyle::minimal;
    bar->relayoutForStyle();
    EXPECT_EQ(panel()->view("slot:1")->background, Color::clear());
    EXPECT_EQ(bar->panelFrame().height, 34);
}

TEST_F(NevoBarTest, ATrembleIsAClickAndAWayIsADrag) {
    std::vector<WindowNumber> clicked;
    std::vector<std::vector<BarItem>> orders;
    bar->onItemClicked = [&](const BarItem& item) { clicked.push_back(item.windowID); };
    bar->onItemsReordered = [&](const std::vector<BarItem>& items) { orders.push_back(items); };
    bar->isReorderingEnabled = true;
    auto dragBy = [&](double way) {
        bar->show({item(1, 30), item(2, 30)});
        Rect frame = bar->panelFrame();
        Point start{frame.x + 10, 900 - frame.midY()};
        desktop.events.move(start);
        desktop.events.press(false);
        desktop.events.move({start.x + way, start.y});
        desktop.events.release(false);
        desktop.loop.runFor(1);
    };
    dragBy(4.9);
    EXPECT_EQ(clicked, std::vector<WindowNumber>{1});
    EXPECT_TRUE(orders.empty());
    dragBy(5.0);
    EXPECT_EQ(clicked.size(), 1U);
    EXPECT_EQ(orders.size(), 1U);
    dragBy(50);
    ASSERT_EQ(orders.size(), 2U);
    EXPECT_EQ(orders.back().front().windowID, 2U);
    EXPECT_EQ(panel()->view("slot:1")->shadow.opacity, 0);
    // From one row into another, at the slot under the pointer; rows break where they have to.
    auto dragAmong = [&](const std::vector<BarItem>& all, WindowNumber from, WindowNumber to) {
        bar->show(all);
        auto middleOf = [&](WindowNumber window) {
            Point at = panel()->view("slot:" + std::to_string(window))->frame.center();
            return Point{bar->panelFrame().x + at.x + 1, 900 - bar->panelFrame().y - at.y};
        };
        Point goal = middleOf(to);
        desktop.events.move(middleOf(from));
        desktop.events.press(false);
        desktop.events.move(goal);
        desktop.events.release(false);
        desktop.loop.runFor(1);
        std::vector<WindowNumber> order;
        for (const BarItem& each : orders.back()) order.push_back(each.windowID);
        return order;
    };
    std::vector<BarItem> many;
    for (WindowNumber i = 1; i <= 100; ++i) many.push_back(item(i, i == 60 ? 300 : 30));
    auto order = dragAmong(many, 5, 80);
    EXPECT_EQ(std::find(order.begin(), order.end(), 5U) - order.begin(), 79);
    EXPECT_EQ(order[4], 6U);
    EXPECT_EQ(order[78], 80U);
    order = dragAmong(many, 60, 2);
    EXPECT_EQ(order[2], 60U);
    for (const PanelView& view : panel()->views()) {
        Size size{bar->panelFrame().width, bar->panelFrame().height};
        EXPECT_TRUE(view.frame.x >= 0 && view.frame.maxX() <= size.width) << view.key;
        EXPECT_TRUE(view.frame.y >= 0 && view.frame.maxY() <= size.height) << view.key;
    }
    // Without reordering neither a click nor a new order comes of it.
    bar->isReorderingEnabled = false;
    dragBy(50);
    EXPECT_EQ(clicked.size(), 1U);
    EXPECT_EQ(orders.size(), 4U);
}

}  // namespace nevo
