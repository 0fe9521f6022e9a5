#include "platform/xcb/Properties.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/xcb/Connection.h"

namespace nevo::xcb {

namespace {
std::string fromLatin1(std::string_view text) {
    std::string result;
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            result += c;
        } else {
            result += static_cast<char>(0xC0 | (byte >> 6));
            result += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return result;
}

/// The length of the UTF-8 sequence at the start of `text`; 0 when there is no valid one.
std::size_t sequenceLength(std::string_view text) {
    auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned lead = byteAt(0);
    if (lead < 0x80) return 1;
    std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80) return 0;
    }
    unsigned second = byteAt(1);
    bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    bool outside = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    return overlong || outside ? 0 : length;
}
}  // namespace

PropertyRead::PropertyRead(xcb_connection_t* server, xcb_window_t window, xcb_atom_t property,
                           std::uint32_t maximumBytes)
    : connection(server),
      cookie(xcb_get_property(server, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                              (maximumBytes + 3) / 4)) {}

PropertyRead::PropertyRead(PropertyRead&& other) noexcept
    : connection(other.connection),
      cookie(other.cookie),
      pending(std::exchange(other.pending, false)) {}

PropertyRead::~PropertyRead() {
    if (pending) xcb_discard_reply(connection, cookie.sequence);
}

std::optional<std::vector<std::uint32_t>> PropertyRead::numbers() {
    if (!std::exchange(pending, false)) return std::nullopt;
    Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32) return std::nullopt;
    std::vector<std::uint32_t> values(reply->value_len);
    if (!values.empty()) {
        std::memcpy(values.data(), xcb_get_property_value(reply.get()), values.size() * 4);
    }
    return values;
}

std::optional<std::uint32_t> PropertyRead::number() {
    auto values = numbers();
    if (!values || values->empty()) return std::nullopt;
    return values->front();
}

std::optional<std::string> PropertyRead::text() {
    if (!std::exchange(pending, false)) return std::nullopt;
    Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 8) return std::nullopt;
    std::string_view bytes(static_cast<const char*>(xcb_get_property_value(reply.get())),
                           reply->value_len);
    return reply->type == XCB_ATOM_STRING ? fromLatin1(bytes) : validUtf8(bytes);
}

void writeNumbers(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                  xcb_atom_t type, std::span<const std::uint32_t> values) {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, property, type, 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
}

void writeNumber(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                 std::uint32_t value) {
    writeNumbers(connection, window, property, XCB_ATOM_CARDINAL, std::span(&value, 1));
}

void writeText(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
               xcb_atom_t utf8String, std::string_view text) {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, property, utf8String, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

std::string validUtf8(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        std::size_t length = sequenceLength(text);
        if (length == 0) {
            result += '?';
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

}  // namespace nevo::xcb
