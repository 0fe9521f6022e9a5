#include "shelf/ShelfLayout.h"

#include <algorithm>
#include <cmath>

namespace nevo {

namespace {

/// From one size to the next smaller one.
constexpr double shrinkStep = 0.95;
/// Nobody could hit what is smaller.
constexpr double smallestScale = 0.1;

struct Measures {
    std::vector<double> widths;
    ShelfBarStyleConfiguration style;
};

Measures scaledBy(double scale, const std::vector<double>& widths,
                  const ShelfBarStyleConfiguration& style, double widest) {
    Measures made{widths, style};
    for (double& width : made.widths) width = std::min(width * scale, widest);
    made.style.itemHeight *= scale;
    made.style.spacing *= scale;
    return made;
}

/// The index of the first slot of each row, where a row is at most `width` wide without its
/// padding.
std::vector<std::size_t> rowStarts(const Measures& of, double width) {
    std::vector<std::size_t> starts;
    double end = 0;
    for (std::size_t i = 0; i < of.widths.size(); ++i) {
        end += of.style.spacing + of.widths[i];
        if (!starts.empty() && end <= width) continue;
        starts.push_back(i);
        end = of.widths[i];
    }
    return starts;
}

/// The smallest whole width that gives no more rows than `widest` does.
double balancedWidth(const Measures& of, double widest) {
    std::size_t rows = rowStarts(of, widest).size();
    double tooNarrow = 0;
    double enough = std::floor(widest);
    while (enough - tooNarrow > 1) {
        double middle = std::floor((tooNarrow + enough) / 2);
        (rowStarts(of, middle).size() > rows ? tooNarrow : enough) = middle;
    }
    return enough;
}

double heightOf(std::size_t rows, const ShelfBarStyleConfiguration& style) {
    auto count = static_cast<double>(rows);
    return count * (style.itemHeight + style.spacing) - style.spacing + 2 * style.verticalPadding;
}

/// With rows that begin at `starts`; as wide as the longest.
ShelfLayout place(const Measures& of, const std::vector<std::size_t>& starts) {
    const ShelfBarStyleConfiguration& style = of.style;
    ShelfLayout layout;
    layout.size.height = heightOf(starts.size(), style);
    double y = layout.size.height - style.verticalPadding;
    auto next = starts.begin();
    double x = 0;
    for (std::size_t i = 0; i < of.widths.size(); ++i) {
        if (next != starts.end() && *next == i) {
            if (next != starts.begin()) y -= style.spacing;
            y -= style.itemHeight;
            x = style.horizontalPadding;
            ++next;
        }
        layout.slots.push_back({x, y, of.widths[i], style.itemHeight});
        x += of.widths[i] + style.spacing;
        layout.size.width =
            std::max(layout.size.width, x - style.spacing + style.horizontalPadding);
    }
    return layout;
}

}  // namespace

ShelfLayout layOutShelf(const std::vector<double>& widths, double oneRow,
                        const ShelfBarStyleConfiguration& style, Size room) {
    double widest = room.width - 2 * style.horizontalPadding;
    if (oneRow <= room.width) {
        ShelfLayout layout = place({widths, style}, {0});
        layout.size.width = oneRow;
        return layout;
    }
    double scale = 1;
    Measures made = scaledBy(scale, widths, style, widest);
    while (heightOf(rowStarts(made, widest).size(), made.style) > room.height &&
           scale > smallestScale) {
        scale *= shrinkStep;
        made = scaledBy(scale, widths, style, widest);
    }
    return place(made, rowStarts(made, balancedWidth(made, widest)));
}

}  // namespace nevo
