#pragma once

#include <optional>
#include <string>

#include "platform/Geometry.h"
#include "platform/Image.h"
#include "platform/UserDefaults.h"

namespace nevo {

/// Making and changing pictures (`NSImage`).
class Images {
public:
    virtual ~Images() = default;
    /// `initWithData:`; nothing when the bytes are no picture, or one too large to be held.
    virtual std::optional<Image> decode(const Bytes& data) const = 0;
    /// A picture of the program's own resources (`imageNamed:`), at its natural size; nothing when
    /// there is none.
    virtual std::optional<Image> named(const std::string& name) const = 0;
    /// `imageWithSystemSymbolName:accessibilityDescription:`, a template at its natural size;
    /// nothing for an unknown symbol.
    virtual std::optional<Image> systemSymbol(const std::string& name,
                                              const std::string& description) const = 0;
    /// The whole of `image` drawn into a new one of `size` points; keeps whether it is a template.
    virtual Image redrawn(const Image& image, Size size) const = 0;
};

/// The part of `image` inside `pixels` (top-left origin); nothing when they don't overlap
/// (`CGImageCreateWithImageInRect`). The result's size is its pixels.
std::optional<Image> cropped(const Image& image, Rect pixels);

}  // namespace nevo
