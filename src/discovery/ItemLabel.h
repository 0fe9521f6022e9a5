#pragma once

#include <string>

#include "core/ScannedBarItem.h"
#include "platform/Workspace.h"

namespace nevo {

/// What a person knows the item by: its label, or its application's name where the label is empty
/// or a bare number.
std::string labelForPeople(const ScannedBarItem& item, const Workspace& workspace);

}  // namespace nevo
