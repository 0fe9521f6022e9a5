#include "menubar/Display.h"

#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/shape.h>
#include <xcb/xcb_renderutil.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <array>

#include "platform/menubar/BarProtocol.h"

namespace nevo::menubar {

using xcb::Reply;

namespace {
namespace words = barprotocol;

constexpr std::array atomNames{words::version,
                               words::barPid,
                               words::items,
                               words::barWindow,
                               words::geometry,
                               words::itemPid,
                               words::itemAppId,
                               words::itemName,
                               words::itemOwnerName,
                               words::itemKind,
                               words::itemClient,
                               words::itemSlot,
                               words::itemOpacity,
                               words::setOpacity,
                               words::moveItem,
                               words::drag,
                               words::statusItemLength,
                               words::statusItemName,
                               words::statusItemAppId,
                               "UTF8_STRING",
                               "MANAGER",
                               "_XEMBED",
                               "_XEMBED_INFO",
                               "_NET_SYSTEM_TRAY_OPCODE",
                               "_NET_SYSTEM_TRAY_VISUAL",
                               "_NET_SYSTEM_TRAY_ORIENTATION",
                               "_NET_WM_NAME",
                               "_NET_WM_PID",
                               "_NET_WM_WINDOW_TYPE",
                               "_NET_WM_WINDOW_TYPE_DOCK",
                               "_NET_WM_STATE",
                               "_NET_WM_STATE_FULLSCREEN",
                               "_NET_WM_STRUT",
                               "_NET_WM_STRUT_PARTIAL",
                               "_NET_CLIENT_LIST",
                               "_NET_ACTIVE_WINDOW",
                               "XTEST Device"};

bool isPresent(xcb_connection_t* connection, xcb_extension_t* extension) {
    auto data = xcb_get_extension_data(connection, extension);
    return data != nullptr && data->present != 0;
}
}  // namespace

Display::Display(std::unique_ptr<xcb::Connection> opened) : connection(std::move(opened)) {}

std::unique_ptr<Display> Display::open(std::string& failure) {
    auto connection = xcb::Connection::open(failure);
    if (!connection) return nullptr;
    std::unique_ptr<Display> display(new Display(std::move(connection)));
    if (!display->setUpExtensions(failure)) return nullptr;
    return display;
}

bool Display::setUpExtensions(std::string& failure) {
    auto c = get();
    for (auto extension : {&xcb_composite_id, &xcb_damage_id, &xcb_render_id, &xcb_xfixes_id,
                           &xcb_shape_id, &xcb_randr_id, &xcb_input_id}) {
        xcb_prefetch_extension_data(c, extension);
    }
    atoms = std::make_unique<xcb::Atoms>(c, atomNames);
    for (auto [extension, name] :
         {std::pair{&xcb_composite_id, "Composite"}, std::pair{&xcb_damage_id, "Damage"},
          std::pair{&xcb_render_id, "Render"}, std::pair{&xcb_xfixes_id, "XFixes"},
          std::pair{&xcb_shape_id, "Shape"}, std::pair{&xcb_randr_id, "RandR"}}) {
        if (isPresent(c, extension)) continue;
        failure = std::string("This X server lacks the extension ") + name + ".";
        return false;
    }
    // Each extension wants its version said before anything else is asked of it.
    auto composite = xcb_composite_query_version(c, 0, 4);
    auto damage = xcb_damage_query_version(c, 1, 1);
    auto fixes = xcb_xfixes_query_version(c, 5, 0);
    auto randr = xcb_randr_query_version(c, 1, 5);
    std::free(xcb_composite_query_version_reply(c, composite, nullptr));
    std::free(xcb_damage_query_version_reply(c, damage, nullptr));
    std::free(xcb_xfixes_query_version_reply(c, fixes, nullptr));
    std::free(xcb_randr_query_version_reply(c, randr, nullptr));
    damageBase = xcb_get_extension_data(c, &xcb_damage_id)->first_event;
    randrBase = xcb_get_extension_data(c, &xcb_randr_id)->first_event;
    if (isPresent(c, &xcb_input_id)) {
        Reply<xcb_input_xi_query_version_reply_t> input(
            xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr));
        bool enough = input && (input->major_version > 2 || input->minor_version >= 2);
        if (enough) xinputOpcode = xcb_get_extension_data(c, &xcb_input_id)->major_opcode;
    }
    if (!findAlphaVisual()) {
        failure = "This X server has no visual with transparency, which status items need.";
        return false;
    }
    return true;
}

/// A server offers many visuals of depth 32; only one whose picture format has an alpha mask gives
/// transparency.
bool Display::findAlphaVisual() {
    auto depths = xcb_screen_allowed_depths_iterator(&connection->screen());
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        if (depths.data->depth != 32) continue;
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem > 0; xcb_visualtype_next(&visuals)) {
            if (visuals.data->_class != XCB_VISUAL_CLASS_TRUE_COLOR) continue;
            auto formats = xcb_render_util_query_formats(get());
            auto format = xcb_render_util_find_visual_format(formats, visuals.data->visual_id);
            auto standard =
                xcb_render_util_find_standard_format(formats, XCB_PICT_STANDARD_ARGB_32);
            if (format == nullptr || standard == nullptr || format->format != standard->id)
                continue;
            argbVisual = visuals.data->visual_id;
            argbFormat = format->format;
            return true;
        }
    }
    return false;
}

xcb_render_pictformat_t Display::formatOfVisual(xcb_visualid_t visual) const {
    auto found = xcb_render_util_find_visual_format(xcb_render_util_query_formats(get()), visual);
    return found == nullptr ? 0 : found->format;
}

}  // namespace nevo::menubar
