#include "menubar/ItemsReport.h"

#include <fmt/format.h>

#include <algorithm>

#include "menubar/BarItem.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/xcb/Properties.h"
#include "statusnotifier/ItemProperties.h"

namespace nevo::menubar {

using xcb::PropertyRead;

namespace {
constexpr std::uint32_t mostBytes = 4096;

/// On one line, without what a terminal would obey: programs choose these texts.
std::string onOneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return statusnotifier::plainText(text, mostBytes);
}

std::string lineOf(const Display& display, xcb_window_t frame) {
    auto read = [&](const char* name) {
        return PropertyRead(display.get(), frame, display.atom(name), mostBytes);
    };
    auto text = [&](const char* name) { return onOneLine(read(name).text().value_or("")); };
    bool isNotifier = read(barprotocol::itemKind).number() ==
                      static_cast<std::uint32_t>(ItemKind::statusNotifier);
    auto process = read(barprotocol::itemPid).number();
    return fmt::format("{} | {} | {} | {} | {} | process {} | {}\n", text(barprotocol::itemAppId),
                       text(barprotocol::itemName), text(barprotocol::itemOwnerName),
                       text(barprotocol::itemTitle), isNotifier ? "StatusNotifierItem" : "XEmbed",
                       process ? std::to_string(*process) : "unknown",
                       text(barprotocol::itemSigns));
}
}  // namespace

std::optional<std::string> reportItems(const Display& display, std::string& failure) {
    auto c = display.get();
    auto selection =
        display.atom(fmt::format("_NET_SYSTEM_TRAY_S{}", display.server().screenNumber()));
    xcb::Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, selection), nullptr));
    PropertyRead version(c, owner ? owner->owner : 0, display.atom(barprotocol::version), 4);
    if (!version.number()) {
        failure = "No nevo-menubar runs on this display; start it first.";
        return std::nullopt;
    }
    PropertyRead list(c, owner->owner, display.atom(barprotocol::items), 64 * 1024);
    std::string report = "application | item | program | title | protocol | process | known by\n";
    for (xcb_window_t frame : list.numbers().value_or(std::vector<std::uint32_t>())) {
        report += lineOf(display, frame);
    }
    return report;
}

}  // namespace nevo::menubar
