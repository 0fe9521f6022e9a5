#pragma once

#include <cstdint>
#include <span>

namespace nevo::statusnotifier {

// What reads bytes that other programs made up. Each takes any input, and ends the process where
// something that has to hold doesn't. One file of corpus/NAME is one input.

using FuzzTarget = void (*)(std::span<const std::uint8_t> input);

/// A stream from the bus, as the gate gets it: in one piece, and in pieces.
void fuzzStream(std::span<const std::uint8_t> input);
/// The first byte chooses what an item is asked for, the rest is the body of its answer.
void fuzzProperties(std::span<const std::uint8_t> input);
/// A text that is shown to people.
void fuzzText(std::span<const std::uint8_t> input);

}  // namespace nevo::statusnotifier
