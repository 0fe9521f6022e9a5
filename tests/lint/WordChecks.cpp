#include <algorithm>
#include <regex>
#include <sstream>

#include "lint/Checks.h"

namespace nevo::lint {

namespace {

/// Calls `visit` with each line and its number.
template <typename Visit>
void eachLine(const std::string& text, Visit visit) {
    std::istringstream stream(text);
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line);) visit(line, ++number);
}

Findings linesWith(const SourceFile& file, const std::string& text, const std::regex& pattern,
                   const std::string& what) {
    Findings findings;
    eachLine(text, [&](const std::string& line, std::size_t number) {
        std::smatch match;
        if (!std::regex_search(line, match, pattern)) return;
        findings.push_back(file.path + ":" + std::to_string(number) + ": " + match.str() + ": " +
                           what);
    });
    return findings;
}

bool endsLikeScript(const std::string& path) {
    return path.ends_with(".sh") || path.ends_with(".py") || path.starts_with("scripts/") ||
           path.ends_with("CMakeLists.txt") || path == "run" || path == "test";
}

}  // namespace

Findings clocksAndChance(const SourceFile& file) {
    bool simulated = (file.isIn("src") || file.isIn("apps")) && !file.isIn("src/platform/x11") &&
                     !file.isIn("src/menubar") && !file.isIn("src/trayhelper");
    if (!simulated || !file.isCode()) return {};
    static const std::regex pattern(
        "_clock::now|\\bsleep_(for|until)\\b|\\bu?sleep\\(\\d|\\bnanosleep\\b|\\bQTimer\\b|"
        "\\bs?rand\\(|\\brandom_device\\b|\\bgettimeofday\\b|\\bclock_gettime\\b|"
        "\\btime\\((nullptr|0|NULL)\\)");
    // The pause of a coroutine has the same name as the one of the process.
    static const std::regex pause("co_await sleep\\(");
    std::string code = std::regex_replace(file.code(), pause, "co_await pause(");
    return linesWith(file, code, pattern, "time and chance come through the run loop");
}

Findings overlongFiles(const SourceFile& file) {
    if (!file.isCode() && !endsLikeScript(file.path)) return {};
    auto lines = std::count(file.text.begin(), file.text.end(), '\n');
    if (lines <= 600) return {};
    return {file.path + ": " + std::to_string(lines) + " lines, more than 600"};
}

Findings pointersOutside(const SourceFile& file) {
    // Put together from pieces, or this file would be found.
    static const std::regex pattern(
        "\\bspec"
        "(s|ification|ifications)?\\b|\\bPart "
        "[0-9]+\\b|/wor"
        "k/|/hom"
        "e/[a-z]|\\.\\./shar"
        "ed\\b",
        std::regex::icase);
    static const std::regex published(
        "freedesktop|ICCCM|EWMH|XEmbed|XDG|system tray|StatusNotifier|D-Bus|Keep a Changelog",
        std::regex::icase);
    Findings findings;
    eachLine(file.prose(), [&](const std::string& line, std::size_t number) {
        std::smatch match;
        if (!std::regex_search(line, match, pattern) || std::regex_search(line, published)) return;
        findings.push_back(file.path + ":" + std::to_string(number) + ": \"" + match.str() +
                           "\" points outside of the tree");
    });
    return findings;
}

Findings sleepingTests(const SourceFile& file) {
    if (!file.isIn("tests") || !file.isCode()) return {};
    static const std::regex pattern("\\bDISABLED_\\w+|\\bGTEST_SKIP\\b");
    return linesWith(file, file.code(), pattern, "a test that doesn't run proves nothing");
}

Findings unexplainedPackages(const SourceFile& list, const std::string& decisions) {
    Findings findings;
    eachLine(list.text, [&](const std::string& line, std::size_t number) {
        if (line.empty() || line[0] == '#' || line[0] == '[') return;
        if (decisions.find("`" + line + "`") != std::string::npos) return;
        findings.push_back(list.path + ":" + std::to_string(number) + ": " + line +
                           " has no reason in docs/decisions");
    });
    return findings;
}

}  // namespace nevo::lint
