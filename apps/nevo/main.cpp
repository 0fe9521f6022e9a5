#include <unistd.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "entry/NevoApp.h"
#include "platform/x11/BarLauncher.h"
#include "platform/x11/DesktopNotice.h"
#include "platform/x11/ManagerSelection.h"
#include "platform/x11/ProgramName.h"
#include "platform/x11/X11Desktop.h"
#include "platform/x11/XServer.h"

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

constexpr const char* help =
    "Usage: nevo [--help] [--version]\n"
    "\n"
    "Keeps the status items of the menu bar on this X display in order: hides those left of its\n"
    "divider, and shows them again at a click. Starts nevo-menubar where no menu bar runs.\n";

int fail(int status, const std::string& sentence) {
    std::fprintf(stderr, "nevo: %s\n", sentence.c_str());
    return status;
}

/// On a display, where a user may have started it without a terminal to read in.
int failOnDisplay(const std::string& sentence) {
    fail(exitFailure, sentence);
    if (isatty(STDERR_FILENO) == 0) nevo::showDesktopNotice(sentence);
    return exitFailure;
}

/// For a user who starts Nevo while process `other` is it: gives that one a bar where it has none.
int standIn(const nevo::XServer& server, nevo::ProcessId other) {
    std::string running =
        "Nevo is already running on this display (process " + std::to_string(other) + ")";
    if (nevo::trayIsTaken(server)) return failOnDisplay(running + ".");
    auto failure = nevo::ensureBar(server);
    if (!failure.empty()) return failOnDisplay(failure);
    std::printf("%s; its menu bar was missing and has been started.\n", running.c_str());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        std::string_view argument = argv[i];
        if (argument == "--help" || argument == "-h") return std::fputs(help, stdout) < 0;
        if (argument == "--version") return std::printf("nevo %s\n", nevo::programVersion) < 0;
        return fail(exitUsage, "Unknown argument \"" + std::string(argument) + "\"; see --help.");
    }

    std::string failure;
    auto connection = nevo::xcb::Connection::open(failure);
    if (!connection) return fail(exitFailure, failure);
    nevo::XServer server(std::move(connection));
    if (auto other = nevo::claimManagerSelection(server)) return standIn(server, *other);
    failure = nevo::ensureBar(server);
    if (!failure.empty()) return failOnDisplay(failure);

    nevo::X11Desktop desktop(server, argc, argv);
    nevo::NevoApp app(desktop.platform());
    return desktop.run();
}
