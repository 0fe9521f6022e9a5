#pragma once

#include "platform/Accessibility.h"
#include "platform/Alerts.h"
#include "platform/Application.h"
#include "platform/ChildProcesses.h"
#include "platform/Events.h"
#include "platform/Files.h"
#include "platform/HotKeys.h"
#include "platform/Images.h"
#include "platform/LogOutput.h"
#include "platform/LoginItem.h"
#include "platform/Menus.h"
#include "platform/NotificationCenter.h"
#include "platform/Panels.h"
#include "platform/RunLoop.h"
#include "platform/ScreenCapture.h"
#include "platform/Screens.h"
#include "platform/StatusBar.h"
#include "platform/Updates.h"
#include "platform/UserDefaults.h"
#include "platform/WindowServer.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"

namespace nevo {

/// Everything that the logic asks of a desktop, handed over once at construction. The desktop
/// outlives its users.
struct Platform {
    RunLoop& runLoop;
    /// The default centre of this program, and that of the workspace.
    NotificationCenter& notifications;
    NotificationCenter& workspaceNotifications;
    UserDefaults& defaults;
    Application& application;
    StatusBar& statusBar;
    WindowServer& windows;
    Events& events;
    HotKeys& hotKeys;
    Screens& screens;
    Workspace& workspace;
    Accessibility& accessibility;
    ScreenCapture& screenCapture;
    Images& images;
    Panels& panels;
    Menus& menus;
    Popovers& popovers;
    Windows& surfaceWindows;
    Alerts& alerts;
    Files& files;
    LoginItem& loginItem;
    Updaters& updaters;
    ChildProcesses& childProcesses;
    LogOutput& log;
};

}  // namespace nevo
