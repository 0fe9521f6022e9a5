// Rules as they are stored, and the rule that an item finds when its name has changed.
#include "LogicTest.h"
#include "core/AppState.h"
#include "core/RuleStore.h"
#include "core/notificationNames.h"

namespace nevo {
namespace {

class RuleStoreTest : public LogicTest {
protected:
    void store(const char* key, const std::string& json) {
        desktop.defaults.write(desktop.defaults.ownDomain(), key, Bytes(json.begin(), json.end()));
    }
    static ScannedBarItem item(const std::string& label, const std::string& bundleID) {
        ScannedBarItem result;
        result.label = label;
        result.persistedID = label + " >>> " + bundleID;
        result.bundleID = bundleID;
        return result;
    }

    AppState state{platform};
    RuleStore& rules = state.rules;
};

TEST_F(RuleStoreTest, MapsDecodeWholeOrNotAtAllAndAreReplacedByTheNextWrite) {
    store("nevo_icon_rules",
          R"({"A >>> org.a":"alwaysHide","\u7535\u6c60 >>> org.\"b\"":"alwaysShow"})");
    EXPECT_EQ(rules.loadIconRules(), (IconRules{{"A >>> org.a", IconRule::alwaysHide},
                                                {"电池 >>> org.\"b\"", IconRule::alwaysShow}}));
    for (const char* broken : {"", "{", "[]", R"({"A":"never"})", R"({"A":1})", "\xff\xfe"}) {
        store("nevo_icon_rules", broken);
        EXPECT_TRUE(rules.loadIconRules().empty()) << broken;
    }
    rules.setIconRule(IconRule::alwaysShow, "A >>> org.a");
    EXPECT_EQ(rules.loadIconRules().size(), 1U);
    store("nevo_app_rules", R"({"org.a":{"hiddenIcons":["x"],"visibleIcons":[],"later":1}})");
    EXPECT_EQ(rules.loadAppRules()["org.a"].hiddenIcons, std::set<std::string>{"x"});
    store("nevo_app_rules", R"({"org.a":{"hiddenIcons":["x"]}})");
    EXPECT_TRUE(rules.loadAppRules().empty());
}

TEST_F(RuleStoreTest, ChangesArePostedEvenWhenNothingWasThere) {
    std::vector<std::string> posts;
    auto icons =
        platform.notifications.addObserver(nevoIconRulesChanged, [&](const Notification& n) {
            posts.push_back(n.userInfo.at("persistedID") + "=" + n.userInfo.at("rule"));
        });
    auto apps = platform.notifications.addObserver(nevoAppRulesChanged, [&](const Notification& n) {
        posts.push_back(n.userInfo.at("appBundleID"));
    });
    rules.setIconRule(IconRule::automatic, "A >>> org.a");
    rules.setIconRule(IconRule::alwaysHide, "\xff");
    rules.setAppRule(AppRule{{"x"}, {}}, "org.a");
    EXPECT_EQ(rules.loadAppRules().size(), 1U);
    rules.setAppRule(AppRule{}, "org.a");
    EXPECT_TRUE(rules.loadAppRules().empty());
    EXPECT_EQ(posts,
              (std::vector<std::string>{"A >>> org.a=auto", "\xff=alwaysHide", "org.a", "org.a"}));
}

TEST_F(RuleStoreTest, AnItemFindsItsRuleUnderAnOlderName) {
    IconRules stored{{"org.coarse", IconRule::alwaysHide},
                     {"Old >>> org.renamed", IconRule::alwaysShow}};
    auto key = [&](const ScannedBarItem& wanted, const ScannedBarItems& all) {
        auto match = matchIconRule(wanted, stored, all);
        return match ? match->first : "";
    };
    ScannedBarItem renamed = item("New", "org.renamed");
    EXPECT_EQ(key(item("Any", "org.coarse"), {}), "org.coarse");
    EXPECT_EQ(key(renamed, {renamed}), "Old >>> org.renamed");
    EXPECT_EQ(key(renamed, {renamed, item("Other", "org.renamed")}), "")
        << "which of the two is it?";
    EXPECT_EQ(key(item("New", "named"), {item("New", "named")}), "")
        << "an ending of another identifier";
    EXPECT_EQ(key(item("Any", ""), {}), "");
}

TEST_F(RuleStoreTest, OneDrivesItemsAreToldApartByTheirLabels) {
    const std::string drive = "com.microsoft.OneDrive";
    IconRules stored{{"A >>> " + drive, IconRule::alwaysHide},
                     {"C >>> " + drive, IconRule::alwaysShow}};
    ScannedBarItem a = item("A", drive);
    ScannedBarItem b = item("B", drive);
    EXPECT_EQ(matchIconRule(a, stored, {a, b})->first, a.persistedID);
    EXPECT_FALSE(matchIconRule(b, stored, {a, b}));
    EXPECT_TRUE(logHas("[Rules] ambiguous OneDrive fallback for " + drive + ": A >>> " + drive +
                       ",C >>> " + drive));
    ScannedBarItem unnamed = a;
    unnamed.persistedID = "Item-0 >>> " + drive;
    EXPECT_EQ(matchIconRule(unnamed, stored, {unnamed, b})->first, a.persistedID);
}

TEST_F(RuleStoreTest, TheShelfsOrderPutsNewItemsLast) {
    ScannedBarItems items{item("1", "o"), item("2", "o"), item("3", "o"), item("4", "o")};
    auto labels = [&] {
        std::string text;
        for (const auto& each : rules.orderedShelfItems(items)) text += each.label;
        return text;
    };
    EXPECT_EQ(labels(), "1234");
    rules.saveShelfItemOrder({"3 >>> o", "gone >>> o", "2 >>> o", "3 >>> o"});
    EXPECT_EQ(rules.shelfItemOrder().size(), 3U);
    EXPECT_EQ(labels(), "3214");
    // Ordered by hand while "gone" and "2" are away.
    rules.saveShelfItemOrder({"1 >>> o", "3 >>> o"});
    EXPECT_EQ(rules.shelfItemOrder(),
              (std::vector<std::string>{"1 >>> o", "3 >>> o", "gone >>> o", "2 >>> o"}));
    rules.saveShelfItemOrder({});
    EXPECT_TRUE(rules.shelfItemOrder().empty());
}

TEST_F(RuleStoreTest, ApplicationsRulesMatchAnyItemOfAnApplication) {
    ScannedBarItem mail = item("Mail", "org.mail");
    EXPECT_TRUE(itemMatchesRule(mail, {"Other >>> org.mail"}));
    EXPECT_FALSE(itemMatchesRule(mail, {"org.mail"}));
    mail.bundleID.clear();
    EXPECT_FALSE(itemMatchesRule(mail, {"Other >>> "}));
}

}  // namespace
}  // namespace nevo
