// On a screen of high resolution everything is as many times larger, and nothing else changes.

#include <xcb/xcb.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "desktop/NevoSession.h"

namespace nevo::desktoptest {
namespace {

class Scale : public NevoSession {
protected:
    void setResolution(const std::string& dotsPerInch) {
        std::string resources = "*customization: -color\nXft.dpi:\t" + dotsPerInch + "\n";
        xcb_change_property(server->get(), XCB_PROP_MODE_REPLACE, server->root(),
                            XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(resources.size()), resources.data());
        server->flush();
    }
    /// The toggle's saved distance from the row's end.
    double savedPlace() const {
        std::ifstream file(defaultsFile("com.nevoapp.Nevo"));
        auto values = nlohmann::json::parse(file, nullptr, false);
        return values.is_object() ? values.value("NSStatusItem Preferred Position Nevo_Toggle", 0.0)
                                  : 0.0;
    }
};

TEST_F(Scale, everythingFollowsTheResolutionOfTheScreen) {
    setResolution("192");
    startAll();
    Item icon = toggleItem();
    EXPECT_EQ(icon.slot.height, 48);
    EXPECT_GE(icon.slot.width, 2 * 22);
    toggle(names());
    for (const Item& each : programItems()) EXPECT_GE(each.slot.width, 48) << nameOf(each);
    EXPECT_TRUE(becomesDense());

    // The order by hand, and what is remembered of it: points.
    keepVisible(2);
    Names before = names();
    double rowEnd = programItems().back().slot.maxX();
    double place = rowEnd - toggleItem().slot.x;
    waitFor("the toggle's place has been saved in points",
            [&] { return std::abs(savedPlace() - place / 2) < 1; });

    // The same on a screen of half the resolution.
    kill(nevo(), SIGTERM);
    kill(bar(), SIGTERM);
    setResolution("96");
    startBar();
    waitForItems(before.size());
    EXPECT_EQ(names(), before);
    startNevo();
    waitFor("Nevo's icon is small and stands where it stood", [&] {
        return items().size() > before.size() && toggleItem().slot.height == 24 &&
               namesRightOfToggle().size() == 2;
    });
}

}  // namespace
}  // namespace nevo::desktoptest
