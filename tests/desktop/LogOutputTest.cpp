// What the real desktop's log leaves on the disk.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "platform/x11/X11LogOutput.h"

namespace nevo::desktoptest {
namespace {

class LogOutputTest : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/nevo-home-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        home = name;
        if (const char* before = getenv("HOME")) homeBefore = before;
        setenv("HOME", home.c_str(), 1);
        unsetenv("NEVO_LOG_ALL");
    }
    void TearDown() override {
        unsetenv("NEVO_LOG_ALL");
        homeBefore ? setenv("HOME", homeBefore->c_str(), 1) : unsetenv("HOME");
        std::filesystem::remove_all(home);
    }

    /// What the file has in the end of lines that a program writes twice.
    std::string written() const {
        {
            X11LogOutput output;
            for (const char* line : {"one\n", "two\n", "one\n"}) output.appendToLogFile(line);
        }
        std::ifstream in(home / "nevo_debug.log");
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::filesystem::path home;
    std::optional<std::string> homeBefore;
};

TEST_F(LogOutputTest, countsWhatComesAgainAndTellsItAtTheEnd) {
    EXPECT_EQ(written(), "one\ntwo\n[Log] repeated within a minute, 1x: one\n");
}

TEST_F(LogOutputTest, writesEachLineWhereTheEnvironmentSaysSo) {
    setenv("NEVO_LOG_ALL", "1", 1);
    EXPECT_EQ(written(), "one\ntwo\none\n");
}

}  // namespace
}  // namespace nevo::desktoptest
