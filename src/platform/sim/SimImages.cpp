#include "platform/sim/SimImages.h"

#include <array>
#include <cmath>

namespace nevo {

namespace {
constexpr std::uint32_t grey = 0xFF808080;
constexpr Size symbolSize{18, 16};
constexpr Size resourceSize{18, 18};
/// A picture with a longer side can't be held.
constexpr std::uint32_t maxSide = 4096;

std::uint32_t bigEndian(const Bytes& data, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i) value = value << 8U | data[i];
    return value;
}
}  // namespace

Image simImage(Size size, bool isTemplate, const std::string& source) {
    auto bitmap = std::make_shared<Bitmap>();
    bitmap->width = std::max(1, static_cast<int>(std::lround(size.width)));
    bitmap->height = std::max(1, static_cast<int>(std::lround(size.height)));
    bitmap->pixels.assign(
        static_cast<std::size_t>(bitmap->width) * static_cast<std::size_t>(bitmap->height), grey);
    return Image{std::move(bitmap), size, isTemplate, source};
}

std::optional<Image> SimImages::decode(const Bytes& data) const {
    constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    constexpr std::size_t widthAt = 16;
    constexpr std::size_t heightAt = 20;
    if (faults.strikes(SimOperation::imageDecode) || data.size() < heightAt + 4) {
        return std::nullopt;
    }
    if (!std::equal(signature.begin(), signature.end(), data.begin())) return std::nullopt;
    std::uint32_t width = bigEndian(data, widthAt);
    std::uint32_t height = bigEndian(data, heightAt);
    bool holdable = width > 0 && height > 0 && width <= maxSide && height <= maxSide;
    if (!holdable) return std::nullopt;
    return simImage({static_cast<double>(width), static_cast<double>(height)}, false, "data");
}

std::optional<Image> SimImages::named(const std::string& name) const {
    if (faults.strikes(SimOperation::imageNamed) || name.empty()) return std::nullopt;
    return simImage(resourceSize, false, "resource:" + name);
}

std::optional<Image> SimImages::systemSymbol(const std::string& name, const std::string&) const {
    if (faults.strikes(SimOperation::systemSymbol) || name.empty()) return std::nullopt;
    return simImage(symbolSize, true, "symbol:" + name);
}

Image SimImages::redrawn(const Image& image, Size size) const {
    return simImage(size, image.isTemplate, image.source);
}

}  // namespace nevo
