#pragma once

#include "platform/Images.h"
#include "platform/sim/SimFaults.h"

namespace nevo {

/// Pictures without pixels worth looking at: each has its size and its source, and one colour.
///
/// Every symbol and resource exists, unless a fault says otherwise. Bytes that begin as a PNG file
/// does are a picture of the size that its header tells.
class SimImages : public Images {
public:
    explicit SimImages(SimFaults& scripted) : faults(scripted) {}

    std::optional<Image> decode(const Bytes& data) const override;
    std::optional<Image> named(const std::string& name) const override;
    std::optional<Image> systemSymbol(const std::string& name,
                                      const std::string& description) const override;
    Image redrawn(const Image& image, Size size) const override;

private:
    SimFaults& faults;
};

/// A grey picture of that size, at least one pixel each way.
Image simImage(Size size, bool isTemplate, const std::string& source);

}  // namespace nevo
