// For libFuzzer: FUZZ_TARGET is the name of one target.

#include "statusnotifier/fuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    nevo::statusnotifier::FUZZ_TARGET({data, size});
    return 0;
}
