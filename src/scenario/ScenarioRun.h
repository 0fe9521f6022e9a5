#pragma once

#include <functional>
#include <optional>

#include "core/AppState.h"
#include "platform/sim/SimDesktop.h"
#include "scenario/Scenario.h"
#include "surfaces/OnboardingCoordinator.h"

namespace nevo {

class NevoApp;

/// Gives a run its next line, or nothing at its end. Asked when everything that was due after the
/// last line has run.
using LineSource = std::function<std::optional<Scenario::Line>()>;

/// Runs one scenario on a desktop of its own, from the first line to the first one that fails.
///
/// After each line everything runs that is due at that moment; only the commands that say so let
/// time pass. While a menu is open the program waits inside it, and the lines go on from there.
class ScenarioRun {
public:
    explicit ScenarioRun(const Scenario& of);
    /// A run whose lines are made up on its way; `called` stands in messages.
    ScenarioRun(std::string called, LineSource from);
    ~ScenarioRun();
    ScenarioRun(const ScenarioRun&) = delete;
    ScenarioRun& operator=(const ScenarioRun&) = delete;

    /// ok, or the first failure, its message beginning with "NAME:LINE: ".
    Outcome run();

    SimDesktop& desktop() { return world; }

    // For the commands.

    /// Runs `step` later on the desktop's side; its failure is the run's.
    void later(double seconds, Step step);
    /// Lets time pass.
    void pass(double seconds) { world.loop.runFor(seconds); }
    /// Builds and starts the program. False when one runs, or a menu of the last one is open.
    bool startNevo();
    /// What the hot key does. False when the program doesn't run or has no controller yet.
    bool toggle();
    /// The program while it runs, else nullptr.
    std::shared_ptr<NevoApp> nevo() const;
    /// The program's state, as its settings change it; nullptr when the program doesn't run.
    AppState* state();
    /// The program's first-run flow; nullptr when the program doesn't run.
    OnboardingCoordinator* firstRun();
    /// Whether the lines are being run from inside an open menu.
    bool isNested() const { return depth > 0; }

    /// The window that scenarios call `name`: an item's handle, an own item's autosave name or its
    /// short name. 0 when there is none; `message` tells then which there are.
    WindowNumber window(const std::string& name, std::string& message) const;
    /// An item's name as scenarios write it.
    std::string shortName(const std::string& label) const;
    /// The program's own item of that short or autosave name; nullptr when there is none.
    SimStatusItem* ownItem(const std::string& name);

    /// Ordinary windows by handle.
    std::map<std::string, WindowNumber> plainWindows;
    /// Log lines before this one don't count for expectations.
    std::size_t logStart = 0;
    /// Whether a line that makes no sense where it stands is passed over instead of ending the run.
    bool passesOverNonsense = false;

private:
    void runLines(bool nested);
    void runOne(const Scenario::Line& line);
    void fail(int line, Outcome outcome);

    std::string title;
    LineSource nextLine;
    SimDesktop world;
    std::weak_ptr<NevoApp> app;
    int depth = 0;
    int currentLine = 0;
    Outcome result;
};

}  // namespace nevo
