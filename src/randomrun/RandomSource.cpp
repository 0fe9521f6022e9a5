#include "randomrun/RandomSource.h"

namespace nevo {

std::uint64_t RandomSource::next() {
    state += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = state;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31U);
}

int RandomSource::between(int least, int most) {
    return least + static_cast<int>(below(static_cast<std::size_t>(most - least) + 1));
}

}  // namespace nevo
