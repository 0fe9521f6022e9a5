#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "platform/Geometry.h"
#include "platform/xcb/Connection.h"

namespace nevo::desktoptest {

/// What the screen showed at a moment, in pixels from the top left.
class Picture {
public:
    /// The whole screen; empty when the server doesn't answer.
    static Picture ofScreen(const xcb::Connection& server);

    /// The part inside of `area`, row by row.
    std::vector<std::uint32_t> pixels(const Rect& area) const;
    /// Whether that part is all of one colour in each row, as an empty bar is.
    bool isEmptyBar(const Rect& area) const;
    void save(const std::filesystem::path& pngFile) const;

private:
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> content;
};

}  // namespace nevo::desktoptest
