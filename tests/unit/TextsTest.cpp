#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>

#include "LogicTest.h"
#include "core/Texts.h"
#include "entry/NevoApp.h"
#include "scenario/ScenarioRun.h"
#include "surfaces/PopoverContentView.h"

namespace nevo {

namespace {

using Table = std::map<std::string, std::string>;

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

Table tableOf(const std::string& language) {
    std::string path = NEVO_SOURCE_DIR "/resources/strings/" + language + ".json";
    return nlohmann::json::parse(contentOf(path)).get<Table>();
}

/// Whether it reads like a key, not like something for a person.
bool isKey(const std::string& text) {
    static const std::regex form(
        "(settings|onboarding|layout|popover|menu_bar|icon_rule|shelf)\\.[A-Za-z0-9_.]*");
    return std::regex_match(text, form);
}

struct Literal {
    std::string value;
    /// What stands before it in its statement, and after it to the end of the line.
    std::string before;
    std::string after;
    std::string file;
};

/// Every literal of a source; those that stand in several pieces as one.
std::vector<Literal> literalsIn(const std::filesystem::path& path) {
    static const std::regex form(R"re("((?:[^"\\\n]|\\.)*)")re");
    std::string source = std::regex_replace(contentOf(path), std::regex("\"[ \t]*\n[ \t]*\""), "");
    std::vector<Literal> found;
    for (std::sregex_iterator match(source.begin(), source.end(), form), end; match != end;
         ++match) {
        auto start = static_cast<std::size_t>(match->position());
        std::size_t statement = source.find_last_of(";{}", start);
        statement = statement == std::string::npos ? 0 : statement + 1;
        std::size_t rest = start + static_cast<std::size_t>(match->length());
        found.push_back({(*match)[1], source.substr(statement, start - statement),
                         source.substr(rest, source.find('\n', rest) - rest),
                         path.filename().string()});
    }
    return found;
}

std::vector<Literal> literalsOfTheSources() {
    std::vector<Literal> all;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(NEVO_SOURCE_DIR "/src")) {
        // Lines of scenarios name controls, not texts.
        bool isScenario = entry.path().parent_path().filename() == "randomrun";
        if (entry.path().extension() != ".cpp" || isScenario) continue;
        for (Literal& literal : literalsIn(entry.path())) all.push_back(std::move(literal));
    }
    return all;
}

/// Texts that are their own keys in English.
std::set<std::string> sentencesOfTheSources() {
    static const std::regex call("(^|[^A-Za-z_.>])text\\(\\s*$");
    std::set<std::string> sentences;
    for (const Literal& literal : literalsOfTheSources()) {
        if (std::regex_search(literal.before, call) && !isKey(literal.value))
            sentences.insert(literal.value);
    }
    return sentences;
}

std::size_t placesIn(const std::string& text) {
    std::size_t count = 0;
    for (auto at = text.find("{}"); at != std::string::npos; at = text.find("{}", at + 2)) ++count;
    return count;
}

}  // namespace

class TextsTest : public LogicTest {
protected:
    ~TextsTest() override { setTextLanguages({"en"}); }
};

TEST_F(TextsTest, FollowTheFirstLanguageThatThereIs) {
    const std::string key = "menu_bar.context_menu.quit";
    const std::string english = tableOf("en").at(key);
    const std::string chinese = tableOf("zh-Hans").at(key);
    const std::vector<std::string> simplified[] = {
        {"zh"},    {"zh-CN"},          {"zh-Hans"},     {"zh-Hans-CN"},  {"zh-Hans-HK"},
        {"zh-SG"}, {"de-DE", "zh-CN"}, {"zh-CN", "en"}, {"", "C", "zh"}, {"zh-TW", "zh-CN"}};
    for (const auto& preferred : simplified) {
        setTextLanguages(preferred);
        EXPECT_EQ(text(key), chinese) << preferred.front();
    }
    const std::vector<std::string> others[] = {
        {},        {""},           {"C"},     {"en-GB", "zh-CN"}, {"de-DE", "de"}, {"zh-TW"},
        {"zh-HK"}, {"zh-Hant-CN"}, {"zh-MO"}, {"zhx", "zh-Hant"}, {"-", "zha-CN"}};
    for (const auto& preferred : others) {
        setTextLanguages({"zh"});
        setTextLanguages(preferred);
        EXPECT_EQ(text(key), english) << (preferred.empty() ? "none" : preferred.front());
    }
    for (const char* language : {"en", "zh"}) {
        setTextLanguages({language});
        EXPECT_EQ(text("no.such.key"), "no.such.key");
    }
}

TEST_F(TextsTest, AreInTheLanguageOfTheSessionOnceTheProgramStands) {
    desktop.application.languages = {"fr", "zh-Hans-CN"};
    NevoApp nevo(platform);
    EXPECT_EQ(text("icon_rule.always_show"), tableOf("zh-Hans").at("icon_rule.always_show"));
}

TEST_F(TextsTest, SayTheSameInEachLanguage) {
    Table english = tableOf("en");
    for (const std::string& sentence : sentencesOfTheSources()) english[sentence] = sentence;
    Table chinese = tableOf("zh-Hans");
    for (const auto& [key, words] : english) {
        EXPECT_FALSE(words.empty()) << key;
        EXPECT_FALSE(isKey(words)) << key;
        EXPECT_FALSE(chinese[key].empty()) << key << " has no Chinese text";
        EXPECT_EQ(placesIn(words), placesIn(chinese[key])) << key;
    }
    for (const auto& [key, words] : chinese) EXPECT_TRUE(english.contains(key)) << key;
}

TEST_F(TextsTest, StandBehindEachKeyInTheSources) {
    Table english = tableOf("en");
    std::size_t keys = 0;
    for (const Literal& literal : literalsOfTheSources()) {
        bool isPart = literal.value.ends_with('.') || literal.after.starts_with(" +");
        // Controls without a text of their own have names of the same form.
        bool isName = literal.before.find(".key = ") != std::string::npos ||
                      literal.before.ends_with("plainText(");
        if (!isKey(literal.value) || isPart || isName) continue;
        ++keys;
        EXPECT_TRUE(english.contains(literal.value) || english.contains(literal.value + ".title"))
            << literal.value << " in " << literal.file;
    }
    EXPECT_GT(keys, 100U);
}

/// What the windows show, which also has the keys that are put together from parts.
class WindowTextsTest : public TextsTest {
protected:
    static void expectTexts(const Control& control) {
        std::vector<std::string> shown{control.title, control.detail};
        for (const ControlOption& option : control.options) shown.push_back(option.title);
        for (const std::string& words : shown) EXPECT_FALSE(isKey(words)) << words;
        for (const Control& child : control.children) expectTexts(child);
    }

    static void expectTextsInFront(const SimDesktop& of) {
        const auto* window = of.controlWindows.front();
        ASSERT_NE(window, nullptr);
        EXPECT_FALSE(isKey(window->configuration.title)) << window->configuration.title;
        expectTexts(window->content);
    }

    void press(const std::string& key) {
        auto control = desktop.controlWindows.control(key);
        ASSERT_TRUE(control) << key;
        control->press();
        desktop.loop.runFor(0.5);
    }

    AppState state{platform};
    ScreenCaptureService capture{platform};
    MenuBarScanner scanner{platform, capture};
    AccessibilityService accessibility{platform};
};

TEST_F(WindowTextsTest, StandBehindAllThatTheSettingsShow) {
    state.setShelfAppearance("custom");
    state.setShowOnHover(true);
    state.setAutoHideEnabled(true);
    state.setDisplayMode("shelf");
    state.rules.saveShelfItemOrder({"mail"});
    auto settings = SettingsWindowController::create(
        {platform, state, scanner, accessibility, nullptr, [] { return nullptr; }});
    settings->showSettings();
    expectTextsInFront(desktop);
    state.setDisplayMode("push");
    state.selectMenuBarIcon("wifi");
    state.rules.setAppRule(AppRule{{"mail"}, {"chat"}}, "org.example.editor");
    desktop.loop.runFor(0.5);
    expectTextsInFront(desktop);
    settings->close();
}

TEST_F(WindowTextsTest, StandBehindAllThatTheFirstRunAndTheHelpShow) {
    auto flow = OnboardingCoordinator::create(platform, accessibility);
    flow->show(OnboardingStep::welcome);
    expectTextsInFront(desktop);
    for (const char* next : {"welcome", "features", "mode"}) {
        press(std::string("onboarding.") + next + ".cta");
        expectTextsInFront(desktop);
    }
    EXPECT_EQ(flow->openStep(), OnboardingStep::permissions);
    flow->close();
    for (bool isExpanded : {true, false}) {
        state.setIsExpanded(isExpanded);
        expectTexts(popoverContent(state, nullptr));
    }
}

TEST_F(WindowTextsTest, StandBehindAllThatThePromptOfTheShelfShows) {
    std::istringstream lines(
        "set nevo displayMode string shelf\n"
        "permission screen-recording denied\n"
        "start\nsettle\ntoggle\nwait 0.5\n"
        "expect window screen-recording-prompt shown\n");
    Scenario scenario = readScenario("prompt", lines);
    ASSERT_TRUE(scenario.errors.empty()) << scenario.errors.front();
    ScenarioRun run(scenario);
    Outcome outcome = run.run();
    ASSERT_EQ(outcome.kind, Outcome::Kind::ok) << outcome.message;
    expectTextsInFront(run.desktop());
}

}  // namespace nevo
