#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace nevo::xcb {

/// Atoms by name, fetched once.
class Atoms {
public:
    /// Interns all of `names` with a single wait.
    Atoms(xcb_connection_t* connection, std::span<const char* const> names);

    /// The atom of `name`; one that wasn't named at construction costs a round trip the first time.
    /// XCB_ATOM_NONE once the connection is broken.
    xcb_atom_t operator[](std::string_view name) const;

private:
    xcb_connection_t* connection;
    mutable std::map<std::string, xcb_atom_t, std::less<>> known;
};

}  // namespace nevo::xcb
