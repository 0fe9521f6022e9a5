// The one source of item lists: which windows count, whose they are, and where their pictures come
// from.
#include "LogicTest.h"
#include "discovery/MenuBarScanner.h"

namespace nevo {
namespace {

class MenuBarScannerTest : public LogicTest {
protected:
    ScannedBarItems scan(bool icons = false,
                         double maxX = std::numeric_limits<double>::infinity()) {
        return finish(scanner.scan({}, icons, maxX));
    }
    /// The ids of a scan, left to right.
    std::vector<std::string> ids() {
        std::vector<std::string> result;
        for (const ScannedBarItem& item : scan()) result.push_back(item.persistedID);
        return result;
    }

    ScreenCaptureService capture{platform};
    MenuBarScanner scanner{platform, capture};
};

TEST_F(MenuBarScannerTest, GeometryDecidesWhatIsAnItem) {
    for (double width : {500.0, 2.0, 2.5, 499.5}) {
        SimItemPlan item;
        item.width = width;
        launch("W" + std::to_string(width), "org." + std::to_string(width), item);
    }
    SimItemPlan bar;
    bar.layer = 24;
    launch("Bar", "org.bar", bar);
    auto items = scan();
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].width + items[1].width, 502.0);
    EXPECT_EQ(scan(false, items[1].centerX).size(), 1U) << "the limit itself is out";
    EXPECT_EQ(scan(false, items[1].centerX + 0.5).size(), 2U);
}

TEST_F(MenuBarScannerTest, FailuresMakeTheListSmallerAndAreLogged) {
    WindowNumber first = launch("First", "org.first", 30);
    WindowNumber second = launch("Second", "org.second", 30);
    desktop.faults.add(SimOperation::windowLevel, first, 1);
    EXPECT_EQ(ids(), std::vector<std::string>{"Second >>> org.second"});
    EXPECT_TRUE(logHas("[MenuBarScanner] level FAILED wid=" + std::to_string(first)));

    desktop.faults.add(SimOperation::windowFrame, second, 1);
    EXPECT_EQ(ids().size(), 2U) << "the window list knows the place too";
    desktop.faults.add(SimOperation::windowFrame, second, 1);
    desktop.faults.add(SimOperation::windowDescription, second, 1);
    EXPECT_EQ(ids().size(), 1U);
    EXPECT_TRUE(logHas("[MenuBarScanner] bounds FAILED wid=" + std::to_string(second)));

    desktop.faults.add(SimOperation::menuBarWindowList, std::nullopt, 1);
    EXPECT_EQ(ids().size(), 2U) << "the status layer knows the windows too";
    desktop.faults.add(SimOperation::windowCount, std::nullopt, 1);
    desktop.faults.add(SimOperation::windowList, std::nullopt, 1);
    EXPECT_TRUE(ids().empty());
    EXPECT_TRUE(logHas("[MenuBarScanner] No menu bar windows returned"));
}

TEST_F(MenuBarScannerTest, YoungListsServeUnlessEmptyOrForced) {
    EXPECT_TRUE(finish(scanner.scanCached({}, 100)).empty());
    launch("Late", "org.late", 30);
    EXPECT_EQ(finish(scanner.scanCached({}, 1000)).size(), 1U) << "an empty list never serves";
    launch("Later", "org.later", 30);
    EXPECT_EQ(finish(scanner.scanCached({}, 1000)).size(), 1U);
    EXPECT_TRUE(logHas("[MenuBarScanner] using cached scan (1 items)"));
    EXPECT_EQ(finish(scanner.scanCached({}, 0)).size(), 2U);
    desktop.applications.kill("Later");
    scanner.invalidateScanCache();
    EXPECT_EQ(finish(scanner.scanCached({}, 1000)).size(), 1U);
}

TEST_F(MenuBarScannerTest, UnnamedItemsAreNamedByTheirLabelButForOneApplication) {
    launch("Example", "org.example", SimItemPlan{});
    launch("OneDrive", "com.microsoft.OneDrive-mac", SimItemPlan{});
    SimItemPlan third;
    third.name = "Item-3";
    launch("Third", "org.third", third);
    SimItemPlan own;
    own.name = "Nevo_Stray";
    launch("Stray", "org.stray", own);
    auto found = ids();
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (std::vector<std::string>{"Example >>> org.example",
                                               "Item-0 >>> com.microsoft.OneDrive-mac",
                                               "Item-3 >>> org.third"}));
}

TEST_F(MenuBarScannerTest, ItemsThatTheControlCentreHoldsAreToldApartByPlace) {
    SimOtherProgram centre;
    centre.handle = "centre";
    centre.application.bundleIdentifier = "com.apple.controlcenter";
    centre.application.localizedName = "Control Center";
    desktop.applications.add(centre);
    desktop.applications.launch("centre");
    SimItemPlan lent;
    lent.windowOwner = "centre";
    lent.name = "";
    lent.title = "Vault";
    WindowNumber window = launch("Vault", "org.vault", lent);
    double midX = platform.windows.windowFrame(window)->midX();
    auto shiftChildTo = [&](double distance) {
        // The walk is kept for 10 s.
        desktop.loop.runFor(11);
        AccessibilityElement child{Point{midX + distance - 10, 0}, Size{20, 24}, "System extra",
                                   std::nullopt};
        desktop.applications.find("centre")->extraChildren = {child};
    };

    shiftChildTo(0);
    EXPECT_EQ(ids(), std::vector<std::string>{"Vault >>> org.vault"})
        << "another application goes first";
    desktop.permissions.accessibility = false;
    desktop.loop.runFor(11);
    EXPECT_EQ(ids(), std::vector<std::string>{"Vault >>> org.vault"})
        << "once known, it stays known";
    desktop.permissions.accessibility = true;

    SimItemPlan quiet;
    quiet.name = "";
    quiet.accessible = false;
    quiet.windowOwner = "centre";
    WindowNumber unknown = launch("Quiet", "org.quiet", quiet);
    midX = platform.windows.windowFrame(unknown)->midX();
    shiftChildTo(1.0);
    EXPECT_EQ(ids().front(), "Control Center >>> com.apple.controlcenter")
        << "a phantom at exactly one point";
    shiftChildTo(0.99);
    EXPECT_EQ(ids().front(), "System extra >>> com.apple.controlcenter");
}

TEST_F(MenuBarScannerTest, PicturesComeFromTheFirstRungThatHasThem) {
    launch("Shown", "org.shown", 30);
    auto source = [&] { return scan(true).front().icon->source; };
    std::string picture = source();
    EXPECT_TRUE(logHas("[MenuBarScanner] cached=0 cgs=1 sck=0"));
    EXPECT_EQ(source(), picture);
    EXPECT_TRUE(logHas("[MenuBarScanner] all 1 from cache"));

    // A new window of the same owner shares the picture.
    desktop.applications.kill("Shown");
    desktop.applications.launch("Shown");
    desktop.loop.runFor(1);
    desktop.faults.add(SimOperation::windowImage, std::nullopt, std::nullopt);
    EXPECT_EQ(source(), picture);

    launch("Second", "org.second", 40);
    scan(true);
    EXPECT_TRUE(logHas("[MenuBarScanner] cached=1 cgs=0 sck=1"));

    desktop.faults.add(SimOperation::captureImage, std::nullopt, std::nullopt);
    launch("Third", "org.third", 50);
    EXPECT_EQ(scan(true).front().icon->size, (Size{50, 24}));
    EXPECT_TRUE(logHas("[MenuBarScanner] cached=2 cgs=0 sck=0"));
    EXPECT_EQ(logCount("[MenuBarScanner] composite OK wid="), 1);
    scan(true);
    EXPECT_EQ(logCount("[MenuBarScanner] composite OK wid="), 2) << "crops go into no cache";

    desktop.faults.add(SimOperation::compositeImage, std::nullopt, std::nullopt);
    EXPECT_EQ(scan(true).front().icon->source, "symbol:app.dashed");
    EXPECT_EQ(logCount("label=Third"), 1);
}

TEST_F(MenuBarScannerTest, CapturesAreOneAfterTheOtherOnAListOfUnderFiveSeconds) {
    WindowNumber window = launch("Shown", "org.shown", 0.5);
    auto take = [&](std::vector<WindowNumber> windows) {
        return finish(capture.capture(std::move(windows)));
    };
    EXPECT_TRUE(take({}).empty());
    EXPECT_EQ(logCount("[SCK]"), 0);
    EXPECT_EQ(take({window}).at(window).bitmap->width, 2)
        << "half a point is one pixel, raised to two";

    // `finish` runs the clock for a minute, so the list is old by now; the next two captures are a
    // moment apart.
    desktop.faults.add(SimOperation::captureImage, window, 1);
    EXPECT_TRUE(take({window, 4711}).empty());
    EXPECT_TRUE(logHas("[SCK] capture done: requested=2 success=0 notInSCContent=1"));
    desktop.faults.add(SimOperation::shareableContent, std::nullopt, 1);
    EXPECT_TRUE(take({window}).empty());
    EXPECT_EQ(logCount("[SCK] SCShareableContent failed: "), 1);
    desktop.permissions.screenRecording = false;
    EXPECT_TRUE(take({window}).empty());
    EXPECT_EQ(logCount("Skipping SCK capture."), 1);
}

TEST_F(MenuBarScannerTest, PermissionIsAskedForOnceThenTheSettingsOpen) {
    desktop.permissions.screenRecording = false;
    capture.requestPermission();
    desktop.loop.runFor(0.79);
    EXPECT_EQ(desktop.screenCapture.promptCount(), 1);
    EXPECT_TRUE(desktop.workspace.openedUrls().empty());
    desktop.loop.runFor(0.02);
    EXPECT_EQ(desktop.workspace.openedUrls().size(), 1U);
    capture.requestPermission();
    EXPECT_EQ(desktop.screenCapture.promptCount(), 1);
    EXPECT_EQ(desktop.workspace.openedUrls().size(), 2U);
    desktop.permissions.screenRecording = true;
    capture.requestPermission();
    EXPECT_EQ(desktop.workspace.openedUrls().size(), 3U) << "granted, the settings still open";
}

}  // namespace
}  // namespace nevo
