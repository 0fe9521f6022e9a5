#pragma once

#include <string>

#include "platform/UserDefaults.h"

namespace nevo {

/// The items that have ever stood in the row, stored by their programs. Bytes that aren't ours read
/// as no item.
class KnownItems {
public:
    explicit KnownItems(DefaultsDomain& domain) : store(domain) {}

    /// Notes the item. True when it was unknown, once for each item. With `introduces` it is once
    /// for each program, too: one whose items come under ever new names is known from then on.
    bool meet(const std::string& persistedID, const std::string& program, bool introduces);

private:
    DefaultsDomain& store;
};

}  // namespace nevo
