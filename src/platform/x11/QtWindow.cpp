#include "platform/x11/QtWindow.h"

#include <QtGui/qguiapplication_platform.h>
#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <array>
#include <cstdlib>

namespace nevo {

namespace {

/// nullptr on a platform of Qt's without X.
xcb_connection_t* connectionOfQt() {
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

void setOutline(xcb_window_t window, xcb_shape_kind_t kind, const std::optional<Outline>& outline,
                QPoint place) {
    auto* connection = connectionOfQt();
    if (connection == nullptr) return;
    if (!outline) {
        xcb_xfixes_set_window_shape_region(connection, window, kind, 0, 0, XCB_NONE);
        return;
    }
    auto region = xcb_generate_id(connection);
    xcb_xfixes_create_region(connection, region, static_cast<std::uint32_t>(outline->size()),
                             outline->data());
    xcb_xfixes_set_window_shape_region(connection, window, kind,
                                       static_cast<std::int16_t>(place.x()),
                                       static_cast<std::int16_t>(place.y()), region);
    xcb_xfixes_destroy_region(connection, region);
}

}  // namespace

void setVisibleOutline(xcb_window_t window, const std::optional<Outline>& outline, QPoint place) {
    setOutline(window, XCB_SHAPE_SK_BOUNDING, outline, place);
}

void setInputOutline(xcb_window_t window, const Outline& outline, QPoint place) {
    setOutline(window, XCB_SHAPE_SK_INPUT, outline, place);
}

void writeMargins(xcb_window_t window, xcb_atom_t property, const QMargins& margins) {
    auto* connection = connectionOfQt();
    if (connection == nullptr) return;
    std::array<int, 4> values{margins.left(), margins.right(), margins.top(), margins.bottom()};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_CARDINAL, 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
}

void waitForQt() {
    auto* connection = connectionOfQt();
    if (connection == nullptr) return;
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

void removeProperty(xcb_window_t window, xcb_atom_t property) {
    auto* connection = connectionOfQt();
    if (connection != nullptr) xcb_delete_property(connection, window, property);
}

}  // namespace nevo
