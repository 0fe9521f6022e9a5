#pragma once

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "menubar/BarWindow.h"
#include "menubar/ClockFace.h"
#include "menubar/Display.h"
#include "menubar/HelperProcess.h"
#include "menubar/IconSource.h"
#include "menubar/ItemTable.h"
#include "menubar/Leases.h"
#include "menubar/Notifiers.h"
#include "menubar/Options.h"
#include "menubar/RowStore.h"
#include "menubar/SyntheticInput.h"
#include "menubar/ToolTipWindow.h"
#include "menubar/TrayHost.h"
#include "platform/menubar/FloatRoom.h"
#include "platform/menubar/RowKeeper.h"
#include "platform/xcb/OwnerIdentity.h"

namespace nevo::menubar {

/// The menu bar: takes in the status items of all programs, lays them out, paints them, and does
/// what the protocol (docs/menubar-protocol.md) lets others ask for. Knows nothing of hiding.
///
/// Events only note what is to be done; the work is done once for all of them, at most sixty times
/// a second, so that no client can keep the bar from serving the others.
class Bar {
public:
    Bar(const Display& x, const Options& chosen, std::unique_ptr<TrayHost> trayHost);
    ~Bar();
    Bar(const Bar&) = delete;
    Bar& operator=(const Bar&) = delete;

    /// Serves until a signal ends it, another program takes the tray over, or the display goes.
    /// The items are back on the root window then. Returns the process's exit status.
    int run();

private:
    /// Withdrawn ones included.
    static constexpr std::size_t mostItems = 500;
    /// Programs that dock again by themselves after a bar's end have done so by then; what is still
    /// outside has nobody else.
    static constexpr std::chrono::milliseconds adoptionDelay{500};
    using Clock = std::chrono::steady_clock;
    using Deadline = std::optional<Clock::time_point>;

    /// Where the pointer was, in root coordinates, and when.
    struct Click {
        int x = 0;
        int y = 0;
        Clock::time_point time;
    };

    /// An item in the hand, from the press to the release.
    struct Drag {
        MenuBarRow::Key item = 0;
        /// From the frame's left edge to the pointer.
        int grabOffset = 0;
        int startX = 0;
        int pointerX = 0;
        /// 0 for a drag by hand, which nothing but its release ends.
        xcb_window_t lease = 0;
        bool usesPointer = false;
        bool hasMoved = false;
    };
    struct Announcement {
        xcb_window_t frame = 0;
        xcb_window_t lease = 0;
        Clock::time_point expires;
    };

    /// An item that stands in the bar unseen, out of its slot, for a click.
    struct Visit {
        MenuBarRow::Key item = 0;
        /// Of its middle, root coordinates.
        int x = 0;
        xcb_window_t lease = 0;
    };

    // Bar.cpp: setting up and the loop
    void grabDragButton() const;
    void openSignals();
    bool waitForSomething();
    Deadline nextDeadline() const;
    bool hasWork() const;
    void work();
    void updateMonitors();
    void tick();

    // BarEvents.cpp: what comes from the server
    void drainEvents();
    void handle(const xcb_generic_event_t& event);
    void handleWindowEvent(const xcb_generic_event_t& event, std::uint8_t type);
    void onConfigureRequest(const xcb_configure_request_event_t& event);
    void onMapRequest(const xcb_map_request_event_t& event);
    void onWindowGone(xcb_window_t window);
    void onReparented(const xcb_reparent_notify_event_t& event);
    void onClientMapped(xcb_window_t frame, xcb_window_t client, bool mapped);
    void onPropertyChanged(const xcb_property_notify_event_t& event);
    void onDamage(xcb_window_t frame);

    // BarDocking.cpp: items come and go
    void requestDock(xcb_window_t client, bool adopted);
    void dock(xcb_window_t client, bool adopted);
    void dropAdoptedTwin(const BarItem& newcomer);
    void adoptStranded();
    void takeBackSoon(xcb_window_t client);
    void takeBack();
    void identify(BarItem& item);
    void nameItem(BarItem& item, const std::string& ownName);
    void refresh(BarItem& item);
    void setInRow(BarItem& item, bool inRow);
    void removeItem(BarItem& item, bool handsBack);
    void publishIdentity(const BarItem& item) const;

    // BarLayout.cpp: where everything stands
    int systemAreaLeft() const;
    MenuBarRow::Room room() const;
    void layout();
    bool placeItem(BarItem& item, const MenuBarRow::Slot& slot, const MenuBarRow::Slot& place);
    PixelRect realRect(const BarItem& item, const PixelRect& place) const;
    bool publishSlot(BarItem& item, const PixelRect& slot);
    void publishGeometry();
    bool isVisible(const BarItem& item) const;
    void paint();
    void paintItem(BarItem& item);

    // BarRequests.cpp: what the protocol lets others ask for
    void onClientMessage(const xcb_client_message_event_t& message);
    void setOpacity(BarItem& item, std::uint32_t opacity, xcb_window_t lease);
    void endLease(xcb_window_t lease);
    bool acceptLease(xcb_window_t lease);

    // BarDrag.cpp
    void onDragMessage(xcb_window_t frame, std::uint32_t phase, int x, xcb_window_t lease);
    void onPress(const xcb_button_press_event_t& event);
    BarItem* itemAt(int rootX) const;
    void beginDrag(BarItem& item, int pointerX, bool usesPointer, xcb_window_t lease);
    void moveDrag(int pointerX);
    void endDrag();
    void cancelDrag();

    // BarNotifiers.cpp: items of programs that have no window of their own
    int pictureSide() const;
    void openNotifiers();
    BarItem* withNotifier(const statusnotifier::Item& notifier) const;
    void onNotifierChanged(statusnotifier::Item& notifier);
    bool hasRoomFor(const statusnotifier::Item& notifier);
    BarItem* dockNotifier(statusnotifier::Item& notifier);
    statusnotifier::Picture pictureOf(const IconSource::Name& name,
                                      const statusnotifier::Picture& pixels,
                                      const statusnotifier::Picture& before);
    void showFace(BarItem& item);
    void showTitle(BarItem& item);
    BarItem* twinOf(const BarItem& item) const;
    void settleTwins(std::optional<ProcessId> pid, const BarItem* leaving);
    void onFacePress(BarItem& item, const xcb_button_press_event_t& event);
    void onFaceRelease(BarItem& item, const xcb_button_release_event_t& event);
    void lookForIconsAnew(const statusnotifier::ItemProperties& properties);
    void openMenu(BarItem& item, const Click& click);
    void onMenuEnded();

    // BarToolTip.cpp
    void onFaceCrossing(const BarItem& item, bool enters);
    void showToolTip();
    void endToolTip();

    // BarFloat.cpp
    void moveItem(BarItem& item, int x, int y, xcb_window_t lease);
    void endFloat(BarItem& item);
    MenuBarRow::Room openRoom();
    void closeRoom();
    bool pointerRestsOnKept() const;
    FloatRoom::IsSeen seenItems() const;

    // BarVisit.cpp
    void onVisitMessage(BarItem& item, bool comes, int x, xcb_window_t lease);
    void endVisit();
    bool isVisiting(const BarItem& item) const;

    const Display& display;
    Options options;
    std::unique_ptr<TrayHost> host;
    xcb::DesktopEntries desktopEntries;
    xcb::OwnerIdentities owners;
    RowStore rowStore;
    RowKeeper keeper;
    Leases leases;
    SyntheticInput syntheticInput;
    ClockFace clockFace;
    /// The primary monitor's first: it holds the items.
    std::vector<std::unique_ptr<BarWindow>> windows;
    ItemTable items;
    std::unique_ptr<IconSource> icons;
    std::unique_ptr<Notifiers> notifiers;
    /// Shows a menu, while it exists and a little longer.
    std::unique_ptr<HelperProcess> menuHelper;
    bool menuFailureLogged = false;
    /// What it was started for.
    MenuBarRow::Key menuItem = 0;
    Click menuClick;
    /// A button that went down on an item of the bus, and counts when it comes up there.
    struct FacePress {
        MenuBarRow::Key item = 0;
        std::uint8_t button = 0;
    };
    FacePress facePress;
    ToolTipWindow toolTip;
    /// Whose text is shown, or waits to be.
    MenuBarRow::Key toolTipItem = 0;
    Deadline toolTipDue;

    struct DockRequest {
        xcb_window_t client;
        bool adopted;
    };
    std::deque<DockRequest> dockRequests;
    std::optional<Drag> drag;
    std::optional<Announcement> announcement;
    std::optional<Visit> visit;
    FloatRoom floatRoom;
    /// To look whether the pointer has left.
    Deadline roomDue;
    std::vector<std::uint32_t> publishedList;
    std::vector<std::uint32_t> publishedGeometry;
    int systemAreaWidth = 0;
    /// Of the monitor that the items are on.
    int monitorHeight = 0;

    bool needsLayout = true;
    bool needsPaint = true;
    bool needsSave = false;
    bool hasStaleItems = false;
    bool isCovered = false;
    bool limitLogged = false;
    bool isEnding = false;
    int exitStatus = 0;
    Clock::time_point nextWork;
    Clock::time_point nextRaise;
    Deadline monitorsDue;
    Deadline clockDue;
    Deadline adoptionDue;
    /// Clients that somebody has put into another window than ours.
    std::set<xcb_window_t> taken;
    Deadline takeBackDue;
    xcb::Reply<xcb_generic_event_t> heldEvent;
    int signalDescriptor = -1;
    int minuteDescriptor = -1;
};

}  // namespace nevo::menubar
