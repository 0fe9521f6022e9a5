#include "menubar/ItemsReport.h"

#include <fmt/format.h>

#include "menubar/BarItem.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/xcb/Properties.h"

namespace nevo::menubar {

using xcb::PropertyRead;

namespace {
constexpr std::uint32_t mostBytes = 4096;

std::string lineOf(const Display& display, xcb_window_t frame) {
    auto c = display.get();
    auto read = [&](const char* name) {
        return PropertyRead(c, frame, display.atom(name), mostBytes);
    };
    auto applicationId = read(barprotocol::itemAppId);
    auto name = read(barprotocol::itemName);
    auto ownerName = read(barprotocol::itemOwnerName);
    auto title = read(barprotocol::itemTitle);
    auto signs = read(barprotocol::itemSigns);
    auto kind = read(barprotocol::itemKind);
    auto pid = read(barprotocol::itemPid);
    bool isNotifier = kind.number() == static_cast<std::uint32_t>(ItemKind::statusNotifier);
    auto process = pid.number();
    return fmt::format("{} | {} | {} | {} | {} | process {} | {}\n",
                       applicationId.text().value_or(""), name.text().value_or(""),
                       ownerName.text().value_or(""), title.text().value_or(""),
                       isNotifier ? "StatusNotifierItem" : "XEmbed",
                       process ? std::to_string(*process) : "unknown", signs.text().value_or(""));
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
