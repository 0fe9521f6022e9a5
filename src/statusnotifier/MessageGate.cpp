#include "statusnotifier/MessageGate.h"

#include <algorithm>

namespace nevo::statusnotifier {

namespace {
constexpr std::size_t mostHandshakeBytes = 16 * 1024;
/// The protocol's own limits, in bytes.
constexpr std::uint64_t largestMessage = 128U << 20U;
constexpr std::size_t bodyLengthAt = 4;
constexpr std::size_t fieldsLengthAt = 12;

bool beginsMessage(std::uint8_t byte) { return byte == 'l' || byte == 'B'; }

std::uint64_t numberAt(std::span<const std::uint8_t> bytes, std::size_t place, bool isLittle) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        number = number << 8U | bytes[isLittle ? place + 3 - i : place + i];
    }
    return number;
}
}  // namespace

bool MessageGate::pass(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out) {
    while (!bytes.empty() && state != State::broken) {
        std::size_t taken = 0;
        if (state == State::handshake) {
            taken = takeHandshake(bytes, out);
        } else if (state == State::header) {
            taken = takeHeader(bytes, out);
        } else {
            taken = std::min(bytesLeft, bytes.size());
            if (state == State::passing)
                out.insert(out.end(), bytes.begin(),
                           bytes.begin() + static_cast<std::ptrdiff_t>(taken));
            bytesLeft -= taken;
            if (bytesLeft == 0) state = State::header;
        }
        bytes = bytes.subspan(taken);
    }
    return state != State::broken;
}

/// Lines of text, until the first byte of a line is that of a message.
std::size_t MessageGate::takeHandshake(std::span<const std::uint8_t> bytes,
                                       std::vector<std::uint8_t>& out) {
    if (isAtLineStart && beginsMessage(bytes.front())) {
        state = State::header;
        return 0;
    }
    auto end = std::find(bytes.begin(), bytes.end(), '\n');
    isAtLineStart = end != bytes.end();
    if (isAtLineStart) ++end;
    out.insert(out.end(), bytes.begin(), end);
    auto taken = static_cast<std::size_t>(end - bytes.begin());
    handshakeBytes += taken;
    if (handshakeBytes > mostHandshakeBytes) state = State::broken;
    return taken;
}

std::size_t MessageGate::takeHeader(std::span<const std::uint8_t> bytes,
                                    std::vector<std::uint8_t>& out) {
    std::size_t taken = std::min(headerSize - headerBytes, bytes.size());
    std::copy_n(bytes.begin(), taken, header.begin() + static_cast<std::ptrdiff_t>(headerBytes));
    headerBytes += taken;
    if (headerBytes == headerSize) beginMessage(out);
    return taken;
}

void MessageGate::beginMessage(std::vector<std::uint8_t>& out) {
    headerBytes = 0;
    if (!beginsMessage(header[0])) {
        state = State::broken;
        return;
    }
    bool isLittle = header[0] == 'l';
    std::uint64_t fields = numberAt(header, fieldsLengthAt, isLittle);
    // The fields are padded to a multiple of 8, and the body follows.
    std::uint64_t rest = (fields + 7) / 8 * 8 + numberAt(header, bodyLengthAt, isLittle);
    if (headerSize + rest > largestMessage) {
        state = State::broken;
        return;
    }
    bool passes = headerSize + rest <= most;
    if (passes) {
        out.insert(out.end(), header.begin(), header.end());
    } else {
        ++droppedMessages;
    }
    bytesLeft = rest;
    state = rest == 0 ? State::header : passes ? State::passing : State::dropping;
}

}  // namespace nevo::statusnotifier
