#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace nevo::statusnotifier {

/// Lets the stream that comes from the bus pass, but for messages above a size: any program may
/// send one of 128 megabytes, and a library would hold it in memory before anybody could refuse it.
/// Who waits for an answer that was too large hears nothing, as from a program that doesn't answer.
class MessageGate {
public:
    explicit MessageGate(std::size_t mostBytesOfAMessage) : most(mostBytesOfAMessage) {}

    /// Appends to `out` what passes of `bytes`, the next of the stream. False when they belong to
    /// no D-Bus stream; nothing passes any more then.
    bool pass(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out);
    /// How many messages were too large.
    std::size_t dropped() const { return droppedMessages; }

private:
    enum class State { handshake, header, passing, dropping, broken };
    static constexpr std::size_t headerSize = 16;

    std::size_t takeHandshake(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out);
    std::size_t takeHeader(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out);
    void beginMessage(std::vector<std::uint8_t>& out);

    std::size_t most;
    State state = State::handshake;
    bool isAtLineStart = true;
    std::size_t handshakeBytes = 0;
    std::array<std::uint8_t, headerSize> header{};
    std::size_t headerBytes = 0;
    /// Of the message under way.
    std::size_t bytesLeft = 0;
    std::size_t droppedMessages = 0;
};

}  // namespace nevo::statusnotifier
