// The scenario language itself: what it refuses, and how it says so. A reporter of a fault sees
// these messages.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "scenario/ScenarioRun.h"

namespace nevo {
namespace {

Outcome runText(const std::string& text) {
    std::istringstream stream(text);
    Scenario scenario = readScenario("s", stream);
    if (!scenario.errors.empty()) return Outcome::unreadable(scenario.errors.front());
    ScenarioRun run(scenario);
    return run.run();
}

TEST(ScenarioLanguage, EveryLineThatCantBeReadIsNamed) {
    struct Case {
        const char* text;
        const char* message;
    };
    for (const Case& c : {
             Case{"wait 1\n\n  waiit 1", "s:3: there is no \"waiit\"; allowed: display, "},
             Case{"expect ordr a", "s:1: there is no \"expect ordr\"; allowed: order, left-of"},
             Case{"expect", "s:1: what is expected is missing"},
             Case{"wait", "s:1: SECONDS is missing; the form is: wait SECONDS"},
             Case{"wait soon", "s:1: SECONDS must be a number, not \"soon\""},
             Case{"wait -1", "s:1: SECONDS can't be negative"},
             Case{"wait 1e999", "s:1: SECONDS must be a number"},
             Case{"wait nan", "s:1: SECONDS must be a number"},
             Case{"wait 1 2", "s:1: too many words; the form is: wait SECONDS"},
             Case{"say \"open", "s:1: a quote isn't closed"},
             Case{"after 1 wait 1", "s:1: wait takes time itself and can't follow \"after\""},
             Case{"after 1 kill", "s:1: APP is missing"},
             Case{"fault everything", "s:1: OPERATION must be windowCount, "},
             Case{"fault drag sometimes", "s:1: how often must be once, times COUNT or always"},
             Case{"set nevo key bytes 0g", "s:1: bytes are pairs of"},
             Case{"display 0 0 0 10 10", "s:1: ID must be 1 or more"},
             Case{"kill x", "s:1: there is no program \"x\"; there are: none"},
             Case{"app a b\nitem i a\nexpect x j 1",
                  "s:3: there is no item or window \"j\" now; there are: i"},
             Case{"toggle", "s:1: Nevo isn't running"},
             Case{"choose k", "s:1: no menu is open"},
         }) {
        Outcome outcome = runText(c.text);
        EXPECT_EQ(outcome.kind, Outcome::Kind::unreadable) << c.text;
        EXPECT_EQ(outcome.message.rfind(c.message, 0), 0U) << outcome.message;
    }
}

TEST(ScenarioLanguage, AnExpectationThatIsntMetTellsBothSides) {
    struct Case {
        const char* text;
        const char* message;
    };
    const std::string bar = "app a b\nitem i a width 30\nitem j a width 20\nwait 1\n";
    for (const Case& c : {
             Case{"expect order i j", "s:5: the order: expected i j, actual j i"},
             Case{"expect x i 5 within 2", "s:5: x of i: expected 5, actual 1290"},
             Case{"expect shown i\nexpect hidden i",
                  "s:6: i: expected hidden, actual x 1290 width 30 alpha 1"},
             Case{"expect default nevo k none\nexpect default nevo k int 3",
                  "s:6: \"k\" of nevo: expected int 3, actual none"},
             Case{"expect log x", "s:5: expected a log line with \"x\", actual: the log is empty"},
             Case{"after 1 expect running a no\nwait 3", "s:5: a running: expected no, actual yes"},
         }) {
        Outcome outcome = runText(bar + c.text);
        EXPECT_EQ(outcome.kind, Outcome::Kind::failed) << c.text;
        EXPECT_EQ(outcome.message, c.message);
    }
}

TEST(ScenarioLanguage, QuotesAndCommentsAreTakenApart) {
    Outcome outcome = runText(
        "  # a comment\n"
        "set nevo \"a key\" string \"x # \\\"y\\\" \\\\\"  # behind a command\n"
        "expect default nevo \"a key\" string \"x # \\\"y\\\" \\\\\"\n"
        "set nevo k list a \"b c\"\r\n"
        "expect default nevo k list a \"b c\"\n"
        "set nevo k bytes 00ff\nexpect default nevo k bytes 00ff\n"
        "unset nevo k\nexpect default nevo k none\n");
    EXPECT_TRUE(outcome) << outcome.message;
}

TEST(ScenarioLanguage, TheDocumentNamesEachCommandWithItsForm) {
    std::ifstream file(NEVO_SOURCE_DIR "/docs/scenarios.md");
    std::stringstream text;
    text << file.rdbuf();
    for (const Command& command : commands()) {
        std::string form = command.name;
        if (!command.arguments.empty()) form += " " + command.arguments;
        EXPECT_NE(text.str().find("`" + form + "`"), std::string::npos) << form;
    }
    for (const std::string& name : SimFaults::names()) {
        EXPECT_NE(text.str().find("`" + name + "`"), std::string::npos) << name;
    }
}

TEST(ScenarioLanguage, TheDocumentsExampleRuns) {
    std::ifstream file(NEVO_SOURCE_DIR "/docs/scenarios.md");
    std::string line;
    std::string example;
    bool inside = false;
    while (std::getline(file, line)) {
        if (line == "```scenario") {
            inside = true;
        } else if (line == "```") {
            inside = false;
        } else if (inside) {
            example += line + "\n";
        }
    }
    ASSERT_FALSE(example.empty());
    Outcome outcome = runText(example);
    EXPECT_TRUE(outcome) << outcome.message;
}

}  // namespace
}  // namespace nevo
