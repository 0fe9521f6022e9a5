#pragma once

#include <QImage>
#include <vector>

#include "platform/Panels.h"
#include "platform/x11/PanelTheme.h"

namespace nevo {

/// Points to pixels, `scale` of them to a point.
Rect scaled(const Rect& frame, double scale);
std::vector<PanelView> scaled(std::vector<PanelView> views, double scale);

/// Draws views, the first at the back, on `background` into a picture of `size`; a pixel is a
/// point. Every view's edges are put on whole pixels. Nothing of a view is drawn outside of the
/// picture.
QImage paintedViews(const std::vector<PanelView>& views, const Color& background, QSize size,
                    const PanelTheme& theme);

/// The part of the picture that views with a ground of their own take up, whatever shines through
/// it: what the panel's shadow is thrown by.
QImage shapeOfViews(const std::vector<PanelView>& views, const Color& background, QSize size);

}  // namespace nevo
