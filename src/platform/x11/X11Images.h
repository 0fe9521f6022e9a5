#pragma once

#include "platform/Images.h"

namespace nevo {

/// Pictures by Qt. The program's own are drawings that are part of it.
class X11Images : public Images {
public:
    X11Images();

    std::optional<Image> decode(const Bytes& data) const override;
    std::optional<Image> named(const std::string& name) const override;
    std::optional<Image> systemSymbol(const std::string& name,
                                      const std::string& description) const override;
    Image redrawn(const Image& image, Size size) const override;
};

}  // namespace nevo
