#include "platform/x11/BarLauncher.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>
#include <utility>

#include "platform/menubar/BarProtocol.h"
#include "platform/store/StateFolder.h"
#include "platform/xcb/OwnerIdentity.h"
#include "platform/xcb/Properties.h"
#include "platform/xcb/WindowOwner.h"

namespace nevo {

namespace {

constexpr const char* barProgram = "nevo-menubar";
constexpr auto startPatience = std::chrono::seconds(5);
constexpr auto startPoll = std::chrono::milliseconds(10);

/// For what the bar has to say: a file that is begun anew at each start, or nothing.
int openBarLog() {
    std::error_code ignored;
    auto folder = stateFolder();
    std::filesystem::create_directories(folder, ignored);
    auto file = folder / (std::string(barProgram) + ".log");
    constexpr mode_t readableByUser = 0600;
    int log =
        open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, readableByUser);
    return log >= 0 ? log : open("/dev/null", O_RDWR | O_CLOEXEC);
}

/// Starts a program that goes on when we and our terminal have gone.
bool startDetached(std::string program, std::vector<std::string> options) {
    // All that needs memory comes before the fork: another thread may hold the heap's lock.
    std::vector<char*> words{program.data()};
    for (std::string& option : options) words.push_back(option.data());
    words.push_back(nullptr);
    int log = openBarLog();
    pid_t child = fork();
    if (child == 0) {
        setsid();
        // Its parent ends at once, so that the program becomes init's and no zombie of ours.
        if (fork() != 0) _exit(0);
        int nothing = open("/dev/null", O_RDWR);
        dup2(nothing, STDIN_FILENO);
        dup2(log, STDOUT_FILENO);
        dup2(log, STDERR_FILENO);
        execv(program.c_str(), words.data());
        _exit(127);
    }
    close(log);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child;
}

std::string startBar(const XServer& server) {
    if (auto failure = launchBar({}); !failure.empty()) return failure;
    auto deadline = std::chrono::steady_clock::now() + startPatience;
    while (!trayIsTaken(server)) {
        if (std::chrono::steady_clock::now() > deadline) {
            return fmt::format("{} was started, but no menu bar has come up.", barProgram);
        }
        std::this_thread::sleep_for(startPoll);
    }
    return {};
}

std::string nameOfOwner(const XServer& server, xcb_window_t owner) {
    auto pid = xcb::processOfWindow(server.get(), owner, server.atom("_NET_WM_PID"));
    std::string program = pid ? xcb::programOfProcess(*pid) : std::string();
    if (program.empty()) program = xcb::classOfWindow(server.get(), owner).instance;
    if (program.empty()) return "another program";
    return pid ? fmt::format("{} (process {})", program, *pid) : program;
}

}  // namespace

bool trayIsTaken(const XServer& server) {
    return server.selectionOwner(server.screenAtom("_NET_SYSTEM_TRAY")) != 0;
}

std::string launchBar(const std::vector<std::string>& options) {
    std::error_code error;
    auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    auto program = self.parent_path() / barProgram;
    if (access(program.c_str(), X_OK) != 0) {
        return fmt::format("No menu bar runs, and {} isn't installed beside nevo.", barProgram);
    }
    if (startDetached(program.string(), options)) return {};
    return fmt::format("{} can't be started.", barProgram);
}

std::string ensureBar(const XServer& server) {
    if (!trayIsTaken(server)) {
        if (auto failure = startBar(server); !failure.empty()) return failure;
    }
    xcb_window_t owner = server.selectionOwner(server.screenAtom("_NET_SYSTEM_TRAY"));
    xcb::PropertyRead version(server.get(), owner, server.atom(barprotocol::version));
    auto spoken = version.number();
    if (!spoken) {
        return fmt::format(
            "The system tray belongs to {}: take the tray out of that panel, or end it, and start "
            "nevo again.",
            nameOfOwner(server, owner));
    }
    if (*spoken != barprotocol::currentVersion) {
        return fmt::format(
            "The menu bar that runs speaks version {} of its protocol and nevo version {}: start "
            "the bar that came with this nevo.",
            *spoken, barprotocol::currentVersion);
    }
    return {};
}

}  // namespace nevo
