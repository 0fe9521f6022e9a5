#include "platform/xcb/CommandLine.h"

#include <algorithm>
#include <array>
#include <filesystem>

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

/// What many programs call the file that they begin with: the folder around it says which one.
bool isUsualName(std::string_view name) {
    constexpr std::array<std::string_view, 12> usual{"app.asar", "main.py", "__main__.py", "app.py",
                                                     "run.py",   "main.js", "index.js",    "app",
                                                     "bin",      "src",     "resources",   "dist"};
    return std::find(usual.begin(), usual.end(), name) != usual.end();
}

/// "chat-1.2.3.jar" is "chat" after its next update, too.
std::string withoutArchiveVersion(std::string name) {
    constexpr std::string_view ending = ".jar";
    if (!name.ends_with(ending)) return name;
    name.resize(name.size() - ending.size());
    auto end = name.find_last_not_of("0123456789._-");
    return end == std::string::npos ? name : name.substr(0, end + 1);
}

/// The name that says most of a script: its own, or that of the nearest telling folder around it.
std::string scriptName(std::string_view path) {
    while (!path.empty()) {
        std::string name = baseName(path);
        if (!name.empty() && name != "." && name != ".." && !isUsualName(name))
            return withoutArchiveVersion(name);
        auto slash = path.rfind('/');
        path = slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
    }
    return {};
}

/// What an interpreter was told to run: its first argument that is no option.
std::string scriptOf(const std::vector<std::string>& arguments, const std::string& folder) {
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-c" || argument == "-e" || argument == "-") return {};
        if (takesValue(argument)) {
            ++i;
        } else if (!argument.empty() && argument.front() != '-') {
            std::string name =
                scriptName((std::filesystem::path(folder) / argument).lexically_normal().string());
            return name.empty() ? baseName(argument) : name;
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
    constexpr std::array<std::string_view, 23> interpreters{
        "sh",   "bash", "dash",  "zsh",  "ksh",     "fish",        "busybox", "python",
        "pypy", "perl", "ruby",  "node", "wish",    "tclsh",       "lua",     "java",
        "gjs",  "php",  "guile", "mono", "Rscript", "gjs-console", "electron"};
    auto listed = [&](std::string_view candidate) {
        return std::find(interpreters.begin(), interpreters.end(), candidate) != interpreters.end();
    };
    return listed(name) || listed(withoutVersion(name));
}

std::string programOfCommandLine(const std::vector<std::string>& arguments,
                                 const std::string& folder) {
    if (arguments.empty()) return {};
    std::string program = baseName(arguments.front());
    if (program == "env") return programOfCommandLine(withoutEnvironment(arguments), folder);
    if (program == "flatpak" || program == "snap" || program == "bwrap") return {};
    return isInterpreter(program) ? scriptOf(arguments, folder) : program;
}

}  // namespace nevo::xcb
