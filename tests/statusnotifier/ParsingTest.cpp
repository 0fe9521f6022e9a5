// What reads the bytes of other programs: the gate before the bus, properties, pictures, texts.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "platform/xcb/CommandLine.h"
#include "platform/xcb/DesktopEntries.h"
#include "platform/xcb/OwnerIdentity.h"
#include "platform/xcb/Sandbox.h"
#include "statusnotifier/ItemProperties.h"
#include "statusnotifier/MessageGate.h"
#include "statusnotifier/Pixmap.h"
#include "statusnotifier/fuzzTargets.h"

namespace nevo::statusnotifier {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A message of the order of bytes `order` whose fields and body are so long.
Bytes messageOf(char order, std::uint32_t fields, std::uint32_t body) {
    Bytes bytes(16, 0);
    bytes[0] = static_cast<std::uint8_t>(order);
    auto put = [&](std::size_t at, std::uint32_t number) {
        for (std::size_t i = 0; i < 4; ++i) {
            std::size_t place = order == 'l' ? at + i : at + 3 - i;
            bytes[place] = static_cast<std::uint8_t>(number >> (8 * i));
        }
    };
    put(4, body);
    put(12, fields);
    bytes.resize(16 + (fields + 7) / 8 * 8 + body, 0x55);
    return bytes;
}

Bytes operator+(Bytes one, const Bytes& other) {
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

TEST(MessageGate, dropsWhatIsTooLargeAndNothingElse) {
    const std::string words = "DATA\r\nOK 0123\r\n";
    Bytes greeting(words.begin(), words.end());
    Bytes small = messageOf('l', 13, 100);
    Bytes other = messageOf('B', 8, 0);
    Bytes large = messageOf('B', 5, 4000);
    Bytes exact = messageOf('l', 8, 1000 - 24);
    MessageGate gate(1000);
    Bytes out;
    EXPECT_TRUE(gate.pass(greeting + small + large + other + exact + large + small, out));
    EXPECT_EQ(out, greeting + small + other + exact + small);
    EXPECT_EQ(gate.dropped(), 2U);
}

TEST(MessageGate, refusesWhatIsNoStreamOfABus) {
    Bytes out;
    EXPECT_FALSE(MessageGate(1000).pass(messageOf('l', 8, 8) + Bytes(16, 'x'), out));
    Bytes giant = messageOf('l', 8, 8);
    giant[7] = 0xFF;
    EXPECT_FALSE(MessageGate(1000).pass(giant, out));
    EXPECT_FALSE(MessageGate(1000).pass(Bytes(100'000, 'x'), out));
}

TEST(Pixmap, countsOnlyIfItIsAsLargeAsItSays) {
    Bytes bytes(4 * 4 * 4, 0xFF);
    EXPECT_TRUE(isSound({4, 4, bytes}));
    EXPECT_FALSE(isSound({4, 5, bytes}));
    EXPECT_FALSE(isSound({-4, -4, bytes}));
    EXPECT_FALSE(isSound({0, 0, {}}));
    EXPECT_FALSE(isSound({0x10000, 0x10000, bytes}));
    Bytes wide(static_cast<std::size_t>(largestPixmapSide + 1) * 4, 0);
    EXPECT_FALSE(isSound({largestPixmapSide + 1, 1, wide}));
}

TEST(Pixmap, isScaledInProportionAndPremultiplied) {
    // Two columns, half transparent red and opaque blue, twice as high as wide.
    Bytes bytes;
    for (int row = 0; row < 4; ++row) {
        bytes = bytes + Bytes{0x80, 0xFF, 0x00, 0x00, 0xFF, 0x00, 0x00, 0xFF};
    }
    RawPixmap pixmap{2, 4, bytes};
    EXPECT_EQ(scaledToFit(pixmap, 5).height, 4) << "sharp is better than a little larger";
    Picture large = scaledToFit(pixmap, 8);
    EXPECT_EQ(large.width, 4);
    EXPECT_EQ(large.pixels.size(), 32U);
    // Halfway between the middles of the two columns, at a quarter and at three quarters.
    const std::vector<std::uint32_t> blended{0x80800000U, 0xA0600040U, 0xDF2000BFU, 0xFF0000FFU};
    for (auto row = large.pixels.begin(); row != large.pixels.end(); row += large.width) {
        EXPECT_EQ(std::vector<std::uint32_t>(row, row + large.width), blended);
    }
    Picture half = scaledToFit(pixmap, 2);
    EXPECT_EQ(half.width, 1);
    EXPECT_EQ(half.height, 2);
    EXPECT_EQ(half.pixels, (std::vector<std::uint32_t>(2, 0xC0400080U)));

    RawPixmap small{16, 16, {}};
    RawPixmap fitting{24, 24, {}};
    RawPixmap huge{64, 64, {}};
    EXPECT_TRUE(isBetter(fitting, small, 22) && isBetter(fitting, huge, 22));
    EXPECT_TRUE(isBetter(huge, small, 22) && isBetter(huge, fitting, 32));
}

TEST(PlainText, hasNothingThatActs) {
    EXPECT_EQ(plainText("a\nb\x1b[31m\x7f", 100), "ab[31m");
    EXPECT_EQ(plainText("\u202Eabc\u2066\u200F", 100), "abc");
    EXPECT_EQ(plainText("<b>&amp;</b>", 100), "<b>&amp;</b>") << "markup is text";
    EXPECT_EQ(plainText("\u00e4\u00f6\u00fc", 5), "\u00e4\u00f6") << "cut between characters";
}

TEST(Identity, isThatOfTheSandboxOrOfWhatAnInterpreterRuns) {
    using xcb::sandboxOfControlGroups;
    EXPECT_EQ(sandboxOfControlGroups("0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
                                     "app-flatpak-org.example.My\\x2dChat-48213.scope\n"),
              "org.example.My-Chat");
    EXPECT_EQ(sandboxOfControlGroups(
                  "0::/user.slice/snap.chat.client-9d1c5d40-1b1a-4a7e-8f0e-7d9c8b7a6f5e.scope\n"),
              "chat_client");
    EXPECT_EQ(sandboxOfControlGroups("0::/x/snap.chat.client.9d1c-5d40.scope\n"), "chat_client");
    EXPECT_EQ(sandboxOfControlGroups("0::/user.slice/session-2.scope\n"), "");

    using xcb::programOfCommandLine;
    EXPECT_EQ(programOfCommandLine({"/usr/bin/electron22", "/usr/lib/chat/app.asar"}), "chat");
    EXPECT_EQ(programOfCommandLine({"/usr/bin/electron", "--flag", "/opt/editor/resources/app"}),
              "editor");
    EXPECT_EQ(programOfCommandLine({"python3", "/usr/share/mailer/main.py"}), "mailer");
    EXPECT_EQ(programOfCommandLine({"python3", "-m", "mailer"}), "mailer");
    EXPECT_EQ(programOfCommandLine({"python3", "main.py"}, "/opt/mailer"), "mailer");
    EXPECT_EQ(programOfCommandLine({"python3", "../main.py"}, "/opt/mailer/bin"), "mailer");
    EXPECT_EQ(programOfCommandLine({"python3", "../main.py"}), "main.py");
    EXPECT_EQ(programOfCommandLine({"java", "-jar", "/opt/talk/talk-2.14.1.jar"}), "talk");
    EXPECT_EQ(programOfCommandLine({"java", "-p", "/opt/m", "--add-opens", "a/b=c", "-jar",
                                    "/opt/talk/talk-2.14.1-all.jar"}),
              "talk");
    EXPECT_EQ(programOfCommandLine({"perl", "-p", "/opt/filter-2"}), "filter-2");
    EXPECT_EQ(programOfCommandLine({"python3", "/opt/talk-2.14/main.py"}), "talk");
    EXPECT_EQ(programOfCommandLine({"python3", "/tmp/.mount_TalkaBcDeF/usr/src/main.py"}),
              "main.py");
    EXPECT_EQ(programOfCommandLine({"python3", "/tmp/.mount_TalkaBcDeF/usr/share/talk/main.py"}),
              "talk");
    EXPECT_EQ(programOfCommandLine({"/opt/chat/electron", "--flag"}), "chat");
    EXPECT_EQ(programOfCommandLine({"/usr/lib/electron22/electron"}), "");
    EXPECT_EQ(programOfCommandLine({"/usr/bin/mono-sgen", "/usr/lib/notes/notes.exe"}),
              "notes.exe");
    EXPECT_EQ(programOfCommandLine({"dotnet", "exec", "/opt/notes/notes.dll"}), "notes.dll");
    EXPECT_EQ(programOfCommandLine({"/usr/lib/wine/wine64-preloader", "C:\\chat\\chat.exe"}),
              "chat.exe");

    using xcb::sandboxOfFlatpakInfo;
    EXPECT_EQ(sandboxOfFlatpakInfo("[Runtime]\nname=base\n[Application]\nname=org.example.Chat\n"),
              "org.example.Chat");
    EXPECT_EQ(sandboxOfFlatpakInfo("[Application]\nruntime=base\n[Instance]\nname=1\n"), "");
}

TEST(Identity, isNotThatOfAnotherProgramWhoseIdIsClaimed) {
    using xcb::stableId;
    EXPECT_EQ(stableId("chrome_status_icon_1", 1), "chrome_status_icon_1");
    EXPECT_EQ(stableId("item-12345", 1234), "item-12345");
    EXPECT_EQ(stableId("item-1234-1", 1234), "");

    auto folder =
        std::filesystem::temp_directory_path() / ("nevo-entries-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "notes.desktop") << "[Desktop Entry]\nType=Application\nName=Notes\n"
                                               "Exec=notes\nStartupWMClass=Notes\n";
    xcb::DesktopEntries installed({folder}, "C");
    xcb::OwnerIdentities owners(installed);
    auto own = owners.identifyClaimed(getpid(), "notes");
    EXPECT_EQ(own.applicationId, xcb::programOfProcess(getpid()));
    EXPECT_EQ(owners.identifyClaimed(std::nullopt, "notes").name, "Notes");
    EXPECT_EQ(owners.identifyClaimed(std::nullopt, "").applicationId, "unknown");
    std::filesystem::remove_all(folder);
}

/// Every input of the corpus as it is, and with a few bytes changed, cut or doubled.
void replay(const char* name, FuzzTarget target) {
    constexpr int variants = 300;
    std::mt19937 random(1);
    int inputs = 0;
    for (const auto& file :
         std::filesystem::directory_iterator(std::filesystem::path(NEVO_CORPUS) / name)) {
        std::ifstream stream(file.path(), std::ios::binary);
        Bytes input((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
        ++inputs;
        target(input);
        for (int i = 0; i < variants && !input.empty(); ++i) {
            Bytes variant = input;
            for (unsigned change = random() % 4 + 1; change > 0 && !variant.empty(); --change) {
                auto at = variant.begin() + static_cast<std::ptrdiff_t>(random() % variant.size());
                unsigned kind = random() % 8;
                if (kind == 0)
                    variant.erase(at, variant.end());
                else if (kind == 1)
                    variant.insert(at, static_cast<std::uint8_t>(random()));
                else
                    *at = static_cast<std::uint8_t>(kind == 2 ? 0xFF : random());
            }
            target(variant);
        }
    }
    EXPECT_GT(inputs, 2) << "the corpus is there";
}

TEST(Fuzz, streams) { replay("stream", fuzzStream); }
TEST(Fuzz, properties) { replay("properties", fuzzProperties); }
TEST(Fuzz, texts) { replay("text", fuzzText); }

}  // namespace
}  // namespace nevo::statusnotifier
