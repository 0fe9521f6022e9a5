// The menu bar by itself, with tray programs of the distribution.

#include <algorithm>
#include <csignal>

#include "desktop/DesktopSession.h"
#include "desktop/TestClients.h"
#include "platform/xcb/Properties.h"

namespace nevo::desktoptest {
namespace {

using MenuBar = DesktopSession;

TEST_F(MenuBar, tellsWhoseItemsStandInIt) {
    startDesktop();
    struct Expected {
        const char *program, *appId, *ownerName;
    };
    for (const Expected& expected :
         {Expected{"volumeicon", "volumeicon", "volumeicon"},
          Expected{"parcellite", "parcellite", "Parcellite"},
          Expected{"xfce4-clipman", "xfce4-clipman", "Clipboard Manager"},
          Expected{"qlipper", "qlipper", "Qlipper"},
          Expected{"qasmixer", "qasmixer", "QasMixer"}}) {
        Item found = item(expected.program);
        EXPECT_EQ(found.pid, program(expected.program).pid());
        EXPECT_EQ(found.appId, expected.appId);
        EXPECT_EQ(found.ownerName, expected.ownerName);
        EXPECT_FALSE(found.name.empty());
        EXPECT_EQ(found.opacity, 1);
        EXPECT_EQ(found.place, found.slot);
    }
    EXPECT_TRUE(becomesDense());
}

TEST_F(MenuBar, givesTheRowBackAfterAnyEndOfItsOwn) {
    startDesktop();
    // An order of somebody's own, not the one in which the programs came.
    superDrag(items().front(), items().back().place.maxX() - 2);
    Names before;
    Names unlike = names();
    waitFor("the drag has changed the order", [&] {
        before = names();
        return before.size() == 5 && before != unlike;
    });
    for (int end : {SIGTERM, SIGKILL, SIGTERM}) {
        kill(bar(), end);
        startBar();
        waitForOnScreen(before);
        EXPECT_EQ(names(), before);
        EXPECT_TRUE(becomesDense());
    }
}

TEST_F(MenuBar, endsWhatAProgramAskedForWhenThatProgramEnds) {
    startDesktop();
    auto before = items();
    auto holder = std::make_unique<LeaseHolder>();
    holder->bar().setOpacity(before[0], 0, holder->window());
    holder->bar().setOpacity(before[1], 0.5, holder->window());
    waitFor("the requests are in force", [&] {
        auto now = items();
        return now[0].opacity == 0 && now[1].opacity < 0.6;
    });
    holder.reset();
    waitFor("all is as before", [&] {
        auto now = items();
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (now[i].opacity < 1 || now[i].place != before[i].place) return false;
        }
        return true;
    });
}

TEST_F(MenuBar, takesInIconsThatAnotherTrayHasLeftAndNoOrdinaryWindow) {
    auto* c = server->get();
    xcb::Atoms atoms(c, {});
    const std::uint32_t info[] = {0, 1};
    auto mappedWindow = [&](std::uint16_t width, std::uint16_t height) {
        xcb_window_t window = xcb_generate_id(c);
        xcb_create_window(c, XCB_COPY_FROM_PARENT, window, server->root(), 50, 100, width, height,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb::writeNumbers(c, window, atoms["_XEMBED_INFO"], atoms["_XEMBED_INFO"], info);
        xcb_map_window(c, window);
        return window;
    };
    // As some toolkits have it with every window of theirs. It comes before the icon, so that it is
    // looked at before it.
    xcb_window_t ordinary = mappedWindow(400, 300);
    xcb_window_t icon = mappedWindow(22, 22);
    server->flush();
    startBar();
    waitFor("the bar takes the icon in", [&] { return items().size() == 1; });
    EXPECT_EQ(items().front().client, icon);
    xcb::Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(c, xcb_query_tree(c, ordinary), nullptr));
    ASSERT_TRUE(tree);
    EXPECT_EQ(tree->parent, server->root());
}

TEST_F(MenuBar, takesBackWhatAWindowManagerPutsAFrameAround) {
    startBar();
    startWindowManager();
    // It hears of the icon only when the bar has that already.
    program("openbox").signal(SIGSTOP);
    Probe other;
    Probe probe(true);
    waitForItems(2);
    program("openbox").signal(SIGCONT);
    waitFor("the window manager takes it", [&] { return items().size() == 1; });
    waitForItems(2);
    auto all = items();
    EXPECT_TRUE(std::any_of(all.begin(), all.end(),
                            [&](const Item& item) { return item.client == probe.window(); }));
}

}  // namespace
}  // namespace nevo::desktoptest
