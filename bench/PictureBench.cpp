// How fast the shelf tells a coloured picture from a mask, which it does whenever an item's picture
// has changed.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "shelf/ShelfIconRenderPolicy.h"

namespace nevo {
namespace {

enum Kind : std::int64_t { coloured, monochrome };

constexpr std::uint32_t white = 0xffffffff;

/// A disc with a gradient, or one in white with a hole; clear around it.
Image discOf(int side, Kind kind) {
    auto bitmap = std::make_shared<Bitmap>();
    bitmap->width = bitmap->height = side;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            // Distances from the middle, in parts of 1000 of half a side.
            int right = (2 * x + 1 - side) * 1000 / side;
            int down = (2 * y + 1 - side) * 1000 / side;
            int squared = right * right + down * down;
            bool isInside = squared < 562'500 && (kind == coloured || squared > 160'000);
            auto gradient = static_cast<std::uint32_t>(x * 255 / side) << 16U | 0xff000040U;
            bitmap->pixels.push_back(!isInside ? 0 : kind == coloured ? gradient : white);
        }
    }
    Size size{static_cast<double>(side), static_cast<double>(side)};
    return {std::move(bitmap), size, false, {}};
}

std::int64_t pixelsIn(const benchmark::State& state) {
    return state.iterations() * state.range(0) * state.range(0);
}

void pixelAnalysis(benchmark::State& state) {
    auto kind = static_cast<Kind>(state.range(1));
    Image image = discOf(static_cast<int>(state.range(0)), kind);
    auto policy = ShelfIconRenderPolicy::preserveOriginal;
    for (auto _ : state) benchmark::DoNotOptimize(policy = renderPolicy(image));
    bool isTinted = policy == ShelfIconRenderPolicy::templateTint;
    if (isTinted != (kind == monochrome)) state.SkipWithError("the picture is taken for another");
    state.SetItemsProcessed(pixelsIn(state));
}

/// The peer: reading and writing the same picture once, as it is.
void copyPicture(benchmark::State& state) {
    Image image = discOf(static_cast<int>(state.range(0)), static_cast<Kind>(state.range(1)));
    std::vector<std::uint32_t> copy(image.bitmap->pixels.size());
    for (auto _ : state) {
        copy.assign(image.bitmap->pixels.begin(), image.bitmap->pixels.end());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    if (copy != image.bitmap->pixels) state.SkipWithError("the copy is another picture");
    state.SetItemsProcessed(pixelsIn(state));
}

void pictures(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"side", "monochrome"})->Unit(benchmark::kMicrosecond);
    benchmark->ArgsProduct({{24, 48, 512}, {coloured, monochrome}});
}

BENCHMARK(pixelAnalysis)->Apply(pictures);
BENCHMARK(copyPicture)->Apply(pictures);

}  // namespace
}  // namespace nevo
