#include <gtest/gtest.h>

#include "discovery/ItemIdentity.h"

namespace nevo {
namespace {

TEST(ItemIdentity, UnnamedItemsFoldToOneNameForKeysOnly) {
    EXPECT_EQ(stableName("Item-3 >>> org.example.app"), "Item-0");
    EXPECT_EQ(stableName("Item-12"), "Item-0");
    // Only digits after the hyphen, and at least one.
    for (const char* name : {"Item-", "Item-3b", "MyItem-3", "item-3"})
        EXPECT_EQ(stableName(name), name);
    EXPECT_EQ(stableName("a >>> b >>> c"), "a");
}

TEST(ItemIdentity, BundleIdentifierOfAnId) {
    EXPECT_EQ(bundleIDFromPersistedID("Sync >>> org.example.app"), "org.example.app");
    EXPECT_EQ(bundleIDFromPersistedID("Sync >>> "), "");
    EXPECT_EQ(bundleIDFromPersistedID("org.example.app"), "org.example.app");
    EXPECT_EQ(bundleIDFromPersistedID("Sync"), std::nullopt);
}

TEST(ItemIdentity, PhantomsAreTheControlCentresOwnNameOnly) {
    EXPECT_TRUE(isPhantomID("Control Center >>> com.apple.controlcenter"));
    EXPECT_TRUE(isPhantomID("控制中心 >>> "));
    EXPECT_FALSE(isPhantomID("Control Centre >>> com.apple.controlcenter"));
    EXPECT_FALSE(isPhantomID("My Control Center >>> org.example.app"));
}

TEST(ItemIdentity, IconKeysNeedAnOwnerThatIsKnown) {
    struct Case {
        const char* persistedID;
        const char* bundleID;
        std::optional<std::string> key;
        const char* preferred;
    };
    const Case cases[] = {
        {"Sync >>> org.example.app", "org.other", "org.example.app", "org.other"},
        {"Sync >>> undotted", "org.other", "org.other", "org.other"},
        {"Battery >>> com.apple.controlcenter", "com.apple.controlcenter", std::nullopt,
         "com.apple.controlcenter"},
        {"org.example.app >>> com.apple.controlcenter", "com.apple.controlcenter", std::nullopt,
         "org.example.app"},
        {"Clock >>> com.apple.systemuiserver", "com.apple.systemuiserver",
         "com.apple.systemuiserver", "com.apple.systemuiserver"},
        {"Sync >>> ", "", std::nullopt, ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(iconOwnerKey(c.persistedID, c.bundleID), c.key) << c.persistedID;
        EXPECT_EQ(preferredIconBundleID(c.persistedID, c.bundleID), c.preferred) << c.persistedID;
    }
}

TEST(ItemIdentity, SymbolsByFirstHit) {
    EXPECT_EQ(symbolName("Clock and BATTERY", ""), "battery.75percent");
    EXPECT_EQ(symbolName("Wi\u2011Fi", ""), "wifi");
    EXPECT_EQ(symbolName("WI-FI", ""), "wifi");
    EXPECT_EQ(symbolName("日期", "org.istat"), "clock");
    EXPECT_EQ(symbolName("Meter", "org.istat.menus"), "speedometer");
    // The label counts for labels only, the identifier for identifiers only, and its case matters.
    EXPECT_EQ(symbolName("clipboard", "org.battery"), std::nullopt);
    EXPECT_EQ(symbolName("", "org.Clipboard"), std::nullopt);
}

}  // namespace
}  // namespace nevo
