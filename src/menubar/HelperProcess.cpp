#include "menubar/HelperProcess.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

extern char** environ;

namespace nevo::menubar {

namespace {
constexpr const char* helperName = "nevo-menubar-helper";

/// Beside this program while it is developed; else where programs for programs are installed.
std::string helperPath() {
    std::error_code error;
    auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    auto beside = folder / helperName;
    if (::access(beside.c_str(), X_OK) == 0) return beside.string();
    return (folder.parent_path() / "libexec" / "nevo" / helperName).string();
}

/// The one end of a pipe is the helper's, the other ours; both are closed where they aren't used.
struct Pipe {
    std::array<int, 2> ends{-1, -1};
    bool open() { return ::pipe2(ends.data(), O_CLOEXEC) == 0; }
    void closeEnd(std::size_t which) {
        if (ends[which] >= 0) ::close(ends[which]);
        ends[which] = -1;
    }
};

struct Dying {
    pid_t pid;
    int end;
};
std::vector<Dying>& dying() {
    static std::vector<Dying> list;
    return list;
}

int spawn(const std::vector<std::string>& words, const Pipe& input, const Pipe& output,
          pid_t& pid) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    if (input.ends[0] >= 0) {
        posix_spawn_file_actions_adddup2(&files, input.ends[0], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&files, output.ends[1], STDOUT_FILENO);
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigset_t usual;
    sigemptyset(&none);
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    int error = posix_spawn(&pid, arguments[0], &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error;
}
}  // namespace

void HelperProcess::appendDying(std::vector<pollfd>& descriptors) {
    for (const Dying& each : dying()) descriptors.push_back({each.end, POLLIN, 0});
}

void HelperProcess::reap() {
    std::erase_if(dying(), [](const Dying& each) {
        bool isGone = ::waitpid(each.pid, nullptr, WNOHANG) != 0;
        if (isGone && each.end >= 0) ::close(each.end);
        return isGone;
    });
}

std::unique_ptr<HelperProcess> HelperProcess::start(const std::vector<std::string>& arguments,
                                                    bool hasPipes, std::string& failure) {
    reap();
    Pipe input;
    Pipe output;
    int error = hasPipes && (!input.open() || !output.open()) ? errno : 0;
    std::vector<std::string> words{helperPath()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::unique_ptr<HelperProcess> made(new HelperProcess);
    if (error == 0) error = spawn(words, input, output, made->pid);
    input.closeEnd(0);
    output.closeEnd(1);
    made->toHelper = input.ends[1];
    made->fromHelper = output.ends[0];
    if (error != 0) {
        made->pid = -1;
        failure = fmt::format("{} can't be started: {}.", words.front(), std::strerror(error));
        return nullptr;
    }
    for (int descriptor : {made->toHelper, made->fromHelper}) {
        if (descriptor >= 0) ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    }
    made->end = static_cast<int>(::syscall(SYS_pidfd_open, made->pid, 0));
    return made;
}

std::optional<int> HelperProcess::takeStatus() {
    int status = 0;
    if (::waitpid(pid, &status, WNOHANG) != pid) return std::nullopt;
    pid = -1;
    ::close(std::exchange(end, -1));
    return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

HelperProcess::~HelperProcess() {
    for (int descriptor : {toHelper, fromHelper}) {
        if (descriptor >= 0) ::close(descriptor);
    }
    if (pid <= 0) return;
    // It has nothing to lose. One that hangs in a file system that doesn't answer can't even die:
    // it mustn't be waited for.
    ::kill(pid, SIGKILL);
    dying().push_back({pid, end});
    reap();
}

}  // namespace nevo::menubar
