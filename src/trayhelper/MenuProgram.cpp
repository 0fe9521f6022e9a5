#include "trayhelper/MenuProgram.h"

#include <fmt/format.h>
#include <xcb/xinput.h>

#include <QApplication>
#include <QIcon>
#include <QProxyStyle>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <regex>

#include "platform/x11/QtScale.h"
#include "trayhelper/IconLookup.h"
#include "trayhelper/Limits.h"
#include "trayhelper/MenuView.h"
#include "trayhelper/Picture.h"

namespace nevo::trayhelper {

namespace {

constexpr int mostMegabytes = 1024;
constexpr int exitNothingShown = 1;
/// While another program holds the pointer, since a button is down in a window of its own.
constexpr int grabMilliseconds = 50;
constexpr int mostGrabs = 100;

/// The desktop's style; but a menu that is too high scrolls, instead of covering the screen with
/// columns.
class ScrollingStyle : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override {
        if (hint == SH_Menu_Scrollable) return 1;
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
};

bool parsePixels(const std::string& text, int& pixels) {
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), pixels);
    return error == std::errc() && end == text.data() + text.size() && pixels > -65536 &&
           pixels < 65536;
}

template <class Type>
using Reply = std::unique_ptr<Type, decltype(&std::free)>;

/// Whether this program has the pointer now, or still. Qt takes any answer of the server for a yes.
bool takesPointer(QWindow& window) {
    auto* qt = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (qt == nullptr) return true;
    xcb_connection_t* c = qt->connection();
    Reply<xcb_input_xi_get_client_pointer_reply_t> pointer(
        xcb_input_xi_get_client_pointer_reply(
            c, xcb_input_xi_get_client_pointer(c, XCB_WINDOW_NONE), nullptr),
        &std::free);
    if (!pointer) return true;
    // All that Qt wants: what happens between this answer and Qt's own question isn't asked for
    // twice.
    const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS |
                                 XCB_INPUT_XI_EVENT_MASK_BUTTON_RELEASE |
                                 XCB_INPUT_XI_EVENT_MASK_MOTION | XCB_INPUT_XI_EVENT_MASK_ENTER |
                                 XCB_INPUT_XI_EVENT_MASK_LEAVE;
    auto cookie =
        xcb_input_xi_grab_device(c, static_cast<xcb_window_t>(window.winId()), XCB_CURRENT_TIME,
                                 XCB_CURSOR_NONE, pointer->deviceid, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                 XCB_INPUT_GRAB_MODE_22_ASYNC, false, 1, &events);
    Reply<xcb_input_xi_grab_device_reply_t> grab(xcb_input_xi_grab_device_reply(c, cookie, nullptr),
                                                 &std::free);
    // In the place of ours, so that Qt knows of it.
    return grab && grab->status == XCB_GRAB_STATUS_SUCCESS && window.setMouseGrabEnabled(true);
}

/// Qt asks for the pointer when it opens the menu, but only once. Without it no click beside the
/// menu would close it.
void holdPointer(QMenu& menu, int triesLeft) {
    QWindow* window = menu.windowHandle();
    if (!menu.isVisible() || window == nullptr) return;
    if (takesPointer(*window) && window->setKeyboardGrabEnabled(true)) return;
    if (triesLeft == 0) {
        menu.close();
        return;
    }
    QTimer::singleShot(grabMilliseconds, &menu,
                       [&menu, triesLeft] { holdPointer(menu, triesLeft - 1); });
}

void popUp(MenuView& menu, const MenuPlace& place) {
    Point corner{static_cast<double>(place.x), static_cast<double>(place.y)};
    Point below{corner.x, corner.y + place.height};
    menu.open(QtScale::at(corner).fromRoot(below));
    holdPointer(menu, mostGrabs);
}

int run(const QDBusConnection& bus, const MenuPlace& place) {
    MenuSource source(bus, QString::fromStdString(place.service),
                      QString::fromStdString(place.path));
    MenuView menu(source, 0, nullptr);
    bool wasShown = false;
    // The choice is told of after the menu has closed.
    QObject::connect(
        &menu, &QMenu::aboutToHide, &menu,
        [&source] { source.whenAllIsTold([] { QCoreApplication::exit(0); }); },
        Qt::QueuedConnection);
    QObject::connect(&source, &MenuSource::gone, &menu, [&] {
        if (menu.isVisible()) {
            menu.close();
        } else {
            QCoreApplication::exit(wasShown ? 0 : exitNothingShown);
        }
    });
    menu.load([&] {
        if (menu.isEmpty()) {
            QCoreApplication::exit(exitNothingShown);
        } else {
            wasShown = true;
            popUp(menu, place);
        }
    });
    return QApplication::exec();
}

/// Outside of the desktops that Qt knows it takes the theme that stands for none.
bool knowsIconTheme() { return !QIcon::themeName().isEmpty() && QIcon::themeName() != "hicolor"; }

int fail(const char* sentence) {
    std::fprintf(stderr, "nevo-menubar-helper: %s\n", sentence);
    return exitNothingShown;
}

}  // namespace

std::optional<MenuPlace> parseMenuPlace(const std::vector<std::string>& arguments,
                                        std::string& failure) {
    static const std::regex busName(":?[A-Za-z0-9_-]+(\\.[A-Za-z0-9_-]+)+");
    static const std::regex objectPath("/|(/[A-Za-z0-9_]+)+");
    constexpr std::size_t words = 6;
    if (arguments.size() != words) {
        failure = "--menu needs SERVICE PATH X Y WIDTH HEIGHT; see --help.";
        return std::nullopt;
    }
    MenuPlace place{arguments[0], arguments[1]};
    if (!std::regex_match(place.service, busName)) {
        failure = fmt::format("\"{}\" isn't a name on the bus.", place.service);
        return std::nullopt;
    }
    if (!std::regex_match(place.path, objectPath)) {
        failure = fmt::format("\"{}\" isn't the path of an object.", place.path);
        return std::nullopt;
    }
    std::array pixels{&place.x, &place.y, &place.width, &place.height};
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (parsePixels(arguments[i + 2], *pixels[i])) continue;
        failure = fmt::format("\"{}\" isn't a number of pixels.", arguments[i + 2]);
        return std::nullopt;
    }
    return place;
}

int showMenu(const MenuPlace& place) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) return fail("There is no X display (DISPLAY).");
    limitMemory(mostMegabytes);
    limitPictureMemory();
    qputenv("QT_QPA_PLATFORM", "xcb");
    // Window managers and compositors shall take it for a part of the bar.
    std::string program = "nevo-menubar";
    std::array<char*, 2> words{program.data(), nullptr};
    int count = 1;
    QApplication::setApplicationName("Nevo-menubar");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication application(count, words.data());
    if (!knowsIconTheme()) useDesktopIconTheme();
    QApplication::setStyle(new ScrollingStyle);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return fail("There is no session bus.");
    return run(bus, place);
}

}  // namespace nevo::trayhelper
