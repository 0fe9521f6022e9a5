#include "platform/sim/SimApplication.h"

namespace nevo {

std::optional<std::string> SimApplication::informationText(const std::string& key) const {
    auto found = information.find(key);
    return found == information.end() ? std::nullopt : std::optional(found->second);
}

void SimApplication::orderFrontStandardAboutPanel(const std::string&, const std::string&) {
    aboutPanel = true;
    trace.note("panel", "about");
}

void SimApplication::launch() {
    workspace.ownProgramRuns = true;
    crashed = false;
    trace.note("nevo", "starts");
    if (didFinishLaunching) didFinishLaunching();
}

void SimApplication::terminate() {
    if (!isRunning()) return;
    trace.note("nevo", "is asked to quit");
    if (willTerminate) willTerminate();
    end("has quit");
}

void SimApplication::die() {
    if (!isRunning()) return;
    crashed = true;
    end("dies");
}

void SimApplication::end(const char* how) {
    trace.note("nevo", how);
    workspace.ownProgramRuns = false;
    aboutPanel = false;
    didFinishLaunching = nullptr;
    willTerminate = nullptr;
    loop.haltProgram();
}

}  // namespace nevo
