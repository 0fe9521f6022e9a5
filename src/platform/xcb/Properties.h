#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nevo::xcb {

/// A property being read. Make several, then collect: their requests travel together. A window that
/// is gone, a property that is absent or of another form reads as nothing; what lies beyond the
/// size limit is cut off.
class PropertyRead {
public:
    PropertyRead(xcb_connection_t* server, xcb_window_t window, xcb_atom_t property,
                 std::uint32_t maximumBytes = 4096);
    ~PropertyRead();
    PropertyRead(PropertyRead&& other) noexcept;
    PropertyRead(const PropertyRead&) = delete;
    PropertyRead& operator=(const PropertyRead&) = delete;
    PropertyRead& operator=(PropertyRead&&) = delete;

    // One of these, once.
    /// The 32-bit values of a CARDINAL, INTEGER, ATOM or WINDOW list.
    std::optional<std::vector<std::uint32_t>> numbers();
    /// The first of `numbers()`.
    std::optional<std::uint32_t> number();
    /// The text of a UTF8_STRING, or of a STRING turned into UTF-8. What isn't valid UTF-8 is
    /// replaced by "?", so the result always is.
    std::optional<std::string> text();

private:
    xcb_connection_t* connection;
    xcb_get_property_cookie_t cookie;
    bool pending = true;
};

/// Replaces a list property. `type` is XCB_ATOM_CARDINAL, XCB_ATOM_INTEGER or XCB_ATOM_WINDOW.
void writeNumbers(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                  xcb_atom_t type, std::span<const std::uint32_t> values);
/// Replaces a property by one CARDINAL.
void writeNumber(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                 std::uint32_t value);
/// Replaces a text property; `utf8String` is the atom of UTF8_STRING.
void writeText(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
               xcb_atom_t utf8String, std::string_view text);

/// `text` with each byte that isn't part of valid UTF-8 replaced by "?".
std::string validUtf8(std::string_view text);

}  // namespace nevo::xcb
