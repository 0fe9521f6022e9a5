#pragma once

#include <optional>
#include <string>

#include "platform/Images.h"

namespace nevo {

/// The toggle's icon. `name` is a brand identifier ("brand:pocket") or a system symbol's name;
/// `customData` is an image file of the user's own, empty for none, and goes first. A custom icon
/// is 18 by 18 points and keeps its colours, a brand icon is a template of 22 by 22, a symbol a
/// template of its natural size. Nothing for an unknown name; a custom icon that doesn't decode is
/// passed over.
std::optional<Image> menuBarIconImage(const Images& images, const std::string& name,
                                      const Bytes& customData);

inline constexpr const char* defaultMenuBarIconName = "brand:pocket";

}  // namespace nevo
