#pragma once

#include "platform/Platform.h"
#include "platform/sim/SimApplication.h"
#include "platform/sim/SimControlWindows.h"
#include "platform/sim/SimEvents.h"
#include "platform/sim/SimHotKeys.h"
#include "platform/sim/SimImages.h"
#include "platform/sim/SimInstallation.h"
#include "platform/sim/SimMenus.h"
#include "platform/sim/SimRowNotices.h"
#include "platform/sim/SimScreenCapture.h"

namespace nevo {

/// A whole desktop in memory with a virtual clock: displays, a menu bar, other programs and their
/// status items, pointer, permissions, stored values, and scripted faults.
///
/// The program under test gets `platform()`; a test or a scenario drives the public parts. The
/// program must be gone before the desktop is; registrations may stay.
class SimDesktop {
public:
    SimDesktop();
    SimDesktop(const SimDesktop&) = delete;
    SimDesktop& operator=(const SimDesktop&) = delete;

    Platform platform();

    /// Starts the program: `make` builds it on this desktop, and it lives until `reap` finds it
    /// ended. False when one runs already. Not from inside the program.
    bool start(const std::function<std::shared_ptr<void>(Platform)>& make);
    /// Clears away what is left of a program that has quit or died. What a dead one held of other
    /// items (opacity, a place) is given back, as the real bar does for a client that has gone; one
    /// that quit leaves behind what it left. Not from inside the program.
    void reap();

    /// Changes a display, and tells the program at a later turn.
    void putDisplay(const SimDisplay& display);
    bool removeDisplay(std::uint32_t id);

    /// The other programs' items that can't be seen: pushed off, floating or transparent.
    std::vector<std::string> hiddenItems() const;

    SimRunLoop loop;
    SimTrace trace;
    SimLog log;
    SimFaults faults;
    NotificationCenter notifications;
    NotificationCenter workspaceNotifications;
    SimProgram program;
    SimPermissions permissions;
    SimScreens screens;
    SimWindows windows;
    SimDefaults defaults;
    SimBar bar;
    SimStatusBar statusBar;
    SimWindowServer windowServer;
    SimPanels panels;
    SimEvents events;
    SimHotKeys hotKeys;
    SimApplications applications;
    SimWorkspace workspace;
    SimAccessibility accessibility;
    SimScreenCapture screenCapture;
    SimImages images;
    SimMenus menus;
    SimControlWindows controlWindows;
    SimPopovers popovers;
    SimAlerts alerts;
    SimFiles files;
    SimLoginItem loginItem;
    SimUpdaters updaters;
    SimChildProcesses childProcesses;
    SimApplication application;
    SimRowNotices rowNotices;

private:
    void displaysChanged();
    void layBars();

    std::vector<WindowNumber> barWindows;
    std::shared_ptr<void> running;
};

}  // namespace nevo
