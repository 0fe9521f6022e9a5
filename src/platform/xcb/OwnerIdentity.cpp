#include "platform/xcb/OwnerIdentity.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

#include "platform/xcb/CommandLine.h"
#include "platform/xcb/Sandbox.h"

namespace nevo::xcb {

namespace fs = std::filesystem;

namespace {
constexpr std::size_t maximumCommandLineBytes = 16 * 1024;

std::vector<std::string> commandLine(ProcessId pid) {
    std::ifstream stream("/proc/" + std::to_string(pid) + "/cmdline", std::ios::binary);
    std::string bytes(maximumCommandLineBytes, '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    std::vector<std::string> arguments;
    for (std::size_t begin = 0; begin < bytes.size();) {
        std::size_t end = std::min(bytes.find('\0', begin), bytes.size());
        arguments.push_back(bytes.substr(begin, end - begin));
        begin = end + 1;
    }
    return arguments;
}

/// Where one of the kernel's links of a process leads; empty when it can't be read, as for
/// processes of other users.
std::string target(ProcessId pid, const char* link) {
    std::error_code error;
    return fs::read_symlink(fs::path("/proc") / std::to_string(pid) / link, error).string();
}

std::string executablePath(ProcessId pid) {
    std::string path = target(pid, "exe");
    // The kernel's mark of a program that was replaced while it ran, as each update does.
    constexpr std::string_view deleted = " (deleted)";
    if (path.ends_with(deleted)) path.resize(path.size() - deleted.size());
    return path;
}

std::string firstNonEmpty(std::initializer_list<std::string> candidates) {
    for (const std::string& candidate : candidates) {
        if (!candidate.empty()) return candidate;
    }
    return {};
}
}  // namespace

std::string programOfProcess(ProcessId pid) {
    std::string executable = executablePath(pid);
    std::string name = fs::path(executable).filename().string();
    if (!name.empty() && !isInterpreter(name)) return name;
    auto arguments = commandLine(pid);
    // A script started by its own "#!" line: the kernel puts the interpreter first by itself, but a
    // program may also have renamed itself; the executable is the better witness.
    // Only wine's first argument is the program that it runs.
    if (name.starts_with("wine")) {
        arguments.insert(arguments.begin(), executable);
    } else if (!executable.empty() && !arguments.empty()) {
        arguments.front() = executable;
    }
    return programOfCommandLine(arguments, target(pid, "cwd"));
}

std::string stableId(const std::string& id, std::optional<ProcessId> pid) {
    // Small numbers in ids are counters; programs of a user have greater ones.
    constexpr ProcessId smallest = 100;
    if (!pid || *pid < smallest) return id;
    constexpr std::string_view digits = "0123456789";
    for (auto begin = id.find_first_of(digits); begin != std::string::npos;) {
        auto end = std::min(id.find_first_not_of(digits, begin), id.size());
        if (id.substr(begin, end - begin) == std::to_string(*pid)) return {};
        begin = id.find_first_of(digits, end);
    }
    return id;
}

OwnerIdentity OwnerIdentities::identifyClaimed(std::optional<ProcessId> pid,
                                               const std::string& claimedId) {
    std::string program = pid ? programOfProcess(*pid) : std::string();
    const std::string& known = program.empty() ? claimedId : program;
    return identify(pid, {known, known});
}

OwnerIdentity OwnerIdentities::identify(std::optional<ProcessId> pid,
                                        const WindowClass& windowClass) {
    std::string sandbox = pid ? sandboxOfProcess(*pid) : std::string();
    if (!sandbox.empty()) {
        std::string signs = "sandbox " + sandbox;
        if (const DesktopEntry* entry = entries.byId(sandbox))
            return {sandbox, entry->name, entry->icon, signs};
        return {sandbox, sandbox, {}, signs};
    }
    std::string program = pid ? programOfProcess(*pid) : std::string();
    std::string signs = program.empty() ? "" : "program " + program;
    const DesktopEntry* entry = entries.find(program, windowClass.instance, windowClass.name);
    if (entry != nullptr) {
        signs += (signs.empty() ? "" : ", ") + ("desktop entry " + entry->id);
        return {entry->id, entry->name, entry->icon, signs};
    }
    std::string id =
        firstNonEmpty({program, windowClass.name, windowClass.instance, std::string("unknown")});
    if (signs.empty()) signs = id == "unknown" ? "nothing" : "class " + id;
    return {id, id, {}, signs};
}

}  // namespace nevo::xcb
