#pragma once

#include "platform/x11/ControlGroup.h"

namespace nevo {

/// Draws a tree of controls on a page, and keeps what stays of one tree in the next: widgets, the
/// place of the keyboard, scrolling.
class ControlRenderer {
public:
    /// `page` outlives this.
    ControlRenderer(PageArea& page, const Images& pictures);

    void show(Control content);
    /// Where the keyboard begins.
    void focusFirst();
    /// Font, palette or style have changed.
    void refresh();

private:
    /// Puts Tab in the order of the tree, and its place back to where it was.
    void keepFocus(QWidget* focused, const QString& name);

    PageArea& area;
    const Images& images;
    std::unique_ptr<ControlView> root;
};

}  // namespace nevo
