#include <algorithm>
#include <regex>
#include <set>

#include "lint/Checks.h"

namespace nevo::lint {

namespace {

std::string firstMatch(const std::string& text, const char* pattern) {
    std::smatch match;
    return std::regex_search(text, match, std::regex(pattern)) ? match.str(1) : std::string();
}

std::string textOf(const std::vector<SourceFile>& files, const std::string& path) {
    auto found = std::find_if(files.begin(), files.end(),
                              [&](const SourceFile& file) { return file.path == path; });
    return found == files.end() ? std::string() : found->text;
}

std::set<std::string> longOptions(const std::string& text) {
    static const std::regex pattern("--[a-z][a-z-]+");
    std::set<std::string> options;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
        options.insert(match->str());
    return options;
}

}  // namespace

Findings disagreeingNames(const std::vector<SourceFile>& files) {
    std::string names = textOf(files, "src/platform/x11/ProgramName.h");
    std::string id = firstMatch(names, "applicationId = \"([^\"]+)\"");
    std::string version = firstMatch(textOf(files, "CMakeLists.txt"), "VERSION ([0-9.]+) LANG");
    struct Expectation {
        std::string path, line;
    };
    const Expectation expectations[] = {
        {"packaging/" + id + ".desktop", "\nIcon=" + id + "\n"},
        {"packaging/" + id + ".desktop",
         "\nStartupWMClass=" + firstMatch(names, "programName = \"([^\"]+)\"") + "\n"},
        {"packaging/" + id + ".metainfo.xml", "<id>" + id + "</id>"},
        {"packaging/" + id + ".metainfo.xml", "\"desktop-id\">" + id + ".desktop<"},
        {"packaging/" + id + ".metainfo.xml", "\"stock\">" + id + "<"},
        {"packaging/CMakeLists.txt", "set(applicationId " + id + ")"},
        {"packaging/changelog", "nevo (" + version + "-"},
        {"resources/app/" + id + ".svg", "<svg"},
        {"resources/app/" + id + "-symbolic.svg", "<svg"},
    };
    Findings findings;
    for (const auto& [path, line] : expectations) {
        if (textOf(files, path).find(line) == std::string::npos)
            findings.push_back(path + ": has no " + line);
    }
    return findings;
}

Findings disagreeingManual(const SourceFile& program, const SourceFile& manual) {
    std::string plain = std::regex_replace(manual.text, std::regex(R"(\\-)"), "-");
    std::set<std::string> told = longOptions(plain);
    std::set<std::string> taken = longOptions(program.text);
    std::vector<std::string> differing;
    std::set_symmetric_difference(told.begin(), told.end(), taken.begin(), taken.end(),
                                  std::back_inserter(differing));
    Findings findings;
    for (const std::string& option : differing) {
        findings.push_back(manual.path + ": " + option + " stands only " +
                           (told.contains(option) ? "here" : "in " + program.path));
    }
    return findings;
}

}  // namespace nevo::lint
