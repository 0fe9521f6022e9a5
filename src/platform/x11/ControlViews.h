#pragma once

#include <memory>

#include "platform/x11/ControlView.h"

namespace nevo {

// Views by the family of their kind; each of these takes the kinds that its name says.

/// Columns, rows, sections, tabs, cards.
std::unique_ptr<ControlView> makeGroupView(const Control& control, const Images& images);
/// Texts, symbols, images.
std::unique_ptr<ControlView> makeSeenView(const Control& control, const Images& images);
/// Buttons, links, colour wells, drop zones.
std::unique_ptr<ControlView> makeButtonView(const Control& control, const Images& images);
/// Toggles, pickers, radio groups, sliders, lists.
std::unique_ptr<ControlView> makeChoiceView(const Control& control, const Images& images);
/// Lists whose rows can be put into another order.
std::unique_ptr<ControlView> makeOrderListView(const Images& images);
/// Places that take a file.
std::unique_ptr<ControlView> makeDropZoneView(const Images& images);

}  // namespace nevo
