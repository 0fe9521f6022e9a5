#pragma once

#include <map>

#include "platform/Accessibility.h"
#include "platform/Workspace.h"
#include "platform/sim/SimBar.h"

namespace nevo {

/// A status item that another program shows while it runs.
struct SimItemPlan {
    std::string label = {};
    /// Under which it saves its place.
    std::string name = "Item-0";
    double width = 30;
    int layer = 25;
    std::optional<std::string> title = {};
    std::optional<std::string> description = {};
    /// Whether the program's accessibility children have it.
    bool accessible = true;
    /// The handle of the program that the window server takes for the owner; empty for its own.
    std::string windowOwner = {};
    /// Its window while it stands on the bar, else 0.
    WindowNumber window = 0;
};

/// Another program of the session.
struct SimOtherProgram {
    /// How scripts name it.
    std::string handle;
    RunningApplication application;
    bool running = false;
    /// One that hangs answers no accessibility question; its items stand where they are.
    bool hangs = false;
    std::vector<SimItemPlan> items;
    /// Accessibility children beside those of `items`.
    std::vector<AccessibilityElement> extraChildren;
};

/// The other programs and their status items.
class SimApplications {
public:
    SimApplications(SimBar& row, SimWindows& allWindows, SimTrace& to)
        : bar(row), windows(allWindows), trace(to) {}

    /// Makes a program known; it isn't running yet.
    void add(SimOtherProgram program);
    /// Starts it with a new process id, and its items with new windows. False when it runs already.
    bool launch(const std::string& handle);
    /// Ends it, however: its items are gone. False when it isn't running.
    bool kill(const std::string& handle);

    /// A running program shows the item at once.
    void addItem(const std::string& handle, SimItemPlan plan);
    /// False when no program has such an item.
    bool removeItem(const std::string& label);
    bool resizeItem(const std::string& label, double width);

    /// nullptr when unknown.
    SimOtherProgram* find(const std::string& handle);
    const SimOtherProgram* runningWithPid(ProcessId pid) const;
    /// The first made known of those that run.
    const SimOtherProgram* runningWithBundle(const std::string& bundle) const;
    SimItemPlan* findItem(const std::string& label);
    /// In the order in which they were made known.
    const std::vector<SimOtherProgram>& all() const { return programs; }

private:
    void show(SimOtherProgram& program, SimItemPlan& plan);
    void hide(SimItemPlan& plan);

    SimBar& bar;
    SimWindows& windows;
    SimTrace& trace;
    std::vector<SimOtherProgram> programs;
    /// Where they stand in `programs`. A scan asks for the owner of each window.
    std::map<ProcessId, std::size_t> byPid;
    std::map<std::string, std::vector<std::size_t>> byBundle;
    ProcessId nextPid = 200;
};

}  // namespace nevo
