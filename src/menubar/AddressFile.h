#pragma once

#include <vector>

#include "statusnotifier/Item.h"

namespace nevo::menubar {

// Where the items on the session bus are, for a bar that takes the place of one that crashed: some
// programs offer theirs once, and at a path that nobody would guess. A line an item, the program's
// name on the bus and the object's path, in `$XDG_RUNTIME_DIR`. What isn't there any more when the
// file is read costs a question.

/// Nothing when there is no such file.
std::vector<statusnotifier::ItemAddress> loadAddresses();
/// Without a runtime folder nothing is kept.
void saveAddresses(const std::vector<statusnotifier::ItemAddress>& addresses);

}  // namespace nevo::menubar
