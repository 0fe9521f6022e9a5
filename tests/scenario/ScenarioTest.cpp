// Runs every scenario of this folder on a desktop of its own, and one of them twice.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

#include "scenario/ScenarioRun.h"

namespace nevo {
namespace {

/// In one order on every machine.
std::vector<std::filesystem::path> scenarioFiles() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry :
         std::filesystem::directory_iterator(NEVO_SOURCE_DIR "/tests/scenario")) {
        if (entry.path().extension() == ".scenario") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

struct Ran {
    Outcome outcome;
    std::string trace;
};

Ran runFile(const std::filesystem::path& file) {
    std::ifstream text(file);
    Scenario scenario = readScenario(file.filename().string(), text);
    Ran ran;
    for (const std::string& error : scenario.errors) ran.trace += error + "\n";
    if (!scenario.errors.empty()) {
        ran.outcome = Outcome::unreadable("it can't be read");
        return ran;
    }
    ScenarioRun run(scenario);
    ran.outcome = run.run();
    for (const std::string& line : run.desktop().trace.lines()) ran.trace += line + "\n";
    return ran;
}

class ScenarioTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(ScenarioTest, MeetsItsExpectationsTheSameWayEachTime) {
    Ran first = runFile(GetParam());
    EXPECT_TRUE(first.outcome) << first.outcome.message << "\n" << first.trace;
    EXPECT_EQ(first.trace, runFile(GetParam()).trace);
}

INSTANTIATE_TEST_SUITE_P(Files, ScenarioTest, testing::ValuesIn(scenarioFiles()),
                         [](const auto& file) {
                             std::string name = file.param.stem().string();
                             for (char& c : name) {
                                 if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
                             }
                             return name;
                         });

}  // namespace
}  // namespace nevo
