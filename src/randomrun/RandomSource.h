#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace nevo {

/// Random numbers by a fixed algorithm (splitmix64): one seed, the same numbers with every compiler
/// and library.
class RandomSource {
public:
    explicit RandomSource(std::uint64_t seed) : state(seed) {}

    std::uint64_t next();
    /// 0 to `count` - 1; `count` is above 0.
    std::size_t below(std::size_t count) { return static_cast<std::size_t>(next() % count); }
    int between(int least, int most);
    bool chance(int percent) { return between(1, 100) <= percent; }
    /// One of `choices`, of which there is at least one.
    template <typename T>
    const T& oneOf(const std::vector<T>& choices) {
        return choices[below(choices.size())];
    }
    const char* oneOf(std::initializer_list<const char*> choices) {
        return *(choices.begin() + below(choices.size()));
    }

private:
    std::uint64_t state;
};

}  // namespace nevo
