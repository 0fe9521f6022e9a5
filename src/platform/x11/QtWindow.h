#pragma once

#include <xcb/xcb.h>

#include <QMargins>
#include <QPoint>
#include <optional>
#include <vector>

namespace nevo {

// What is asked of a window of Qt's beyond what Qt can. All of it goes over Qt's connection, after
// what Qt has asked of the window before.

/// A part of a picture or a window, in pixels from its top left corner.
using Outline = std::vector<xcb_rectangle_t>;

/// Limits what can be seen of a window, with the outline's corner at `place`; nothing for no limit.
void setVisibleOutline(xcb_window_t window, const std::optional<Outline>& outline, QPoint place);
/// Limits where the window takes the mouse: elsewhere its events go to what lies below.
void setInputOutline(xcb_window_t window, const Outline& outline, QPoint place);

/// Writes a list of four numbers: left, right, top, bottom.
void writeMargins(xcb_window_t window, xcb_atom_t property, const QMargins& margins);
void removeProperty(xcb_window_t window, xcb_atom_t property);

/// Returns when the server has done all that went over Qt's connection: what is asked for over
/// another one comes after it.
void waitForQt();

}  // namespace nevo
