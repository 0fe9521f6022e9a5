// Hidden items as live pictures, on a real display.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <csignal>
#include <fstream>

#include "desktop/NevoSession.h"
#include "desktop/TestClients.h"
#include "platform/xcb/Properties.h"
#include "platform/xcb/WindowOwner.h"

namespace nevo::desktoptest {
namespace {

constexpr std::uint32_t red = 0xe03030;
constexpr std::uint32_t blue = 0x3040e0;
constexpr std::uint32_t yellow = 0xe0d020;

class Shelf : public NevoSession {
protected:
    /// Five tray programs and a probe, red and blue, that are hidden in shelf mode, without a
    /// trace.
    void startHidden() {
        startDesktop();
        probe = std::make_unique<Probe>();
        probe->paint(red, blue);
        waitForItems(6);
        startUsing(R"(, "displayMode": "shelf")");
    }
    /// The same, with a picture of each in the bar.
    void startShelf() {
        startHidden();
        mark(programItems());
        waitForDecoys(6);
    }
    /// The user wants pictures of exactly these in the bar.
    void mark(const std::vector<Item>& items) {
        QJsonArray ids;
        for (const Item& item : items) ids.append(QString::fromStdString(idOf(item.pid)));
        auto path = defaultsFile("com.nevoapp.Nevo");
        QJsonObject stored =
            QJsonDocument::fromJson(QByteArray::fromStdString(readFile(path))).object();
        stored["decoyItems"] = ids;
        auto written = path;
        written += ".new";
        std::ofstream(written) << QJsonDocument(stored).toJson().toStdString();
        std::filesystem::rename(written, path);
    }
    /// What Nevo knows the item of that process by, as its log tells.
    std::string idOf(ProcessId pid) const {
        std::string told = "pid=" + std::to_string(pid) + " id=";
        auto isTold = [&] { return nevo().output().find(told) != std::string::npos; };
        waitFor("Nevo has seen the item", isTold);
        std::string output = nevo().output();
        auto from = output.find(told) + told.size();
        return output.substr(from, output.find('\n', from) - from);
    }
    /// With the probe's among them.
    void waitForDecoys(std::size_t count) const {
        waitFor("so many items have their pictures in the bar", [&] {
            auto shown = decoys();
            return shown && shown->width == decoysWidth(count) && iconIn(*shown, red, blue);
        });
    }
    /// Of a panel with so many, of which none is wider than 30 pixels, and its edges.
    static double decoysWidth(std::size_t count) { return static_cast<double>(count) * 30 + 4; }
    void TearDown() override {
        probe.reset();
        NevoSession::TearDown();
    }

    /// The floating bar.
    std::optional<Rect> shelf() const { return panel(false); }
    /// The pictures in the menu bar.
    std::optional<Rect> decoys() const { return panel(true); }
    std::optional<Rect> panel(bool inBar) const {
        for (const TopWindow& own : topWindows()) {
            bool isInBar = own.place.y < barView->frame().maxY();
            if (own.name == "Nevo" && isInBar == inBar) return own.place;
        }
        return std::nullopt;
    }
    /// Where in `area` the screen shows the probe's icon in these colours, pixel for pixel.
    std::optional<Rect> iconIn(const Rect& area, std::uint32_t left, std::uint32_t right) const;

    Rect openShelf() {
        pressShortcut();
        waitFor("the shelf shows the probe",
                [this] { return shelf() && iconIn(*shelf(), red, blue); });
        return *shelf();
    }
    void waitForNoShelf() const {
        waitFor("the shelf has closed", [this] { return !shelf(); });
    }
    void pressShortcut() { hand->press('b', {leftSuperKey, leftShiftKey}); }

    /// The middle of an item's share of `row`, where all are shown side by side. All programs here
    /// have items of the same width.
    Point shareOf(const std::string& name, const Rect& row) const {
        Names all = names();
        auto found = std::find(all.begin(), all.end(), name) - all.begin();
        double share = row.width / static_cast<double>(all.size());
        return {row.x + (static_cast<double>(found) + 0.5) * share, row.midY()};
    }
    Item probeItem() const {
        for (const Item& item : items()) {
            if (item.client == probe->window()) return item;
        }
        throw Failed("the probe has lost its item");
    }

    bool isInSight(const Rect& opened) const {
        return opened.x >= 0 && opened.maxX() <= barView->frame().maxX();
    }
    /// A menu may stand on either side of what it belongs to.
    bool isBeside(const Rect& menu, Point place) const {
        constexpr double near = 40;
        return isInSight(menu) && menu.x - near < place.x && place.x < menu.maxX() + near;
    }

    ProcessId focused() const {
        auto c = server->get();
        xcb::Atoms atoms(c, {});
        xcb::Reply<xcb_get_input_focus_reply_t> focus(
            xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
        if (!focus) return 0;
        return xcb::processOfWindow(c, focus->focus, atoms["_NET_WM_PID"]).value_or(0);
    }

    std::unique_ptr<Probe> probe;
};

std::optional<Rect> Shelf::iconIn(const Rect& area, std::uint32_t left, std::uint32_t right) const {
    constexpr double side = Probe::size;
    auto wanted = Probe::icon(left, right);
    Picture screen = screenshot();
    auto whole = screen.pixels(area);
    auto width = static_cast<std::size_t>(area.width);
    if (whole.size() != width * static_cast<std::size_t>(area.height)) return std::nullopt;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (whole[i] != left) continue;
        Rect place{area.x + static_cast<double>(i % width), area.y + static_cast<double>(i / width),
                   side, side};
        if (screen.pixels(place) == wanted) return place;
        return std::nullopt;
    }
    return std::nullopt;
}

TEST_F(Shelf, opensAndClosesUnderTheToggleAndLeavesTheWindowInUseAlone) {
    startProgram("openbox");
    startShelf();
    Process& inUse = startProgram("xev");
    waitFor("a window is in use", [&] { return focused() == inUse.pid(); });
    Names all = names();
    for (bool byKey : {false, true}) {
        auto toggleIt = [&] { byKey ? pressShortcut() : click(toggleItem()); };
        toggleIt();
        waitFor("the shelf shows the probe",
                [this] { return shelf() && iconIn(*shelf(), red, blue); });
        EXPECT_EQ(shelf()->y, barView->frame().maxY() + 2);
        EXPECT_EQ(shelf()->x, toggleItem().place.x);
        waitFor("the pictures in the bar have gone", [this] { return !decoys(); });
        EXPECT_EQ(focused(), inUse.pid());
        EXPECT_EQ(windowsBelowBar().back(), *shelf());
        EXPECT_EQ(namesOnScreen(), Names());
        toggleIt();
        waitForNoShelf();
        waitFor("the pictures are back in the bar", [this] { return decoys().has_value(); });
    }
    openShelf();
    // At first a click may be that which opened it.
    waitFor("a click beside the shelf has closed it", [this] {
        hand->click({20, 500});
        return !shelf();
    });
    waitFor("the pictures are back in the bar", [this] { return decoys().has_value(); });
    EXPECT_EQ(names(), all);
}

TEST_F(Shelf, eachOfSixtyItemsIsReachedByKeysAndTheKeysGoBack) {
    startProgram("openbox");
    startDesktop();
    std::vector<std::unique_ptr<Probe>> crowd;
    auto colorOf = [](std::size_t i) { return static_cast<std::uint32_t>(0x400000 + i * 3); };
    for (std::size_t i = 0; i < 60; ++i) {
        crowd.push_back(std::make_unique<Probe>());
        crowd.back()->paint(colorOf(i), yellow);
    }
    waitFor("all have an item", [this] { return names().size() == 65; });
    startUsing(R"(, "displayMode": "shelf", "animationsEnabled": false,
                  "nevo_shelf_appearance": "highContrast")");
    Process& inUse = startProgram("xev");
    waitFor("a window is in use", [&] { return focused() == inUse.pid(); });

    auto placeInRow = [&](std::size_t i) {
        auto row = programItems();
        return std::find_if(row.begin(), row.end(),
                            [&](const Item& item) { return item.client == crowd[i]->window(); }) -
               row.begin();
    };
    /// The ring around a slot is white in this theme.
    auto waitForFocus = [&](std::size_t i) {
        waitFor("the ring is around the item's slot", [&] {
            auto slot = shelf() ? iconIn(*shelf(), colorOf(i), yellow) : std::nullopt;
            return slot &&
                   screenshot().pixels({slot->x - 1, slot->midY(), 1, 1}).front() == 0xffffff;
        });
    };
    auto waitForKeys = [&] {
        waitFor("the shelf has the keys", [&] {
            return shelf() &&
                   screenshot().pixels({shelf()->x + 4, shelf()->y + 12, 1, 1}).front() == 0xffffff;
        });
    };
    for (std::size_t i : {0U, 23U, 42U, 59U}) {
        pressShortcut();
        waitForKeys();
        EXPECT_TRUE(isInSight(*shelf()));
        bool fromEnd = placeInRow(i) > 32;
        hand->press(fromEnd ? endKey : homeKey);
        for (auto step = fromEnd ? placeInRow(i) : 0; step < (fromEnd ? 64 : placeInRow(i)); ++step)
            hand->press(fromEnd ? leftKey : rightKey);
        waitForFocus(i);
        EXPECT_EQ(focused(), inUse.pid());
        hand->press(returnKey);
        waitForNoShelf();
        waitFor("the item is out", [&] {
            auto row = items();
            auto out = std::find_if(row.begin(), row.end(), [&](const Item& item) {
                return item.client == crowd[i]->window();
            });
            return out->onScreen && out->place.x >= toggleItem().place.maxX();
        });
        EXPECT_EQ(namesOnScreen().size(), 1U);
    }

    // A menu has the keys for its own time, and the hot key counts while the shelf has them.
    pressShortcut();
    waitForKeys();
    auto before = windowsBelowBar().size();
    hand->press(menuKey);
    waitFor("the menu is open", [&] { return windowsBelowBar().size() > before; });
    hand->press(escapeKey);
    waitFor("the menu has closed", [&] { return windowsBelowBar().size() == before; });
    ASSERT_TRUE(shelf());
    hand->press(endKey);
    hand->press(homeKey);
    waitForKeys();
    pressShortcut();
    waitForNoShelf();
    pressShortcut();
    waitForKeys();
    hand->press(escapeKey);
    waitForNoShelf();
    EXPECT_EQ(focused(), inUse.pid());
    EXPECT_EQ(inUse.output().find("keysym 0xff0d, Return"), std::string::npos);
    hand->press(returnKey);
    waitFor("the window in use has the keys again",
            [&] { return inUse.output().find("keysym 0xff0d, Return") != std::string::npos; });
}

TEST_F(Shelf, ofHiddenItemsNothingIsSeenButWhatTheUserHasMarked) {
    startHidden();
    auto leftOfToggle = [this] {
        // The bar's corner has a colour of its own.
        Rect bar = barView->frame();
        return Rect{bar.x + 1, bar.y, toggleItem().place.x - bar.x - 1, bar.height};
    };
    waitFor("the bar is empty left of the toggle",
            [&] { return screenshot().isEmptyBar(leftOfToggle()); });
    openShelf();
    pressShortcut();
    waitForNoShelf();
    EXPECT_FALSE(decoys());
    waitFor("the bar is empty left of the toggle",
            [&] { return screenshot().isEmptyBar(leftOfToggle()); });

    // Programs come and go.
    mark({probeItem(), item("parcellite")});
    waitForDecoys(2);
    EXPECT_EQ(decoys()->maxX(), toggleItem().place.x - 2);
    kill(program("parcellite"), SIGTERM);
    waitForDecoys(1);
    startProgram("pnmixer");
    startProgram("parcellite");
    waitForDecoys(2);
    EXPECT_EQ(namesOnScreen(), Names());
    probe->setShown(false);
    waitFor("the probe's picture has gone", [this] {
        auto shown = decoys();
        return shown && shown->width == decoysWidth(1) && !iconIn(*shown, red, blue);
    });
    probe->setShown(true);
    waitForDecoys(2);

    // As after each login.
    kill(nevo(), SIGTERM);
    waitForItems(7);
    EXPECT_TRUE(becomesDense());
    startNevo();
    waitForOnScreen({});
    waitForDecoys(2);
}

TEST_F(Shelf, aSlotShowsWhatItsProgramDraws) {
    startShelf();
    Rect open = openShelf();
    Rect slot = *iconIn(open, red, blue);
    EXPECT_LT(probeItem().place.maxX(), 0);
    for (const auto& icon : {std::pair{yellow, red}, {blue, yellow}}) {
        probe->paint(icon.first, icon.second);
        waitFor("the slot shows the new icon",
                [&] { return iconIn(open, icon.first, icon.second) == slot; });
    }
}

TEST_F(Shelf, aClickedSlotBringsTheRealItemOutForAWhile) {
    startShelf();
    auto before = programItems();
    Rect open = openShelf();
    hand->click(iconIn(open, red, blue)->center());
    waitFor("the item stands beside the toggle", [this] {
        Item item = probeItem();
        return item.onScreen && item.place.x >= toggleItem().place.maxX() &&
               iconIn(item.place, red, blue);
    });
    waitForNoShelf();
    EXPECT_EQ(namesOnScreen().size(), 1U);
    EXPECT_EQ(probe->clicks(), 0);
    click(probeItem());
    waitFor("the program gets the click", [this] { return probe->clicks() == 1; });

    // Another one takes its place.
    open = openShelf();
    hand->click(shareOf("parcellite", open));
    waitFor("the other item alone is out",
            [this] { return namesOnScreen() == Names{"parcellite"}; });
    waitForNoShelf();
    auto windows = windowsBelowBar().size();
    click(item("parcellite"));
    waitFor("its menu is open", [&] { return windowsBelowBar().size() > windows; });
    EXPECT_TRUE(isBeside(windowsBelowBar().back(), item("parcellite").place.center()));
    hand->press(escapeKey);
    waitFor("the menu has closed", [&] { return windowsBelowBar().size() == windows; });

    kill(nevo(), SIGTERM);
    waitForItems(before.size());
    EXPECT_TRUE(becomesDense());
}

TEST_F(Shelf, aClickOnAPictureInTheBarReachesItsProgram) {
    startShelf();
    Rect row = *decoys();
    EXPECT_EQ(row.maxX(), toggleItem().place.x - 2);
    hand->click(iconIn(row, red, blue)->center());
    waitFor("the probe gets the click", [this] { return probe->clicks() == 1; });
    for (const char* name : {"xfce4-clipman", "parcellite", "qlipper", "volumeicon"}) {
        Point picture = shareOf(name, row);
        auto before = windowsBelowBar().size();
        // As by a hand, which takes its time to let go.
        std::string told = std::string(name) + " wid=";
        hand->drag(picture, picture, [&] {
            waitFor("Nevo has noticed the press", [&] {
                std::string log = nevo().output();
                auto line = log.rfind("[Decoy] click forwarded: ");
                return line != std::string::npos && log.find(told, line) != std::string::npos;
            });
        });
        waitFor("a window of the program opens", [&] { return windowsBelowBar().size() > before; });
        Rect opened = windowsBelowBar().back();
        EXPECT_TRUE(isInSight(opened)) << name;
        // Only this one's isn't a menu.
        if (name != std::string("volumeicon")) {
            EXPECT_TRUE(isBeside(opened, picture)) << name;
        }
        hand->press(escapeKey);
        hand->click({20, 500});
        waitFor("it has closed", [&] { return windowsBelowBar().size() == before; });
        // All is as it was.
        EXPECT_EQ(namesOnScreen(), Names()) << name;
        EXPECT_EQ(*decoys(), row);
        waitFor("the item is back in its slot",
                [&] { return item(name).place.x == item(name).slot.x; });
    }
    EXPECT_EQ(probe->clicks(), 1);

    // A program may take its icon away when it is clicked.
    hand->click(iconIn(row, red, blue)->center());
    waitFor("the probe gets another click", [this] { return probe->clicks() == 2; });
    probe->setShown(false);
    waitFor("the probe's item has gone", [this] { return names().size() == 5; });
    probe->setShown(true);
    waitFor("it is back in its slot",
            [this] { return names().size() == 6 && probeItem().place == probeItem().slot; });
}

TEST_F(Shelf, aPicturePassesEachButtonAndTheWheelOn) {
    startShelf();
    Point picture = iconIn(*decoys(), red, blue)->center();
    std::vector<int> sent;
    for (int button : {3, 2}) {
        hand->click(picture, button);
        sent.push_back(button);
        waitFor("the probe gets the click", [&] { return probe->buttons() == sent; });
    }
    // A turn of several notches is a quick thing.
    for (int button : {4, 4, 5, 5, 5, 6}) {
        hand->click(picture, button);
        sent.push_back(button);
    }
    waitFor("the probe gets each notch", [&] { return probe->buttons() == sent; });
    EXPECT_EQ(namesOnScreen(), Names());
    waitFor("the item is back in its slot", [&] { return probeItem().place == probeItem().slot; });
    EXPECT_EQ(probe->buttons(), sent);
}

TEST_F(Shelf, aManagerKilledInTheMiddleOfAClickLeavesNothingOutOfPlace) {
    startShelf();
    auto before = names();
    Point picture = iconIn(*decoys(), red, blue)->center();
    hand->drag(picture, picture, [&] {
        waitFor("the item has come",
                [this] { return barView->frame().contains(probeItem().place.center()); });
        EXPECT_FALSE(probeItem().onScreen);
        kill(nevo(), SIGKILL);
    });
    waitForItems(before.size());
    EXPECT_EQ(names(), before);
    EXPECT_TRUE(becomesDense());
    EXPECT_EQ(probe->clicks(), 0);
}

TEST_F(Shelf, slotsKeepTheOrderThatAHandGaveThem) {
    startShelf();
    Names row = names();
    Rect open = openShelf();
    Rect slot = *iconIn(open, red, blue);
    bool isLast = slot.midX() > open.midX();
    hand->drag(slot.center(), {isLast ? open.x + 2 : open.maxX() - 2, slot.midY()});
    waitFor("the slot has come to rest at the other end", [&] {
        auto now = iconIn(open, red, blue);
        return now && now->x != slot.x && now->y == slot.y &&
               (isLast ? now->x - open.x : open.maxX() - now->maxX()) == 5;
    });
    Rect moved = *iconIn(open, red, blue);
    kill(nevo(), SIGTERM);
    startNevo();
    waitForOnScreen({});
    EXPECT_EQ(*iconIn(openShelf(), red, blue), moved);
    EXPECT_EQ(names(), row);
}

TEST_F(Shelf, opensOnTheMonitorOfTheToggle) {
    setMonitor("1000/250x400/100+600+200");
    addSecondMonitor("600/150x300/75+0+0");
    startShelf();
    Rect open = openShelf();
    EXPECT_EQ(open.y, 200 + 24 + 2);
    EXPECT_EQ(open.x, toggleItem().place.x);
    EXPECT_LT(open.maxX(), 1600);
    hand->click(iconIn(open, red, blue)->center());
    waitFor("the item stands on that monitor", [this] {
        return probeItem().onScreen && probeItem().place.x >= toggleItem().place.maxX();
    });
}

}  // namespace
}  // namespace nevo::desktoptest
