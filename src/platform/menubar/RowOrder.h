#pragma once

#include <string>
#include <vector>

namespace nevo {

/// The order of the row to be kept, with the items that aren't there now: `present`, identities
/// from left to right, with each absent one of `remembered` put right of the nearest item that was
/// left of it and is present, else left of the nearest on its right, or at the left end. So an item
/// that comes back finds its place, and the order of absent neighbours among themselves lasts. The
/// item that was `placed` just now takes none of them along: if it stands elsewhere than before,
/// they stay by the others.
std::vector<std::string> mergedRowOrder(std::vector<std::string> remembered,
                                        const std::vector<std::string>& present,
                                        const std::string& placed = "");

/// Shortens an order to `most` identities ("APPLICATION|NAME") as far as absent ones can be
/// forgotten: all those of the application that has the most of them, then of the next. A program
/// whose items come under ever new names costs no other its place.
void forgetAbsent(std::vector<std::string>& order, const std::vector<std::string>& present,
                  std::size_t most);

}  // namespace nevo
