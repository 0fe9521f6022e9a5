#pragma once

#include <map>

#include "platform/Application.h"
#include "platform/sim/SimWorkspace.h"

namespace nevo {

/// The program's process, seen from the system.
class SimApplication : public Application {
public:
    SimApplication(SimRunLoop& runLoop, SimProgram& self, SimWorkspace& ofSession, SimTrace& to)
        : loop(runLoop), program(self), workspace(ofSession), trace(to) {}

    std::string bundleIdentifier() const override { return program.bundleIdentifier; }
    ProcessId processIdentifier() const override { return program.pid; }
    std::string bundlePath() const override { return path; }
    std::string applicationsFolder() const override { return "/Applications/"; }
    std::optional<std::string> informationText(const std::string& key) const override;
    std::vector<std::string> preferredLanguages() const override { return languages; }
    void setActivationPolicy(ActivationPolicy policy) override { workspace.ownPolicy = policy; }
    ActivationPolicy activationPolicy() const override { return workspace.ownPolicy; }
    void activate() override { workspace.activate(program.pid); }
    void orderFrontStandardAboutPanel(const std::string& title,
                                      const std::string& credits) override;
    void terminate() override;

    /// Tells the program that it has started.
    void launch();
    /// The process is gone without a word, as after a crash.
    void die();
    bool isRunning() const { return workspace.ownProgramRuns; }
    /// Whether the last process died instead of quitting.
    bool hasCrashed() const { return crashed; }
    bool isAboutPanelShown() const { return aboutPanel; }

    /// Where the program is installed, and the texts of its information dictionary.
    std::string path = "/Applications/Nevo.app";
    std::map<std::string, std::string> information;
    /// What the user wants to read, best first.
    std::vector<std::string> languages{"en"};

private:
    void end(const char* how);

    SimRunLoop& loop;
    SimProgram& program;
    SimWorkspace& workspace;
    SimTrace& trace;
    bool aboutPanel = false;
    bool crashed = false;
};

}  // namespace nevo
