#include "platform/xcb/CommandLine.h"

#include <algorithm>
#include <array>

namespace nevo::xcb {

namespace {
std::string baseName(std::string_view path) {
    auto slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

/// "python3.11" and "perl5.36" are the same interpreters as "python" and "perl".
std::string_view withoutVersion(std::string_view name) {
    auto end = name.find_last_not_of("0123456789.-");
    return end == std::string_view::npos ? name : name.substr(0, end + 1);
}

/// Options whose value is the next argument.
bool takesValue(std::string_view option) {
    constexpr std::array<std::string_view, 7> options{
        "-cp", "-classpath", "--class-path", "-W", "-X", "-I", "-r"};
    return std::find(options.begin(), options.end(), option) != options.end();
}

/// What an interpreter was told to run: its first argument that is no option.
std::string scriptOf(const std::vector<std::string>& arguments) {
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-c" || argument == "-e" || argument == "-") return {};
        if (takesValue(argument)) {
            ++i;
        } else if (!argument.empty() && argument.front() != '-') {
            return baseName(argument);
        }
    }
    return {};
}

/// `env NAME=value... program...` without its first part.
std::vector<std::string> withoutEnvironment(const std::vector<std::string>& arguments) {
    auto first = std::find_if(arguments.begin() + 1, arguments.end(), [](const std::string& a) {
        return a.find('=') == std::string::npos && !a.starts_with('-');
    });
    return {first, arguments.end()};
}
}  // namespace

bool isInterpreter(std::string_view name) {
    constexpr std::array<std::string_view, 22> interpreters{
        "sh",   "bash", "dash",  "zsh",  "ksh",     "fish",       "busybox", "python",
        "pypy", "perl", "ruby",  "node", "wish",    "tclsh",      "lua",     "java",
        "gjs",  "php",  "guile", "mono", "Rscript", "gjs-console"};
    auto listed = [&](std::string_view candidate) {
        return std::find(interpreters.begin(), interpreters.end(), candidate) != interpreters.end();
    };
    return listed(name) || listed(withoutVersion(name));
}

std::string programOfCommandLine(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return {};
    std::string program = baseName(arguments.front());
    if (program == "env") return programOfCommandLine(withoutEnvironment(arguments));
    if (program == "flatpak" || program == "snap" || program == "bwrap") return {};
    return isInterpreter(program) ? scriptOf(arguments) : program;
}

}  // namespace nevo::xcb
