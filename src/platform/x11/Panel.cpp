#include "platform/x11/Panel.h"

namespace nevo {

namespace {

constexpr int cornerRadius = 8;

}  // namespace

void stylePanel(QWidget& panel, const QString& selector, bool isRounded) {
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
