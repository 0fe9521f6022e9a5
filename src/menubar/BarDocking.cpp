#include <algorithm>
#include <utility>

#include "menubar/Bar.h"
#include "menubar/ItemNaming.h"
#include "menubar/Log.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/xcb/Properties.h"

namespace nevo::menubar {

using xcb::PropertyRead;

namespace {
constexpr std::uint32_t longestText = 1024;
constexpr double largestLength = 10000;
constexpr double lengthUnit = 1000;

/// The client's own wish for its slot; nothing for an ordinary program.
std::optional<double> statusLengthOf(std::optional<std::uint32_t> value) {
    if (!value) return std::nullopt;
    auto thousandths = static_cast<std::int32_t>(*value);
    if (thousandths < 0) return lengthOfContent;
    return std::min(thousandths / lengthUnit, largestLength);
}
}  // namespace

void Bar::requestDock(xcb_window_t client, bool adopted) {
    auto sameClient = [client](const DockRequest& request) { return request.client == client; };
    bool isWaiting = std::any_of(dockRequests.begin(), dockRequests.end(), sameClient);
    if (isWaiting || items.withClient(client) != nullptr) return;
    if (items.size() + dockRequests.size() >= mostItems) {
        if (!std::exchange(limitLogged, true)) {
            log("there are {} items already; no more are taken in.", mostItems);
        }
        return;
    }
    dockRequests.push_back({client, adopted});
}

void Bar::dock(xcb_window_t client, bool adopted) {
    // One of our own windows would be inside itself.
    std::uint32_t mask = xcb_get_setup(display.get())->resource_id_mask;
    if ((client & ~mask) == xcb_get_setup(display.get())->resource_id_base) return;
    if (client == display.root() || items.withClient(client) != nullptr) return;
    auto form = watchClient(display, client);
    if (!form) return;
    auto frame = ItemFrame::create(display, windows.front()->window(), form->depth, form->visual,
                                   options.height, BarWindow::groundPixel);
    if (!frame) return;
    if (!putIntoFrame(display, client, frame->window(), options.height))
        return takeBackSoon(client);

    auto made = std::make_unique<BarItem>();
    made->frame = std::move(frame);
    made->client = client;
    made->requestedWidth = options.height;
    made->isAdopted = adopted;
    BarItem& item = items.add(std::move(made));
    identify(item);
    if (!adopted) dropAdoptedTwin(item);
    const BarItem* twin = twinOf(item);
    item.isTwin = twin != nullptr && twin->isInRow;
    refresh(item);
    settleTwins(item.pid, nullptr);
    announceEmbedded(display, client, item.frame->window(), item.xembed.version);
    xcb::writeNumber(display.get(), item.frame->window(), display.atom(barprotocol::itemOpacity),
                     item.opacity);
    if (adopted) log("took in an item of {} that an earlier tray had left.", item.applicationId);
}

/// A program that was too slow to dock again before its old window was adopted has two now.
void Bar::dropAdoptedTwin(const BarItem& newcomer) {
    if (!newcomer.pid) return;
    for (BarItem* other : items.all()) {
        bool isTwin = other != &newcomer && other->isAdopted && other->pid == newcomer.pid &&
                      other->windowClass.name == newcomer.windowClass.name &&
                      other->windowName == newcomer.windowName;
        if (!isTwin) continue;
        removeItem(*other, true);
        return;
    }
}

void Bar::adoptStranded() {
    for (xcb_window_t window : strandedClients(display)) {
        auto pid = xcb::processOfWindow(display.get(), window, display.atom("_NET_WM_PID"));
        auto all = items.all();
        // A program that has docked anew by itself has given up its old windows.
        bool hasDocked = pid && std::any_of(all.begin(), all.end(), [&](const BarItem* item) {
                             return item->pid == pid && !item->isAdopted && !item->face;
                         });
        if (!hasDocked) requestDock(window, true);
    }
}

/// A window manager that has seen it shown before it was in our frame puts a frame of its own
/// around it, after us, and lets go of it when it is taken in again.
void Bar::takeBackSoon(xcb_window_t client) {
    taken.insert(client);
    takeBackDue = Clock::now() + adoptionDelay;
}

/// Only what is managed like any window: what another program has put into a window of its own is
/// there by somebody's will.
void Bar::takeBack() {
    auto wanted = std::exchange(taken, {});
    for (xcb_window_t window : strandedClients(display)) {
        if (wanted.contains(window)) requestDock(window, false);
    }
}

void Bar::identify(BarItem& item) {
    auto c = display.get();
    PropertyRead appId(c, item.client, display.atom(barprotocol::statusItemAppId), longestText);
    PropertyRead title(c, item.client, display.atom("_NET_WM_NAME"), longestText);
    PropertyRead plainTitle(c, item.client, XCB_ATOM_WM_NAME, longestText);
    item.pid = xcb::processOfWindow(c, item.client, display.atom("_NET_WM_PID"));
    item.windowClass = xcb::classOfWindow(c, item.client);
    item.windowName = title.text().value_or("");
    if (item.windowName.empty()) item.windowName = plainTitle.text().value_or("");

    auto owner = owners.identify(item.pid, item.windowClass);
    item.applicationId = appId.text().value_or("");
    item.ownerName = owner.name;
    item.signs = owner.signs;
    if (item.applicationId.empty()) {
        item.applicationId = owner.applicationId;
    } else if (auto entry = desktopEntries.byId(item.applicationId)) {
        item.ownerName = entry->name;
    }
}

/// Gives the item its name and place; `ownName` is what its client calls it, or empty.
void Bar::nameItem(BarItem& item, const std::string& ownName) {
    std::vector<NameHints> siblings;
    std::vector<std::string> siblingNames;
    auto hintsOf = [](const BarItem& i) {
        return NameHints{i.applicationId, i.windowClass.instance, i.windowName};
    };
    const BarItem* twin = twinOf(item);
    for (const BarItem* other : items.all()) {
        if (other == &item || other == twin || other->applicationId != item.applicationId) continue;
        siblings.push_back(hintsOf(*other));
        siblingNames.push_back(other->name);
    }
    item.hasOwnName = !ownName.empty();
    item.name = item.hasOwnName
                    ? ownName
                    : chooseItemName(hintsOf(item), siblings, siblingNames, keeper.order());
    auto ordinal = std::count(siblingNames.begin(), siblingNames.end(), item.name);
    item.identity = rowIdentity(item.applicationId, item.name, static_cast<int>(ordinal));
    publishIdentity(item);
}

/// Reads again what the client says of itself.
void Bar::refresh(BarItem& item) {
    auto c = display.get();
    PropertyRead length(c, item.client, display.atom(barprotocol::statusItemLength), 4);
    PropertyRead ownName(c, item.client, display.atom(barprotocol::statusItemName), longestText);
    PropertyRead appId(c, item.client, display.atom(barprotocol::statusItemAppId), longestText);
    auto xembed = readXembedInfo(display, item.client);
    // Once seen it counts for ever: a client that takes it away is on its way out.
    if (xembed.present || !item.xembed.present) item.xembed = xembed;
    item.statusLength = statusLengthOf(length.number());

    std::string newName = ownName.text().value_or("");
    std::string newAppId = appId.text().value_or("");
    bool isRenamed = item.name.empty() || (!newName.empty() && newName != item.name) ||
                     (newName.empty() && item.hasOwnName) ||
                     (!newAppId.empty() && newAppId != item.applicationId);
    if (isRenamed) {
        // Under its new name it stands where that name's place is.
        if (item.isInRow) keeper.take(item.key);
        if (!newAppId.empty()) item.applicationId = newAppId;
        nameItem(item, newName);
        if (std::exchange(item.isInRow, false)) setInRow(item, true);
    }
    setInRow(item, item.wantsPlace());
    needsLayout = true;
}

/// A withdrawn item keeps its window in the frame but has no slot.
void Bar::setInRow(BarItem& item, bool inRow) {
    if (item.isInRow == inRow) return;
    item.isInRow = inRow;
    if (inRow) {
        std::string otherName = item.name == unnamedItem ? item.ownerName : "";
        keeper.add({item.key, item.applicationId, item.name, otherName, item.identity,
                    item.length(), MenuBarRow::roleOf(item.isStatusItem(), item.name)});
        item.awaitsPlace = true;
        xcb_map_window(display.get(), item.client);
    } else {
        if (drag && drag->item == item.key) cancelDrag();
        if (isVisiting(item)) endVisit();
        endFloat(item);
        // Whoever made it transparent loses sight of it now, and couldn't make it opaque again.
        setOpacity(item, fullOpacity, XCB_WINDOW_NONE);
        // An item on the bus only calls itself passive, some of them time and again: the order of
        // the row keeps its place, without a write.
        if (item.face) {
            keeper.take(item.key);
        } else {
            keeper.leave(item.key);
        }
        item.frame->setMapped(false);
        if (item.xembed.present) xcb_unmap_window(display.get(), item.client);
    }
    needsLayout = true;
    needsPaint = true;
}

void Bar::removeItem(BarItem& item, bool handsBack) {
    bool isShutdown = isEnding;
    if (toolTipItem == item.key) endToolTip();
    if (drag && drag->item == item.key) cancelDrag();
    endFloat(item);
    if (item.isInRow && !isShutdown) keeper.leave(item.key);
    if (handsBack && !item.face) {
        const PixelRect& bar = windows.front()->rect();
        handBack(display, item.client, bar.x, bar.y, leases.contains(item.client));
    }
    if (facePress.item == item.key) facePress = {};
    if (!isShutdown) settleTwins(item.pid, &item);
    items.remove(item.key);
    needsLayout = true;
    needsPaint = true;
}

void Bar::publishIdentity(const BarItem& item) const {
    auto c = display.get();
    xcb_window_t frame = item.frame->window();
    xcb_atom_t utf8 = display.atom("UTF8_STRING");
    if (item.pid) {
        xcb::writeNumber(c, frame, display.atom(barprotocol::itemPid),
                         static_cast<std::uint32_t>(*item.pid));
    }
    xcb::writeText(c, frame, display.atom(barprotocol::itemAppId), utf8, item.applicationId);
    xcb::writeText(c, frame, display.atom(barprotocol::itemName), utf8, item.name);
    xcb::writeText(c, frame, display.atom(barprotocol::itemOwnerName), utf8, item.ownerName);
    std::string signs = item.signs + (item.hasOwnName ? "; a name of its own" : "");
    if (!item.windowClass.instance.empty()) {
        signs += (item.face ? "; id " : "; class ") + item.windowClass.instance;
    }
    xcb::writeText(c, frame, display.atom(barprotocol::itemSigns), utf8, signs);
    xcb::writeNumber(c, frame, display.atom(barprotocol::itemKind),
                     static_cast<std::uint32_t>(item.kind));
    if (item.face) return;
    xcb_window_t client = item.client;
    xcb::writeNumbers(c, frame, display.atom(barprotocol::itemClient), XCB_ATOM_WINDOW,
                      std::span(&client, 1));
}

}  // namespace nevo::menubar
