#include "desktop/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>

namespace nevo::desktoptest {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto patience = std::chrono::seconds(20);
/// How long a program may take to end when it is told to.
constexpr auto goodbye = std::chrono::seconds(5);
constexpr int pollMilliseconds = 5;

std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> result;
    for (std::string& string : strings) result.push_back(string.data());
    result.push_back(nullptr);
    return result;
}

/// In the child: only calls that are allowed between fork and exec.
[[noreturn]] void becomeProgram(char* const* command, char* const* environment, int log,
                                std::optional<int> kept) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::setpgid(0, 0);
    int nothing = ::open("/dev/null", O_RDONLY);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(log, STDOUT_FILENO);
    ::dup2(log, STDERR_FILENO);
    if (kept) ::fcntl(*kept, F_SETFD, 0);
    ::execvpe(command[0], command, environment);
    ::_exit(127);
}

}  // namespace

bool holdsWithin(Clock::duration time, const std::function<bool()>& condition) {
    auto deadline = Clock::now() + time;
    while (!condition()) {
        if (Clock::now() > deadline) return false;
        ::poll(nullptr, 0, pollMilliseconds);
    }
    return true;
}

bool holdsSoon(const std::function<bool()>& condition) { return holdsWithin(patience, condition); }

std::string readFile(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

std::size_t countIn(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

Process::Process(std::vector<std::string> command, const Environment& environment,
                 std::filesystem::path log, std::optional<int> kept)
    : words(std::move(command)), logFile(std::move(log)) {
    std::vector<std::string> settings;
    for (const auto& [key, value] : environment) settings.push_back(key + "=" + value);
    auto commandPointers = pointers(words);
    auto settingPointers = pointers(settings);
    int output = ::open(logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    id = ::fork();
    if (id == 0) becomeProgram(commandPointers.data(), settingPointers.data(), output, kept);
    ::close(output);
    if (id < 0) throw Failed("no process can be started for " + words[0]);
    // Also here, since the child may not have got that far when it is first signalled.
    ::setpgid(id, id);
}

Process::~Process() {
    ::kill(-id, SIGTERM);
    ::kill(-id, SIGCONT);
    if (!holdsWithin(goodbye, [this] { return !isRunning(); })) ::kill(id, SIGKILL);
    // Its children, such as what a session bus has started.
    ::kill(-id, SIGKILL);
    if (isRunning()) ::waitpid(id, nullptr, 0);
}

std::string Process::name() const { return std::filesystem::path(words[0]).filename(); }

bool Process::isRunning() { return !exitStatus(); }

std::optional<int> Process::exitStatus() {
    int raw = 0;
    if (!status && ::waitpid(id, &raw, WNOHANG) == id) {
        status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
    }
    return status;
}

void Process::signal(int number) const {
    if (!status) ::kill(id, number);
}

int Process::waitForEnd() {
    if (!holdsSoon([this] { return !isRunning(); })) {
        throw Failed(name() + " doesn't end:\n" + output());
    }
    return *status;
}

std::string Process::output() const { return readFile(logFile); }

std::pair<std::unique_ptr<Process>, std::string> startAndReadLine(
    std::vector<std::string> command, const Environment& environment,
    const std::filesystem::path& log) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw Failed("no pipe to be had");
    for (std::string& word : command) {
        if (auto at = word.find("{}"); at != std::string::npos) {
            word.replace(at, 2, std::to_string(ends[1]));
        }
    }
    auto process = std::make_unique<Process>(command, environment, log, ends[1]);
    ::close(ends[1]);
    std::string line;
    char letter = 0;
    while (::read(ends[0], &letter, 1) == 1 && letter != '\n') line += letter;
    ::close(ends[0]);
    if (line.empty()) throw Failed(command[0] + " doesn't start:\n" + process->output());
    return {std::move(process), line};
}

}  // namespace nevo::desktoptest
