#include "statusnotifier/fuzzTargets.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "statusnotifier/ItemProperties.h"
#include "statusnotifier/MessageGate.h"

namespace nevo::statusnotifier {

namespace {
using Bytes = std::vector<std::uint8_t>;

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "It doesn't hold that %s.\n", what);
    std::abort();
}

void append(Bytes& bytes, std::uint32_t number) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
    }
}

void pad(Bytes& bytes) {
    while (bytes.size() % 8 != 0) bytes.push_back(0);
}

/// A field of a message's header: a text of type `type`, one letter.
void appendField(Bytes& bytes, std::uint8_t code, char type, const std::string& text) {
    pad(bytes);
    bytes.insert(bytes.end(), {code, 1, static_cast<std::uint8_t>(type), 0});
    if (type == 'g') {
        bytes.push_back(static_cast<std::uint8_t>(text.size()));
    } else {
        append(bytes, static_cast<std::uint32_t>(text.size()));
    }
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
}

/// A signal whose body is of `signature`.
Bytes signalOf(const std::string& signature, std::span<const std::uint8_t> body) {
    constexpr std::uint8_t signal = 4;
    constexpr std::size_t fieldsAt = 12;
    Bytes bytes{'l', signal, 0, 1};
    append(bytes, static_cast<std::uint32_t>(body.size()));
    append(bytes, 1);
    append(bytes, 0);
    std::size_t begin = bytes.size();
    appendField(bytes, 1, 'o', "/a");
    appendField(bytes, 2, 's', "a.b");
    appendField(bytes, 3, 's', "C");
    appendField(bytes, 8, 'g', signature);
    auto length = static_cast<std::uint32_t>(bytes.size() - begin);
    for (unsigned i = 0; i < 4; ++i) {
        bytes[fieldsAt + i] = static_cast<std::uint8_t>(length >> (8 * i));
    }
    pad(bytes);
    bytes.insert(bytes.end(), body.begin(), body.end());
    return bytes;
}

constexpr int side = 22;

void expectSound(const ItemProperties& properties) {
    for (const ItemIcon* icon :
         {&properties.icon, &properties.attentionIcon, &properties.overlayIcon}) {
        const Picture& picture = icon->picture;
        require(picture.width <= side && picture.height <= side, "a picture has its size at most");
        require(picture.pixels.size() == static_cast<std::size_t>(picture.width) *
                                             static_cast<std::size_t>(picture.height),
                "a picture has all its pixels");
        for (std::uint32_t pixel : picture.pixels) {
            require((pixel & 0xFFU) <= pixel >> 24U, "colours are premultiplied");
        }
    }
}

int onMessage(sd_bus_message* message, void* name, sd_bus_error*) {
    ItemProperties properties;
    const char* property = static_cast<const char*>(name);
    if (property == nullptr) {
        readAllProperties(message, side, properties);
    } else {
        readProperty(message, property, side, properties);
    }
    expectSound(properties);
    return 1;
}

constexpr std::array<const char*, 10> names{nullptr,    "IconPixmap", "ToolTip", "Title",
                                            "Status",   "Menu",       "Id",      "ItemIsMenu",
                                            "IconName", "Unknown"};
}  // namespace

void fuzzStream(std::span<const std::uint8_t> input) {
    constexpr std::size_t most = 4096;
    MessageGate whole(most);
    Bytes atOnce;
    bool good = whole.pass(input, atOnce);

    MessageGate pieces(most);
    Bytes piecemeal;
    bool goodPieces = true;
    for (std::size_t i = 0; i < input.size();) {
        std::size_t size = std::min<std::size_t>(1 + i % 7, input.size() - i);
        goodPieces = pieces.pass(input.subspan(i, size), piecemeal);
        i += size;
    }
    require(atOnce.size() <= input.size(), "nothing is added");
    if (!input.empty()) require(good == goodPieces, "a stream is good or not however it is cut");
    require(atOnce == piecemeal, "the same passes however the stream is cut");
    require(whole.dropped() == pieces.dropped(), "as much is dropped however the stream is cut");
}

void fuzzProperties(std::span<const std::uint8_t> input) {
    if (input.empty()) return;
    const char* name = names[input.front() % names.size()];
    Bytes message = signalOf(name == nullptr ? "a{sv}" : "v", input.subspan(1));
    const std::string greeting = "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\n";

    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return;
    sd_bus* made = nullptr;
    sd_bus_new(&made);
    BusHandle bus(made);
    sd_bus_set_fd(made, ends[0], ends[0]);
    sd_bus_negotiate_fds(made, 0);
    sd_bus_add_filter(made, nullptr, onMessage, const_cast<char*>(name));
    sd_bus_start(made);
    auto send = [&](const void* bytes, std::size_t size) {
        [[maybe_unused]] auto sent = ::send(ends[1], bytes, size, MSG_NOSIGNAL);
    };
    auto process = [&] {
        while (sd_bus_process(made, nullptr) > 0) {
        }
    };
    // A bus says nothing before the greeting has been taken in.
    send(greeting.data(), greeting.size());
    process();
    require(sd_bus_is_ready(made) > 0, "the library takes it for a bus that has answered");
    send(message.data(), message.size());
    process();
    bus.reset();
    ::close(ends[1]);
}

void fuzzText(std::span<const std::uint8_t> input) {
    std::string text(input.begin(), input.end());
    constexpr std::size_t most = 40;
    std::string plain = plainText(text, most);
    require(plain.size() <= most, "a text is no longer than asked for");
    require(std::none_of(plain.begin(), plain.end(),
                         [](char each) { return (each >= 0 && each < ' ') || each == 0x7F; }),
            "a text has no control characters");
}

}  // namespace nevo::statusnotifier
