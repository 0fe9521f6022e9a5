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
bool takesValue(std::string_view option, std::string_view interpreter) {
    // Others print or loop with "-p".
    if (option == "-p") return interpreter == "java";
    if (option.starts_with("--add-")) return option.find('=') == std::string_view::npos;
    constexpr std::array<std::string_view, 9> options{
        "-cp", "-classpath", "--class-path", "--module-path", "--upgrade-module-path", "-W", "-X",
        "-I",  "-r"};
    return std::find(options.begin(), options.end(), option) != options.end();
}

/// What many programs call the file that they begin with: the folder around it says which one.
bool isUsualName(std::string_view name) {
    constexpr std::array<std::string_view, 17> usual{
        "app.asar", "main.py",   "__main__.py", "app.py", "run.py", "main.js",
        "index.js", "app",       "bin",         "src",    "usr",    "lib",
        "opt",      "resources", "dist",        "share",  "local"};
    return std::find(usual.begin(), usual.end(), name) != usual.end();
}

/// Whether a version begins there: "2.14.1-all" or "v2.14"; a plain "2" may also be a part's
/// number.
bool beginsVersion(std::string_view text, bool maybePlain) {
    if (text.starts_with('v')) text.remove_prefix(1);
    constexpr std::string_view digits = "0123456789";
    auto end = text.find_first_not_of(digits);
    if (end == std::string_view::npos) return maybePlain && !text.empty();
    return end > 0 && text[end] == '.' && text.find_first_of(digits, end) == end + 1;
}

/// "chat-1.2.3.jar" and the folder "chat-1.2.3" are "chat" after the next update, too.
std::string withoutVersions(std::string name) {
    constexpr std::string_view ending = ".jar";
    bool isArchive = name.ends_with(ending);
    if (isArchive) name.resize(name.size() - ending.size());
    for (auto at = name.find_first_of("-_", 1); at != std::string::npos;
         at = name.find_first_of("-_", at + 1)) {
        if (beginsVersion(std::string_view(name).substr(at + 1), isArchive))
            return name.substr(0, at);
    }
    return name;
}

/// The name that says most of a script: its own, or that of the nearest telling folder around it.
/// Where a program's image is mounted is another folder at each start: nothing from there on tells.
std::string scriptName(std::string_view path) {
    while (!path.empty()) {
        std::string name = baseName(path);
        if (name.starts_with(".mount_")) return {};
        if (!name.empty() && name != "." && name != ".." && !isUsualName(name) &&
            !isInterpreter(name))
            return withoutVersions(name);
        auto slash = path.rfind('/');
        path = slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
    }
    return {};
}

/// What an interpreter was told to run: its first argument that is no option.
std::string scriptOf(const std::vector<std::string>& arguments, const std::string& folder) {
    std::string interpreter = baseName(arguments.front());
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-c" || argument == "-e" || argument == "-") return {};
        if (takesValue(argument, interpreter)) {
            ++i;
        } else if (!argument.empty() && argument.front() != '-' && argument.front() != '%' &&
                   argument != "exec") {
            std::string name =
                scriptName((std::filesystem::path(folder) / argument).lexically_normal().string());
            return name.empty() ? baseName(argument) : name;
        }
    }
    // Bundled with the one program that it runs.
    return interpreter == "electron" || interpreter == "nw" ? scriptName(arguments.front())
                                                            : std::string();
}

/// Wine tells the Windows program in a command line of its own making: "C:\\chat\\chat.exe".
std::string windowsProgramOf(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        if (argument.ends_with(".exe") || argument.ends_with(".EXE"))
            return argument.substr(argument.find_last_of("/\\") + 1);
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
    constexpr std::array<std::string_view, 27> interpreters{
        "sh",          "bash",     "dash",      "zsh",    "ksh",   "fish", "busybox",
        "python",      "pypy",     "perl",      "ruby",   "node",  "wish", "tclsh",
        "lua",         "java",     "gjs",       "php",    "guile", "mono", "Rscript",
        "gjs-console", "electron", "mono-sgen", "dotnet", "nw",    "wine"};
    constexpr std::string_view loader = "-preloader";
    if (name.starts_with("wine") && name.ends_with(loader)) name.remove_suffix(loader.size());
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
    if (!isInterpreter(program)) return program;
    return program.starts_with("wine") ? windowsProgramOf(arguments) : scriptOf(arguments, folder);
}

}  // namespace nevo::xcb
