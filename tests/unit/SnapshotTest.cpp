// What the user interface is told of a scan: one entry an item, on its side, under a name that a
// person knows.
#include "LogicTest.h"
#include "entry/NevoApp.h"

namespace nevo {
namespace {

class SnapshotTest : public LogicTest {
protected:
    void SetUp() override {
        desktop.start([this](Platform given) {
            app = std::make_shared<NevoApp>(given);
            return app;
        });
        desktop.loop.runFor(2);
    }
    void TearDown() override {
        app.reset();
        desktop.application.terminate();
        desktop.reap();
    }

    static ScannedBarItem item(const std::string& id, const std::string& bundleID,
                               const std::string& label, double centerX) {
        ScannedBarItem result;
        result.persistedID = id;
        result.bundleID = bundleID;
        result.label = label;
        result.centerX = centerX;
        return result;
    }
    std::string labelOf(const std::string& bundleID, const std::string& label) {
        app->delegate().controller()->updateSnapshot(
            {item("Any >>> " + bundleID, bundleID, label, 10)}, false);
        return app->delegate().state().snapshotItems().front().label;
    }

    std::shared_ptr<NevoApp> app;
};

TEST_F(SnapshotTest, OneEntryAnIdHiddenFirst) {
    app->delegate().controller()->updateSnapshot(
        {item("Seen >>> org.seen", "org.seen", "Seen", 1400),
         item("Twin >>> org.twin", "org.twin", "Twin", 10),
         item("Twin >>> org.twin", "org.twin", "Twin", 1400),
         item("", "org.nameless", "Nameless", 20)},
        false);
    const auto& items = app->delegate().state().snapshotItems();
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].id, "Twin >>> org.twin");
    EXPECT_TRUE(items[0].isHidden) << "hidden on one side is hidden";
    EXPECT_FALSE(items[1].isHidden);
    EXPECT_EQ(app->delegate().state().hiddenBundleIDs(),
              (std::set<std::string>{"org.nameless", "org.twin"}));
}

TEST_F(SnapshotTest, ALabelOfNumbersGivesWayToTheApplicationsName) {
    launch("Vault", "org.vault", 30);
    launch("Agent.app", "org.agent.helper.helper", 30);
    EXPECT_EQ(labelOf("org.vault", "42%"), "42%");
    EXPECT_EQ(labelOf("org.vault", "42"), "Vault");
    EXPECT_EQ(labelOf("org.vault", ""), "Vault");
    EXPECT_EQ(labelOf("org.vault.helper", "42"), "Vault");
    EXPECT_EQ(labelOf("org.vault.menubar", "42"), "Vault");
    EXPECT_EQ(labelOf("org.agent.helper.helper", "7"), "Agent")
        << "as it is, before anything is cut off";
    EXPECT_EQ(labelOf("org.unknown", "42"), "42");
}

}  // namespace
}  // namespace nevo
