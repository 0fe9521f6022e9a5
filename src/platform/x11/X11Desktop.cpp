#include "platform/x11/X11Desktop.h"

#include <QApplication>
#include <QIcon>

#include "platform/Task.h"
#include "platform/x11/BarKeeper.h"
#include "platform/x11/FrontApplication.h"
#include "platform/x11/LoginSession.h"
#include "platform/x11/ProgramName.h"
#include "platform/x11/X11Alerts.h"
#include "platform/x11/X11Application.h"
#include "platform/x11/X11ChildProcesses.h"
#include "platform/x11/X11Defaults.h"
#include "platform/x11/X11Events.h"
#include "platform/x11/X11Files.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11Images.h"
#include "platform/x11/X11LogOutput.h"
#include "platform/x11/X11LoginItem.h"
#include "platform/x11/X11Menus.h"
#include "platform/x11/X11Panel.h"
#include "platform/x11/X11RunLoop.h"
#include "platform/x11/X11ScreenCapture.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11StatusBar.h"
#include "platform/x11/X11WindowServer.h"
#include "platform/x11/X11Windows.h"
#include "platform/x11/X11Workspace.h"

namespace nevo {

namespace {

/// Held by everybody; titles of extras come with the protocol that has them.
/// The system's packages bring the updates.
class NoUpdaters : public Updaters {
public:
    std::unique_ptr<Updater> create(UpdaterDelegate) override { return nullptr; }
};

class NoExtras : public Accessibility {
public:
    bool isTrustUserControlled() const override { return false; }
    bool isProcessTrusted() const override { return true; }
    void promptForTrust() override {}
    std::optional<std::vector<AccessibilityElement>> extrasMenuBarChildren(
        ProcessId) const override {
        return std::nullopt;
    }
};

XServer& watchingRoot(XServer& server) {
    // Properties: the window list and the active window. Structure: the monitors, and the message
    // of a new bar.
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(server.get(), server.root(), XCB_CW_EVENT_MASK, &mask);
    return server;
}

}  // namespace

/// In the order of their dependence; the last goes first.
struct X11Desktop::Parts {
    XServer& server;
    QApplication qt;
    X11Application application;
    X11LogOutput log;
    NotificationCenter notifications;
    NotificationCenter workspaceNotifications;
    EventPump pump;
    X11RunLoop loop;
    WindowNumbers numbers;
    xcb::DesktopEntries entries;
    xcb::OwnerIdentities identities;
    X11Screens screens;
    BarClient bar;
    ClientWindows clients;
    X11Defaults defaults;
    LocalMonitors monitors;
    Keyboard keyboard;
    X11Events events;
    X11HotKeys hotKeys;
    PictureWatch pictureWatch;
    X11WindowServer windows;
    X11StatusBar statusBar;
    X11Workspace workspace;
    FrontApplication frontApplication;
    LoginSession loginSession;
    NoExtras accessibility;
    X11ScreenCapture capture;
    X11Images images;
    Compositor compositor;
    PanelKeys panelKeys;
    X11Panels panels;
    X11Menus menus;
    X11Popovers popovers;
    X11Windows surfaceWindows;
    X11Alerts alerts;
    X11Files files;
    X11LoginItem loginItem;
    NoUpdaters updaters;
    X11ChildProcesses childProcesses;
    BarKeeper barKeeper;

    Parts(XServer& x, int& argc, char** argv)
        : server(watchingRoot(x)),
          qt(argc, argv),
          application(qt),
          pump(server, [this] { application.displayLost(); }),
          loop(server),
          identities(entries),
          screens(server, pump, notifications),
          bar(server, pump, numbers),
          clients(server, pump, numbers, identities),
          defaults(log, loop, notifications),
          keyboard(server, pump),
          events(server, pump, keyboard, bar, screens, monitors),
          hotKeys(server, pump, keyboard, log),
          pictureWatch(server, pump),
          windows(server, bar, clients, screens, numbers, pictureWatch),
          statusBar(server, pump, bar, loop, screens, monitors,
                    [this] { defaults.standard().flush(); }),
          workspace(bar, clients, entries),
          frontApplication(server, pump, bar, identities, workspaceNotifications, log),
          loginSession(workspaceNotifications, log),
          capture(windows),
          compositor(server, pump),
          panelKeys(server, pump, keyboard),
          panels(server, screens, monitors, numbers, compositor, panelKeys),
          menus(server, bar, images, compositor, panelKeys),
          popovers(server, bar, images, compositor),
          surfaceWindows(images, server, pump),
          loginItem(application.bundlePath()),
          barKeeper(server, bar, loop, log) {
        screens.setBar(&bar);
        workspace.frontPid = [this] { return frontApplication.pid(); };
    }
};

X11Desktop::X11Desktop(XServer& x, int& argc, char** argv) {
    // Our windows stand beside the bar's: also in a session whose other programs speak Wayland.
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication::setApplicationName(programName);
    QApplication::setDesktopFileName(applicationId);
    QApplication::setQuitOnLastWindowClosed(false);
    parts = std::make_unique<Parts>(x, argc, argv);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/app/%1.svg").arg(applicationId)));
    // Where no desktop environment has chosen a theme, the common one has the most icons.
    if (QIcon::fallbackThemeName().isEmpty()) QIcon::setFallbackThemeName("Adwaita");
}

X11Desktop::~X11Desktop() = default;

Platform X11Desktop::platform() {
    Parts& p = *parts;
    return {p.loop,     p.notifications,  p.workspaceNotifications,
            p.defaults, p.application,    p.statusBar,
            p.windows,  p.events,         p.hotKeys,
            p.screens,  p.workspace,      p.accessibility,
            p.capture,  p.images,         p.panels,
            p.menus,    p.popovers,       p.surfaceWindows,
            p.alerts,   p.files,          p.loginItem,
            p.updaters, p.childProcesses, p.log};
}

int X11Desktop::run() {
    int status = parts->application.run();
    parts->loop.drop();
    parts->loop.tasks().destroyAll();
    return status;
}

}  // namespace nevo
