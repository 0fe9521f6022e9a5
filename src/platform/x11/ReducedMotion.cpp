#include "platform/x11/ReducedMotion.h"

#include <QApplication>
#include <QStyle>
#include <cstring>
#include <optional>
#include <string_view>

namespace nevo {

namespace {

constexpr const char* selection = "_XSETTINGS";
constexpr const char* property = "_XSETTINGS_SETTINGS";
constexpr std::string_view animations = "Gtk/EnableAnimations";
constexpr std::uint32_t mostBytes = 1 << 20;

/// Reads what another program has written: past the end there is nothing.
class Reader {
public:
    Reader(std::string_view all, bool bigEndian) : bytes(all), isBigEndian(bigEndian) {}

    bool isGood() const { return good; }
    std::uint32_t number(std::size_t size) {
        std::string_view taken = text(size);
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < taken.size(); ++i) {
            std::size_t from = isBigEndian ? i : taken.size() - 1 - i;
            value = value << 8 | static_cast<unsigned char>(taken[from]);
        }
        return value;
    }
    std::string_view text(std::size_t size) {
        good = good && size <= bytes.size() - place;
        if (!good) return {};
        place += size;
        return bytes.substr(place - size, size);
    }
    /// Entries and their parts begin at multiples of four.
    std::string_view padded(std::size_t size) {
        std::string_view result = text(size);
        text((4 - size % 4) % 4);
        return result;
    }

private:
    std::string_view bytes;
    bool isBigEndian;
    std::size_t place = 0;
    bool good = true;
};

/// The value of a whole number among the settings; nothing where it isn't said.
std::optional<std::uint32_t> setting(std::string_view settings, std::string_view name) {
    enum Type { number = 0, text = 1, color = 2 };
    if (settings.size() < 12) return std::nullopt;
    Reader reader(settings, settings.front() != 0);
    reader.text(8);
    for (std::uint32_t left = reader.number(4); left > 0 && reader.isGood(); --left) {
        std::uint32_t type = reader.number(1);
        reader.text(1);
        std::string_view key = reader.padded(reader.number(2));
        reader.text(4);
        if (type == number) {
            std::uint32_t value = reader.number(4);
            if (key == name && reader.isGood()) return value;
        } else if (type == text) {
            reader.padded(reader.number(4));
        } else if (type == color) {
            reader.text(8);
        } else {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace

ReducedMotion::ReducedMotion(XServer& x, EventPump& pump) : server(x) {
    pump.watch([this](const xcb_generic_event_t& event) { hear(event); });
    reload();
}

bool ReducedMotion::isWanted() const {
    return isWithoutAnimations ||
           QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) == 0;
}

void ReducedMotion::hear(const xcb_generic_event_t& event) {
    bool concerns = false;
    switch (event.response_type & 0x7f) {
        case XCB_PROPERTY_NOTIFY: {
            const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            concerns = notify.window == owner && notify.atom == server.atom(property);
            break;
        }
        case XCB_DESTROY_NOTIFY:
            concerns = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == owner;
            break;
        case XCB_CLIENT_MESSAGE: {
            // A new owner says so to the root window.
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
            concerns = message.type == server.atom("MANAGER") &&
                       message.data.data32[1] == server.screenAtom(selection);
            break;
        }
        default:
            break;
    }
    if (!concerns) return;
    bool before = isWanted();
    reload();
    if (isWanted() != before && changed) changed();
}

void ReducedMotion::reload() {
    auto* c = server.get();
    isWithoutAnimations = false;
    owner = server.selectionOwner(server.screenAtom(selection));
    if (owner == XCB_WINDOW_NONE) return;
    // Asked to be told first: a change in between is read or heard.
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(c, owner, XCB_CW_EVENT_MASK, &mask);
    xcb::Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(c,
                               xcb_get_property(c, 0, owner, server.atom(property),
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, mostBytes / 4),
                               nullptr));
    if (!reply || reply->format != 8) return;
    std::string_view settings(static_cast<const char*>(xcb_get_property_value(reply.get())),
                              static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    isWithoutAnimations = setting(settings, animations) == 0U;
}

}  // namespace nevo
