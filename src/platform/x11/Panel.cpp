#include "platform/x11/Panel.h"

#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QPainterPath>
#include <QRegion>
#include <cstdlib>
#include <memory>
#include <string>

namespace nevo {

namespace {

constexpr int cornerRadius = 8;

/// Without a compositor the corners of a translucent window are black.
bool hasCompositor() {
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) return false;
    auto* connection = x11->connection();
    const std::string name = "_NET_WM_CM_S0";
    std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(
            connection,
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr),
        &std::free);
    if (!atom) return false;
    std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom),
                                      nullptr),
        &std::free);
    return owner && owner->owner != 0;
}

}  // namespace

void stylePanel(QWidget& panel, const QString& selector) {
    bool isRounded = hasCompositor();
    if (isRounded) {
        panel.setAttribute(Qt::WA_TranslucentBackground);
        panel.setWindowFlag(Qt::FramelessWindowHint);
        panel.setWindowFlag(Qt::NoDropShadowWindowHint);
    }
    panel.setStyleSheet(
        QStringLiteral(
            "%1 { background: palette(base); border: 1px solid palette(mid); border-radius: %2px; "
            "padding: 5px; }"
            "QMenu::item { padding: 5px 24px 5px 8px; border-radius: 5px; color: palette(text); }"
            "QMenu::item:selected { background: palette(highlight); "
            "color: palette(highlighted-text); }"
            "QMenu::item:disabled { background: transparent; color: palette(mid); }"
            "QMenu::icon { padding-left: 8px; }"
            "QMenu::separator { height: 1px; background: palette(midlight); margin: 5px 8px; }")
            .arg(selector)
            .arg(isRounded ? cornerRadius : 0));
}

}  // namespace nevo
