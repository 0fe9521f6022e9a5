#pragma once

#include <set>
#include <string>
#include <vector>

#include "randomrun/RandomSource.h"
#include "scenario/ScenarioRun.h"

namespace nevo {

/// Lines of the scenario language.
using Lines = std::vector<std::string>;

/// What an event looks at and draws from when it makes up its lines: the desktop as it stands.
class Stage {
public:
    Stage(ScenarioRun& of, RandomSource& from);

    ScenarioRun& run;
    SimDesktop& desktop;
    RandomSource& random;

    bool isNevoRunning() const { return desktop.application.isRunning(); }
    bool isShelfInForce() const;

    // Names as scenarios write them; empty when there is nothing of the kind.
    /// Another program's item that stands in the bar.
    std::string anyItem();
    /// One that a hand can reach.
    std::string anyItemInReach();
    bool isToggleInReach() const;
    /// An item of which a "slot" of the shelf or a "decoy" shows a picture.
    std::string anyPicture(const char* kind);
    /// The same, Nevo's own too.
    std::string anyBarItem();
    /// A program that runs, or one that doesn't.
    std::string anyProgram(bool running);
    std::string anyBundle();
    /// An item's id for rules, in quotes: one that Nevo has seen, or one made up.
    std::string anyRuleId();

    /// A place on the bar of the main display, `X Y`.
    std::string placeOnBar();
    /// A place below the bar.
    std::string placeBelowBar();
    double mainWidth() const;

    /// A name that nothing on the desktop bears and no event has been given lately.
    std::string newHandle(const char* prefix);
    /// Operations that have been asked to fail and not been mended since.
    std::set<std::string> faults;
    /// No faults are asked for until Nevo is started again.
    bool isCalm = true;

private:
    bool isInReach(WindowNumber window) const;
    std::vector<std::string> seenIds() const;
    int handlesGiven = 0;
};

/// A word in quotes, as `splitLine` reads it.
std::string quoted(const std::string& text);

}  // namespace nevo
