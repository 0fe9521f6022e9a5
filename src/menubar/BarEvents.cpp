#include <xcb/damage.h>
#include <xcb/randr.h>

#include <algorithm>
#include <utility>

#include "menubar/Bar.h"
#include "menubar/Log.h"
#include "platform/menubar/BarProtocol.h"

namespace nevo::menubar {

using namespace std::chrono_literals;

namespace {
/// Then the work that they asked for is looked at, however many more have come.
constexpr int eventsPerPass = 1000;
/// A change of monitors comes as several events within this time.
constexpr auto monitorsSettle = 200ms;
constexpr int smallestWidth = 8;
constexpr int largestWidth = 600;
constexpr std::uint8_t sentFlag = 0x80;

template <class T>
const T& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event);
}
}  // namespace

void Bar::drainEvents() {
    for (int i = 0; i < eventsPerPass && !isEnding; ++i) {
        auto event = std::move(heldEvent);
        if (!event) event.reset(xcb_poll_for_event(display.get()));
        if (!event) return;
        handle(*event);
    }
}

void Bar::handle(const xcb_generic_event_t& event) {
    auto type = static_cast<std::uint8_t>(event.response_type & ~sentFlag);
    // Errors come from requests about windows that died meanwhile: nothing to be done.
    if (type == 0) return;
    if (type == display.damageEvents() + XCB_DAMAGE_NOTIFY) {
        onDamage(as<xcb_damage_notify_event_t>(event).drawable);
    } else if (type == display.randrEvents() + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
               type == display.randrEvents() + XCB_RANDR_NOTIFY) {
        monitorsDue = Clock::now() + monitorsSettle;
    } else if (type == XCB_CLIENT_MESSAGE) {
        onClientMessage(as<xcb_client_message_event_t>(event));
    } else if ((event.response_type & sentFlag) == 0) {
        // Anything else is believed only if the server itself says it.
        handleWindowEvent(event, type);
    }
}

void Bar::handleWindowEvent(const xcb_generic_event_t& event, std::uint8_t type) {
    switch (type) {
        case XCB_CONFIGURE_REQUEST:
            return onConfigureRequest(as<xcb_configure_request_event_t>(event));
        case XCB_MAP_REQUEST:
            return onMapRequest(as<xcb_map_request_event_t>(event));
        case XCB_DESTROY_NOTIFY:
            return onWindowGone(as<xcb_destroy_notify_event_t>(event).window);
        case XCB_REPARENT_NOTIFY:
            return onReparented(as<xcb_reparent_notify_event_t>(event));
        case XCB_MAP_NOTIFY: {
            auto& mapped = as<xcb_map_notify_event_t>(event);
            return onClientMapped(mapped.event, mapped.window, true);
        }
        case XCB_UNMAP_NOTIFY: {
            auto& unmapped = as<xcb_unmap_notify_event_t>(event);
            return onClientMapped(unmapped.event, unmapped.window, false);
        }
        case XCB_PROPERTY_NOTIFY:
            return onPropertyChanged(as<xcb_property_notify_event_t>(event));
        case XCB_CONFIGURE_NOTIFY:
            if (as<xcb_configure_notify_event_t>(event).window == display.root()) {
                monitorsDue = Clock::now() + monitorsSettle;
            }
            return;
        case XCB_EXPOSE:
            needsPaint = true;
            return;
        case XCB_VISIBILITY_NOTIFY:
            isCovered = as<xcb_visibility_notify_event_t>(event).state != XCB_VISIBILITY_UNOBSCURED;
            return;
        case XCB_SELECTION_CLEAR:
            if (as<xcb_selection_clear_event_t>(event).selection != host->selection()) return;
            logLine("another program took the system tray over; ending.");
            isEnding = true;
            return;
        case XCB_BUTTON_PRESS: {
            auto& press = as<xcb_button_press_event_t>(event);
            BarItem* item = items.withClient(press.event);
            return item != nullptr && item->face ? onFacePress(*item, press) : onPress(press);
        }
        case XCB_MOTION_NOTIFY:
            if (drag && drag->usesPointer) moveDrag(as<xcb_motion_notify_event_t>(event).root_x);
            return;
        case XCB_ENTER_NOTIFY:
        case XCB_LEAVE_NOTIFY: {
            const BarItem* item = items.withClient(as<xcb_enter_notify_event_t>(event).event);
            bool isFace = item != nullptr && item->face;
            if (isFace) onFaceCrossing(*item, type == XCB_ENTER_NOTIFY);
            return;
        }
        case XCB_BUTTON_RELEASE: {
            auto& release = as<xcb_button_release_event_t>(event);
            BarItem* item = items.withClient(release.event);
            if (item != nullptr && item->face) return onFaceRelease(*item, release);
            if (!drag || !drag->usesPointer || release.detail != XCB_BUTTON_INDEX_1) return;
            moveDrag(release.root_x);
            return endDrag();
        }
        case XCB_GE_GENERIC:
            return syntheticInput.take(event);
        default:
            return;
    }
}

/// Sizes are asked for, not taken: the width is honoured within reason, the height is the bar's.
void Bar::onConfigureRequest(const xcb_configure_request_event_t& event) {
    BarItem* item = items.withClient(event.window);
    if (item == nullptr || event.parent != item->frame->window()) return;
    if ((event.value_mask & XCB_CONFIG_WINDOW_WIDTH) != 0) {
        int least = item->isStatusItem() ? 1 : smallestWidth;
        int width = event.width;
        // An icon higher than the bar is drawn smaller in proportion. GTK 2 asks for 48x48 before
        // it has heard of the bar's height, and doesn't ask again if it hears of it just then.
        bool tooHigh = (event.value_mask & XCB_CONFIG_WINDOW_HEIGHT) != 0 &&
                       event.height > options.height && !item->isStatusItem();
        if (tooHigh) width = width * options.height / event.height;
        // Some ask for the size of the icon that they had before, and draw the one that fits the
        // bar's height into it: cut off at both sides.
        bool isSquare = (event.value_mask & XCB_CONFIG_WINDOW_HEIGHT) != 0 &&
                        event.width == event.height && !item->isStatusItem();
        if (isSquare) width = options.height;
        item->requestedWidth = std::clamp(width, least, largestWidth);
    }
    item->awaitsPlace = true;
    needsLayout = true;
}

void Bar::onMapRequest(const xcb_map_request_event_t& event) {
    BarItem* item = items.withClient(event.window);
    if (item != nullptr) xcb_map_window(display.get(), event.window);
}

void Bar::onWindowGone(xcb_window_t window) {
    if (BarItem* item = items.withClient(window)) removeItem(*item, false);
    if (leases.end(window)) endLease(window);
}

void Bar::onReparented(const xcb_reparent_notify_event_t& event) {
    BarItem* item = items.withClient(event.window);
    if (item == nullptr || event.parent == item->frame->window()) return;
    removeItem(*item, false);
    if (event.parent != display.root()) takeBackSoon(event.window);
}

/// A client without `_XEMBED_INFO` shows and hides itself by mapping.
void Bar::onClientMapped(xcb_window_t frame, xcb_window_t client, bool mapped) {
    BarItem* item = items.withClient(client);
    bool isOurs = item != nullptr && item->face;
    if (item == nullptr || isOurs || frame != item->frame->window() || item->xembed.present) return;
    item->isMapped = mapped;
    setInRow(*item, item->wantsPlace());
}

void Bar::onPropertyChanged(const xcb_property_notify_event_t& event) {
    BarItem* item = items.withClient(event.window);
    if (item == nullptr) return;
    for (const char* name : {"_XEMBED_INFO", barprotocol::statusItemLength,
                             barprotocol::statusItemName, barprotocol::statusItemAppId}) {
        if (event.atom != display.atom(name)) continue;
        item->isStale = true;
        hasStaleItems = true;
    }
}

/// What isn't seen isn't acknowledged either, so an invisible item that draws costs nothing.
void Bar::onDamage(xcb_window_t frame) {
    BarItem* item = items.withFrame(frame);
    if (item == nullptr) return;
    item->hasDamage = true;
    if (isVisible(*item)) needsPaint = true;
}

}  // namespace nevo::menubar
