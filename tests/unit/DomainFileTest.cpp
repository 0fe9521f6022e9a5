#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>

#include "platform/store/DomainFile.h"

namespace nevo {
namespace {

namespace fs = std::filesystem;

class DomainFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/nevo-domain-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        folder = name;
        file = folder / "nevo" / "org.example.json";
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string text() const {
        std::ifstream in(file);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    void write(const std::string& content) const {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << content;
    }

    fs::path folder;
    fs::path file;
};

/// Runs `work` in a process of its own, so that limits and signals stay there.
int statusOf(const std::function<bool()>& work) {
    pid_t child = fork();
    if (child == 0) _exit(work() ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

TEST_F(DomainFileTest, EveryKindOfValueComesBackAsItWasWritten) {
    const DomainFile::Values values{
        {"yes", true},
        {"zero", std::int64_t{0}},
        {"least", std::numeric_limits<std::int64_t>::min()},
        {"whole number of points", 250.0},
        {"fraction", 0.1},
        {"text", std::string("\"quoted\"\n\xc3\xa9 \xf0\x9f\x93\x8c")},
        {"empty text", std::string()},
        {"no bytes", Bytes{}},
        {"one", Bytes{0xff}},
        {"two", Bytes{0, 0x80}},
        {"three", Bytes{1, 2, 3}},
        {"four", Bytes{0xfb, 0xff, 0xbf, 0}},
        {"no names", std::vector<std::string>{}},
        {"names", std::vector<std::string>{"a", "", "b"}},
    };
    DomainFile writer(file);
    ASSERT_TRUE(writer.update({values.begin(), values.end()}));

    DomainFile reader(file);
    EXPECT_EQ(reader.values(), values);
    EXPECT_EQ(reader.value("one"), DefaultsValue(Bytes{0xff}));
    EXPECT_EQ(reader.value("absent"), std::nullopt);
    EXPECT_TRUE(reader.takeProblems().empty());
}

TEST_F(DomainFileTest, TwoWritersMergeKeyByKey) {
    DomainFile bar(file);
    DomainFile manager(file);
    ASSERT_TRUE(bar.update({{"position", 300.0}, {"obsolete", true}}));
    ASSERT_TRUE(manager.update({{"setting", std::int64_t{2}}, {"obsolete", std::nullopt}}));
    ASSERT_TRUE(bar.reload());
    EXPECT_EQ(bar.keys(), (std::vector<std::string>{"position", "setting"}));
    EXPECT_EQ(manager.values(), bar.values());

    std::vector<pid_t> children;
    for (std::int64_t writer = 0; writer < 4; ++writer) {
        pid_t child = fork();
        if (child == 0) {
            bool good = true;
            DomainFile own(file);
            for (int i = 0; i < 25; ++i) {
                // A busy machine may keep the lock longer than one attempt waits for it.
                int attempts = 50;
                const DomainFile::Changes change{{std::to_string(writer * 100 + i), writer}};
                while (!own.update(change) && --attempts > 0) continue;
                good = good && attempts > 0;
            }
            _exit(good ? 0 : 1);
        }
        children.push_back(child);
    }
    for (pid_t child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(DomainFile(file).keys().size(), 102U);
}

TEST_F(DomainFileTest, AnotherFileOfTheSameSizeIsSeenAtOnce) {
    DomainFile reader(file);
    for (std::int64_t i = 0; i < 100; ++i) {
        // Another writer each time, so that the numbers of files come round.
        ASSERT_TRUE(DomainFile(file).update({{"number", i % 10}}));
        ASSERT_TRUE(reader.hasForeignChange());
        ASSERT_TRUE(reader.reload());
        ASSERT_EQ(reader.value("number"), DefaultsValue(i % 10)) << i;
    }
    // An editor may write into the file itself.
    std::string content = text();
    write(content.replace(content.find('9'), 1, "3"));
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(2));
    ASSERT_TRUE(reader.reload());
    EXPECT_EQ(reader.value("number"), DefaultsValue(std::int64_t{3}));
    ASSERT_TRUE(reader.update({{"number", std::int64_t{9}}}));
    EXPECT_FALSE(reader.hasForeignChange());
    EXPECT_EQ(DomainFile(file).value("number"), DefaultsValue(std::int64_t{9}));
}

TEST_F(DomainFileTest, AFullDiskOrAReadOnlyFolderLeavesTheOldContent) {
    DomainFile domain(file);
    ASSERT_TRUE(domain.update({{"kept", std::string("old")}}));
    const std::string before = text();
    const DomainFile::Changes large{{"kept", std::string(100000, 'x')}};

    EXPECT_EQ(statusOf([&] {
                  std::signal(SIGXFSZ, SIG_IGN);
                  rlimit limit{4096, 4096};
                  setrlimit(RLIMIT_FSIZE, &limit);
                  bool refused = !domain.update(large);
                  return refused && !domain.takeProblems().empty() &&
                         domain.value("kept") == DefaultsValue(std::string("old"));
              }),
              0);
    EXPECT_EQ(text(), before);

    // A writer killed halfway leaves a part of a new file beside the old one.
    EXPECT_EQ(WTERMSIG(statusOf([&] {
                  rlimit limit{4096, 4096};
                  setrlimit(RLIMIT_FSIZE, &limit);
                  return domain.update(large);
              })),
              SIGXFSZ);
    EXPECT_EQ(text(), before);
    EXPECT_TRUE(DomainFile(file).update({{"more", true}}));
    EXPECT_EQ(DomainFile(file).keys(), (std::vector<std::string>{"kept", "more"}));

    // A folder where the new content would be written stands for any other failure to create it;
    // permissions alone don't stop a test that runs as root.
    fs::create_directory(file.string() + ".new");
    EXPECT_FALSE(domain.update({{"kept", std::nullopt}}));
    EXPECT_EQ(DomainFile(file).value("kept"), DefaultsValue(std::string("old")));
    if (geteuid() == 0) return;
    fs::remove(file.string() + ".new");
    fs::permissions(file.parent_path(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_FALSE(domain.update({{"kept", std::nullopt}}));
    EXPECT_EQ(DomainFile(file).value("kept"), DefaultsValue(std::string("old")));
    fs::permissions(file.parent_path(), fs::perms::owner_all);
}

TEST_F(DomainFileTest, ABrokenFileIsSetAsideUnderTheNextFreeName) {
    const std::vector<std::string> broken{
        "{\"cut\": tr", "[1, 2]", "\xff\xfe", std::string(100000, '['),
        "{\"a\":" + std::string(1000, '[') + std::string(1000, ']') + "}"};
    for (std::size_t i = 0; i < broken.size(); ++i) {
        write(broken[i]);
        DomainFile domain(file);
        EXPECT_TRUE(domain.keys().empty());
        EXPECT_EQ(domain.takeProblems().size(), 1U);
        EXPECT_FALSE(fs::exists(file));
        std::ifstream aside(file.string() + ".broken-" + std::to_string(i + 1));
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(aside), {}), broken[i]);
    }
    // Broken while it is in use: the next change sets it aside and starts a new one.
    DomainFile domain(file);
    write("nonsense");
    EXPECT_TRUE(domain.update({{"new", true}}));
    EXPECT_TRUE(fs::exists(file.string() + ".broken-6"));
    EXPECT_EQ(DomainFile(file).keys(), (std::vector<std::string>{"new"}));
}

TEST_F(DomainFileTest, EntriesOfAnUnknownFormSurviveAndAreToldOnce) {
    write(R"({"good": 1, "future": {"kind": [1, {"deep": null}]}, "mixed": ["a", 2],
              "nothing": null, "huge": 18446744073709551615, "bad": {"base64": "?"}})");
    DomainFile domain(file);
    EXPECT_EQ(domain.keys(), (std::vector<std::string>{"good"}));
    EXPECT_EQ(domain.takeProblems().size(), 5U);
    EXPECT_TRUE(domain.update({{"good", std::int64_t{2}}, {"bad", std::nullopt}}));
    EXPECT_TRUE(domain.takeProblems().empty());
    for (const char* kept :
         {"\"deep\": null", "\"a\"", "\"nothing\": null", "18446744073709551615"}) {
        EXPECT_NE(text().find(kept), std::string::npos) << kept;
    }
    EXPECT_EQ(text().find("base64"), std::string::npos);
}

TEST_F(DomainFileTest, DomainNamesCantLeaveTheirFolder) {
    for (const char* name : {"", ".", "..", ".hidden", "a/b", "/etc/passwd"}) {
        EXPECT_EQ(DomainFile::pathFor(name), std::nullopt) << name;
    }
    const std::string home = getenv("HOME") != nullptr ? getenv("HOME") : "";
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    EXPECT_EQ(DomainFile::pathFor("org.example"), folder / "nevo/defaults/org.example.json");
    setenv("XDG_CONFIG_HOME", "relative", 1);
    setenv("HOME", folder.c_str(), 1);
    EXPECT_EQ(DomainFile::pathFor("org.example"),
              folder / ".config/nevo/defaults/org.example.json");
    unsetenv("XDG_CONFIG_HOME");
    setenv("HOME", home.c_str(), 1);
}

}  // namespace
}  // namespace nevo
