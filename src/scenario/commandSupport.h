#pragma once

#include "scenario/ScenarioRun.h"

namespace nevo {

/// What several groups of commands read or look up in the same way.

/// A place: `X Y`, origin at the top left of the main display.
Point readPlace(LineReader& reader);
/// Zero or more of command, option, shift, control.
ModifierFlags readModifiers(LineReader& reader);
/// A stored value: `bool true`, `int 3`, `number 1.5`, `string TEXT`, `bytes HEX`, `list TEXT...`.
DefaultsValue readValue(LineReader& reader);

/// A step that needs the item or window called `name`.
Step withWindow(const std::string& name, std::function<Outcome(ScenarioRun&, WindowNumber)> action);
/// A step that needs the program called `handle`.
Step withProgram(const std::string& handle,
                 std::function<Outcome(ScenarioRun&, SimOtherProgram&)> action);
/// A step that needs Nevo's own status item called `name`.
Step withOwnItem(const std::string& name,
                 std::function<Outcome(ScenarioRun&, SimStatusItem&)> action);
/// The domain that scenarios call `name`: nevo, a program's handle, or the domain's own name.
std::string domainNamed(ScenarioRun& run, const std::string& name);

/// Where a visible panel shows the item with that window: in a slot of the shelf ("slot") or as a
/// decoy ("decoy"); origin at the top left. Nothing when none does.
std::optional<Rect> pictureOf(ScenarioRun& run, const std::string& kind, WindowNumber window);
/// The visible panel with a view of which the key begins so; nullptr when there is none.
SimPanel* panelWith(ScenarioRun& run, const std::string& keyPrefix);

std::string yesOrNo(bool value);

}  // namespace nevo
