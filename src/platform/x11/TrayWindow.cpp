#include "platform/x11/TrayWindow.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "platform/menubar/BarProtocol.h"
#include "platform/x11/ProgramName.h"
#include "platform/xcb/Properties.h"

namespace nevo {

namespace {
namespace bar = barprotocol;
constexpr std::uint32_t requestDock = 0;
constexpr std::uint32_t xembedMapped = 1;
constexpr std::uint32_t xembedVersion = 1;

xcb_visualid_t argbVisual(const xcb_screen_t& screen) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        if (depth.data->depth != 32) continue;
        for (auto it = xcb_depth_visuals_iterator(depth.data); it.rem > 0;
             xcb_visualtype_next(&it)) {
            if (it.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR && it.data->red_mask == 0xff0000) {
                return it.data->visual_id;
            }
        }
    }
    return 0;
}
}  // namespace

TrayWindow::TrayWindow(XServer& x, BarClient& client) : server(x), bar(client) { create(); }

TrayWindow::~TrayWindow() {
    if (window != 0) xcb_destroy_window(server.get(), window);
    if (colormap != 0) xcb_free_colormap(server.get(), colormap);
    server.flush();
}

void TrayWindow::create() {
    auto* c = server.get();
    if (visual == 0) {
        visual = argbVisual(server.connection().screen());
        colormap = xcb_generate_id(c);
        xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, colormap, server.root(), visual);
    }
    window = xcb_generate_id(c);
    // A window of another depth than its parent needs a border and a colormap of its own.
    const std::uint32_t values[] = {0, 0,
                                    XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS |
                                        XCB_EVENT_MASK_BUTTON_RELEASE |
                                        XCB_EVENT_MASK_POINTER_MOTION,
                                    colormap};
    xcb_create_window(
        c, 32, window, server.root(), -100, -100, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values);
    currentWidth = currentHeight = 1;
    writtenLength.reset();
    askedWidth.reset();
    isEmbedded = false;
    writeProperties();
}

void TrayWindow::writeProperties() {
    auto* c = server.get();
    static constexpr char windowClass[] = "nevo\0Nevo";
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        sizeof windowClass, windowClass);
    xcb::writeText(c, window, server.atom("_NET_WM_NAME"), server.atom("UTF8_STRING"), programName);
    xcb::writeText(c, window, server.atom(bar::statusItemAppId), server.atom("UTF8_STRING"),
                   applicationId);
    xcb::writeNumber(c, window, server.atom("_NET_WM_PID"), static_cast<std::uint32_t>(getpid()));
    setName(itemName);
    setLength(itemLength, widthOfContent);
    setMapped(isMapped);
}

void TrayWindow::setLength(double length, int contentWidth) {
    itemLength = length;
    widthOfContent = std::max(1, contentWidth);
    auto thousandths = static_cast<std::int32_t>(std::lround(std::clamp(length, -1.0, 1e6) * 1000));
    const auto value = static_cast<std::uint32_t>(thousandths);
    if (std::exchange(writtenLength, value) != value) {
        xcb::writeNumbers(server.get(), window, server.atom(bar::statusItemLength),
                          XCB_ATOM_INTEGER, std::span(&value, 1));
    }
    const auto asked = static_cast<std::uint32_t>(widthOfContent);
    if (length >= 0 || std::exchange(askedWidth, asked) == asked) return;
    xcb_configure_window(server.get(), window, XCB_CONFIG_WINDOW_WIDTH, &asked);
}

void TrayWindow::setName(const std::string& name) {
    itemName = name;
    // Without a name the bar numbers the item.
    if (name.empty()) return;
    xcb::writeText(server.get(), window, server.atom(bar::statusItemName),
                   server.atom("UTF8_STRING"), name);
}

void TrayWindow::setMapped(bool mapped) {
    isMapped = mapped;
    const std::uint32_t info[] = {xembedVersion, mapped ? xembedMapped : 0};
    auto atom = server.atom("_XEMBED_INFO");
    xcb::writeNumbers(server.get(), window, atom, atom, info);
}

void TrayWindow::dock() {
    if (isEmbedded || bar.control() == 0) return;
    if (window == 0) create();
    server.sendMessage(bar.control(), bar.control(), "_NET_SYSTEM_TRAY_OPCODE",
                       {XCB_CURRENT_TIME, requestDock, window, 0, 0});
    server.flush();
}

void TrayWindow::show(const QImage& picture) {
    if (window == 0 || picture.isNull()) return;
    auto* c = server.get();
    xcb_pixmap_t pixmap = xcb_generate_id(c);
    xcb_gcontext_t gc = xcb_generate_id(c);
    auto width = static_cast<std::uint16_t>(picture.width());
    auto height = static_cast<std::uint16_t>(picture.height());
    xcb_create_pixmap(c, 32, pixmap, window, width, height);
    xcb_create_gc(c, gc, pixmap, 0, nullptr);
    xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, width, height, 0, 0, 0, 32,
                  static_cast<std::uint32_t>(picture.sizeInBytes()), picture.constBits());
    // As the background the server itself paints it wherever the window is uncovered.
    xcb_change_window_attributes(c, window, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_clear_area(c, 0, window, 0, 0, 0, 0);
    xcb_free_gc(c, gc);
    xcb_free_pixmap(c, pixmap);
    server.flush();
}

void TrayWindow::becomeEmbedded(bool embedded) {
    if (embedded) {
        isEmbedded = true;
        // What was asked of the window before counts for nothing with the bar.
        askedWidth.reset();
        setLength(itemLength, widthOfContent);
    } else {
        // The bar has gone, and the server has put the window on the desktop, where a window
        // manager takes it for a program's. A new one waits for the next bar.
        xcb_destroy_window(server.get(), window);
        create();
    }
    server.flush();
}

bool TrayWindow::handle(const xcb_generic_event_t& event, const std::function<void()>& resized) {
    switch (event.response_type & 0x7f) {
        case XCB_CONFIGURE_NOTIFY: {
            const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
            if (change.window != window) return false;
            bool isSame = currentWidth == change.width && currentHeight == change.height;
            currentWidth = change.width;
            currentHeight = change.height;
            if (!isSame) resized();
            return true;
        }
        case XCB_REPARENT_NOTIFY: {
            const auto& change = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
            if (change.window != window) return false;
            becomeEmbedded(change.parent != server.root());
            return true;
        }
        case XCB_DESTROY_NOTIFY: {
            const auto& change = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
            if (change.window != window) return false;
            create();
            return true;
        }
        default:
            return false;
    }
}

}  // namespace nevo
