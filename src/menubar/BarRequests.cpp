#include "menubar/Bar.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/xcb/Properties.h"

namespace nevo::menubar {

namespace {
constexpr std::uint32_t dockOpcode = 0;

int signedOf(std::uint32_t value) { return static_cast<std::int32_t>(value); }
}  // namespace

void Bar::onClientMessage(const xcb_client_message_event_t& message) {
    if (message.format != 32) return;
    const std::uint32_t* data = message.data.data32;
    if (message.type == display.atom("_NET_SYSTEM_TRAY_OPCODE")) {
        // Balloon messages are another matter: a notification service shows them.
        if (data[1] == dockOpcode) requestDock(data[2], false);
        return;
    }
    if (message.window != host->controlWindow()) return;
    if (message.type == display.atom(barprotocol::drag)) {
        if (acceptLease(data[4])) onDragMessage(data[0], data[1], signedOf(data[2]), data[4]);
        return;
    }
    BarItem* item = items.withFrame(data[0]);
    if (item == nullptr || !item->isInRow) return;
    if (message.type == display.atom(barprotocol::setOpacity)) {
        if (acceptLease(data[2])) setOpacity(*item, data[1], data[2]);
    } else if (message.type == display.atom(barprotocol::moveItem)) {
        if (acceptLease(data[3])) moveItem(*item, signedOf(data[1]), signedOf(data[2]), data[3]);
    } else if (message.type == display.atom(barprotocol::visit)) {
        if (acceptLease(data[3])) onVisitMessage(*item, data[1] != 0, signedOf(data[2]), data[3]);
    }
}

bool Bar::acceptLease(xcb_window_t lease) {
    return leases.accept(lease, items.withClient(lease) != nullptr);
}

void Bar::setOpacity(BarItem& item, std::uint32_t opacity, xcb_window_t lease) {
    item.opacityLease = opacity == fullOpacity ? 0 : lease;
    if (opacity == item.opacity) return;
    item.opacity = opacity;
    item.frame->setTakesInput(opacity > 0 && item.slot.width > 0);
    xcb::writeNumber(display.get(), item.frame->window(), display.atom(barprotocol::itemOpacity),
                     opacity);
    needsPaint = true;
}

/// The program behind the lease has gone: all that it asked for goes too.
void Bar::endLease(xcb_window_t lease) {
    for (BarItem* item : items.all()) {
        if (item->opacityLease == lease) setOpacity(*item, fullOpacity, XCB_WINDOW_NONE);
        if (item->floats && item->floatLease == lease) endFloat(*item);
    }
    if (visit && visit->lease == lease) endVisit();
    if (announcement && announcement->lease == lease) announcement.reset();
    if (drag && drag->lease == lease) cancelDrag();
}

}  // namespace nevo::menubar
