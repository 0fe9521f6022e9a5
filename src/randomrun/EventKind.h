#pragma once

#include <vector>

#include "randomrun/Stage.h"

namespace nevo {

/// A kind of event: something that a hand, another program, the system or a fault does.
struct EventKind {
    /// Short, for the summary.
    const char* name;
    /// How often it is drawn, in proportion to the others.
    int weight;
    /// Lines that play one such event now; none when it makes no sense now.
    Lines (*make)(Stage&);
    /// Whether it can happen while a menu is open, and only then.
    enum class Menu { closed, either, open } menu = Menu::closed;
};

/// All kinds, group by group.
const std::vector<EventKind>& eventKinds();

// The groups that make up the table.
std::vector<EventKind> handEvents();
std::vector<EventKind> shelfEvents();
std::vector<EventKind> programEvents();
std::vector<EventKind> nevoEvents();
std::vector<EventKind> desktopEvents();
std::vector<EventKind> storeEvents();
std::vector<EventKind> faultEvents();

/// What stands on the desktop when a run begins.
Lines openingLines(Stage& stage);

}  // namespace nevo
