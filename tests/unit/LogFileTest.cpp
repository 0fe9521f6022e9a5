// The log on the disk: what is counted instead of written, and how the file keeps to its size.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "platform/store/LogFile.h"
#include "platform/store/RepeatedLines.h"

namespace nevo {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class RepeatedLinesTest : public ::testing::Test {
protected:
    /// What has been written since this was last called.
    Lines written() { return std::exchange(output, {}); }

    double time = 0;
    Lines output;
    RepeatedLines lines{[this](std::string_view line) { output.emplace_back(line); },
                        [this] { return time; }};
};

TEST_F(RepeatedLinesTest, ALineIsWrittenOnceAMinuteAndItsRepeatsAreCounted) {
    for (double at : {0.0, 10.0, 59.9}) {
        time = at;
        lines.add("a\n");
        lines.add(fmt::format("at {}\n", at));
    }
    EXPECT_EQ(written(), (Lines{"a\n", "at 0\n", "at 10\n", "at 59.9\n"}));
    time = 60;
    lines.add("a\n");
    EXPECT_EQ(written(), (Lines{"[Log] repeated within a minute, 2x: a\n", "a\n"}));
    // Counted anew from the last writing; any other line brings the count.
    time = 119;
    lines.add("a\n");
    time = 120;
    lines.add("b\n");
    EXPECT_EQ(written(), (Lines{"[Log] repeated within a minute, 1x: a\n", "b\n"}));
    lines.add("b\n");
    lines.flush();
    lines.flush();
    EXPECT_EQ(written(), Lines{"[Log] repeated within a minute, 1x: b\n"});
    lines.add("b\n");
    EXPECT_EQ(written(), Lines{"b\n"});
}

TEST_F(RepeatedLinesTest, TooManyLinesForgetTheOldestWithItsCount) {
    lines.add("first\n");
    lines.add("first\n");
    for (int i = 0; i < 255; ++i) lines.add(fmt::format("{}\n", i));
    lines.add("first\n");
    EXPECT_EQ(written().size(), 256U);
    lines.add("one more\n");
    EXPECT_EQ(written(), (Lines{"[Log] repeated within a minute, 2x: first\n", "one more\n"}));
    lines.add("first\n");
    lines.add("254\n");
    EXPECT_EQ(written(), Lines{"first\n"});
    const std::string large(10000, 'x');
    lines.add(large);
    lines.add(large);
    EXPECT_EQ(written(), (Lines{large, large})) << "kept in memory";
}

class LogFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/nevo-log-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        folder = name;
    }
    void TearDown() override { fs::remove_all(folder); }

    static std::string textOf(const fs::path& file) {
        std::ifstream in(file);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::string older() const { return textOf(folder / "log.1"); }
    std::string newer() const { return textOf(folder / "log"); }
    /// Line after line until the older ones have moved; all that was written.
    std::string fill(int& number) const {
        std::string all = newer();
        for (std::string before; newer().starts_with(before); ++number) {
            before = newer();
            std::string line = fmt::format("line {}\n", number);
            LogFile(folder / "log", limit).append(line);
            EXPECT_LE(newer().size(), limit);
            all += line;
        }
        return all;
    }

    static constexpr std::size_t limit = 1000;
    fs::path folder;
};

TEST_F(LogFileTest, TheOlderHalfMovesAsideInWholeLines) {
    int number = 0;
    for (int round = 0; round < 3; ++round) {
        std::string all = fill(number);
        EXPECT_EQ(older() + newer(), all);
        EXPECT_TRUE(older().ends_with("\n"));
        EXPECT_GT(older().size(), limit * 4 / 10);
        EXPECT_GT(newer().size(), limit * 4 / 10);
    }
    // A user takes it away, or lets it be kept elsewhere.
    fs::remove(folder / "log");
    LogFile(folder / "log", limit).append("anew\n");
    EXPECT_EQ(newer(), "anew\n");
    fs::create_directory(folder / "elsewhere");
    fs::rename(folder / "log", folder / "elsewhere/log");
    fs::create_symlink(folder / "elsewhere/log", folder / "log");
    std::string all = fill(number);
    EXPECT_EQ(older() + newer(), all);
    EXPECT_TRUE(fs::is_symlink(folder / "log"));
}

TEST_F(LogFileTest, AFileFromBeforeTheLimitKeepsItsLastLines) {
    std::string last;
    for (int i = 0; i < 1000; ++i) {
        std::string line = fmt::format("old {}\n", i);
        std::ofstream(folder / "log", std::ios::app) << line;
        if (i >= 900) last += line;
    }
    LogFile(folder / "log", limit).append("new\n");
    EXPECT_LE(newer().size(), limit);
    EXPECT_LE(older().size(), limit);
    EXPECT_TRUE((older() + newer()).ends_with(last + "new\n"));
    EXPECT_TRUE(older().starts_with("old "));
}

TEST_F(LogFileTest, ADiskThatFailsLosesNothingOlder) {
    int number = 0;
    fs::create_directory(folder / "log.1");
    for (; number < 500; ++number) {
        LogFile(folder / "log", limit).append(fmt::format("line {}\n", number));
    }
    std::string full = newer();
    EXPECT_TRUE(full.starts_with("line 0\n"));
    EXPECT_LE(full.size(), limit);
    EXPECT_GT(full.size(), limit - 20);
    fs::remove(folder / "log.1");
    LogFile(folder / "log", limit).append("well again\n");
    EXPECT_EQ(older() + newer(), full + "well again\n");
    LogFile(folder / "log", limit).append(std::string(limit, 'x'));
    LogFile(folder / "missing/log", limit).append("nowhere\n");
    EXPECT_EQ(older() + newer(), full + "well again\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2) << "something was left behind";
}

}  // namespace
}  // namespace nevo
