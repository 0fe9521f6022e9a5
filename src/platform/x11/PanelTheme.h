#pragma once

#include <QColor>
#include <QPalette>

#include "platform/Color.h"
#include "platform/Panels.h"

namespace nevo {

/// The desktop's colours for what floats beside the bar. Dark whatever the theme is, as the bar is:
/// the pictures of the items were drawn for a dark ground. Of the theme it takes the hue.
struct PanelTheme {
    /// Of text, and of template pictures without a tint.
    QColor text;
    /// Opaque; what materials are tints of.
    QColor ground;

    static PanelTheme of(const QPalette& palette);

    /// Nothing blurs what is behind a window here: so little of it shines through that a small
    /// picture can be told from it.
    QColor tint(Material material) const;
    QColor resolved(const Color& color) const;
};

}  // namespace nevo
