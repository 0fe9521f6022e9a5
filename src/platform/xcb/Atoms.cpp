#include "platform/xcb/Atoms.h"

#include <cstdint>
#include <vector>

#include "platform/xcb/Connection.h"

namespace nevo::xcb {

namespace {
xcb_intern_atom_cookie_t ask(xcb_connection_t* connection, std::string_view name) {
    return xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
}

xcb_atom_t answer(xcb_connection_t* connection, xcb_intern_atom_cookie_t cookie) {
    Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}
}  // namespace

Atoms::Atoms(xcb_connection_t* server, std::span<const char* const> names) : connection(server) {
    std::vector<xcb_intern_atom_cookie_t> cookies;
    cookies.reserve(names.size());
    for (const char* name : names) cookies.push_back(ask(connection, name));
    for (std::size_t i = 0; i < names.size(); ++i) {
        known.emplace(names[i], answer(connection, cookies[i]));
    }
}

xcb_atom_t Atoms::operator[](std::string_view name) const {
    auto found = known.find(name);
    if (found != known.end()) return found->second;
    xcb_atom_t atom = answer(connection, ask(connection, name));
    if (atom != XCB_ATOM_NONE) known.emplace(name, atom);
    return atom;
}

}  // namespace nevo::xcb
