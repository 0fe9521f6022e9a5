#pragma once

#include <string>
#include <vector>

namespace nevo {

/// The order of the row to be kept, with the items that aren't there now: `present`, identities
/// from left to right, with each absent one of `remembered` put right of the nearest item that was
/// left of it and is present, or at the left end. So an item that comes back finds its place, and
/// the order of absent neighbours among themselves lasts.
std::vector<std::string> mergedRowOrder(const std::vector<std::string>& remembered,
                                        const std::vector<std::string>& present);

}  // namespace nevo
