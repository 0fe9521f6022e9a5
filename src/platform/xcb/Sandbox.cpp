#include "platform/xcb/Sandbox.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>

namespace nevo::xcb {

namespace {
constexpr std::size_t mostBytes = 16 * 1024;
constexpr std::string_view flatpakPrefix = "app-flatpak-";
constexpr std::string_view snapPrefix = "snap.";

/// As the service manager writes a hyphen within a name: "\\x2d".
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned value = 0;
        const char* digits = text.data() + i + 2;
        bool isEscape = text.substr(i).starts_with("\\x") && i + 3 < text.size() &&
                        std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2;
        result += isEscape ? static_cast<char>(value) : text[i];
        if (isEscape) i += 3;
    }
    return result;
}

/// "app-flatpak-org.example.Chat-1234.scope": the number is the launcher's process.
std::string flatpakOf(std::string_view unit) {
    if (!unit.starts_with(flatpakPrefix) || !unit.ends_with(".scope")) return {};
    unit.remove_prefix(flatpakPrefix.size());
    return unescaped(unit.substr(0, unit.rfind('-')));
}

/// "snap.chat.chat.1b2c-uuid.scope" or "snap.chat.chat-uuid.scope": the snap's name and its
/// program's.
std::string snapOf(std::string_view unit) {
    if (!unit.starts_with(snapPrefix)) return {};
    unit.remove_prefix(snapPrefix.size());
    auto dot = unit.find('.');
    if (dot == std::string_view::npos) return {};
    std::string_view snap = unit.substr(0, dot);
    std::string_view program = unit.substr(dot + 1);
    program = program.substr(0, program.find('.'));
    // Five groups of hexadecimal digits with hyphens between them.
    constexpr std::size_t uuidSize = 36;
    if (program.size() > uuidSize + 1 && program[program.size() - uuidSize - 1] == '-' &&
        std::count(program.end() - static_cast<std::ptrdiff_t>(uuidSize), program.end(), '-') ==
            4) {
        program.remove_suffix(uuidSize + 1);
    }
    return std::string(snap) + "_" + std::string(program);
}

/// The text of the file; empty for anything but a regular one: the sandbox is its program's own,
/// and a pipe there would hang the reader.
std::string flatpakInfo(ProcessId pid) {
    std::string path = "/proc/" + std::to_string(pid) + "/root/.flatpak-info";
    int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW);
    if (file < 0) return {};
    struct stat status {};
    std::string text(mostBytes, '\0');
    bool isFile = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    auto count = isFile ? read(file, text.data(), text.size()) : 0;
    close(file);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return text;
}

/// What is started from a sandboxed program and sees the files that all see, as the programs of an
/// editor's terminal do, stays in its control group, but isn't of it. A few snaps see all files
/// themselves: their programs lie where snaps are kept.
bool isOutsider(ProcessId pid) {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::path process = fs::path("/proc") / std::to_string(pid);
    fs::path files = fs::read_symlink(process / "ns/mnt", error);
    if (error || files != fs::read_symlink("/proc/self/ns/mnt", error)) return false;
    std::string program = fs::read_symlink(process / "exe", error).string();
    return !error && !program.starts_with("/snap/") && !program.starts_with("/var/lib/snapd/");
}
}  // namespace

std::string sandboxOfControlGroups(std::string_view text) {
    while (!text.empty()) {
        auto end = std::min(text.find_first_of("/\n"), text.size());
        std::string_view unit = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        for (auto of : {flatpakOf, snapOf}) {
            if (std::string id = of(unit); !id.empty()) return id;
        }
    }
    return {};
}

std::string sandboxOfFlatpakInfo(std::string_view text) {
    constexpr std::string_view key = "name=";
    for (bool inGroup = false; !text.empty();) {
        auto end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('[')) inGroup = line == "[Application]";
        if (inGroup && line.starts_with(key)) return std::string(line.substr(key.size()));
    }
    return {};
}

std::string sandboxOfProcess(ProcessId pid) {
    std::ifstream stream("/proc/" + std::to_string(pid) + "/cgroup", std::ios::binary);
    std::string text(mostBytes, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    std::string id = sandboxOfControlGroups(text);
    if (id.empty()) return sandboxOfFlatpakInfo(flatpakInfo(pid));
    return isOutsider(pid) ? std::string() : id;
}

}  // namespace nevo::xcb
