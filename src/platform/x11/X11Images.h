#pragma once

#include <map>
#include <string>

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

private:
    /// The drawing in the file of that name within this program, if there is one.
    std::optional<Image> drawing(const std::string& path, const std::string& source) const;

    /// By path. They never change, and each look at the row takes one for every item that has no
    /// picture of its own.
    mutable std::map<std::string, Image> drawings;
};

}  // namespace nevo
