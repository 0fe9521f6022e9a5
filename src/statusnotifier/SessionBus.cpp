#include "statusnotifier/SessionBus.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <span>
#include <utility>

namespace nevo::statusnotifier {

namespace {
/// A row of icons in every size that a sensible program sends.
constexpr std::size_t largestMessage = 8U << 20U;
constexpr std::size_t chunk = 64 * 1024;
constexpr int messagesPerPass = 200;
constexpr int chunksPerPass = 16;
/// Long: a slow program's answer is still good, and a call that waits costs next to nothing.
constexpr std::uint64_t answerTime = 60'000'000;

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

/// The bytes that "%2f" and the like stand for.
std::string unescaped(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            result += static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

/// The value of `key` in an address such as "unix:path=/run/user/1000/bus,guid=1234".
std::string valueIn(const std::string& address, const std::string& key) {
    for (std::size_t begin = address.find(':'); begin < address.size();) {
        ++begin;
        std::size_t end = std::min(address.find(',', begin), address.size());
        std::string entry = address.substr(begin, end - begin);
        if (entry.starts_with(key + "=")) return unescaped(entry.substr(key.size() + 1));
        begin = end;
    }
    return {};
}

/// The socket's name as the kernel has it, an abstract one with a leading zero byte; empty when the
/// address has no socket of this machine.
std::string socketName() {
    std::string addresses = environment("DBUS_SESSION_BUS_ADDRESS");
    std::string runtime = environment("XDG_RUNTIME_DIR");
    if (addresses.empty()) return runtime.empty() ? std::string() : runtime + "/bus";
    for (std::size_t begin = 0; begin < addresses.size();) {
        std::size_t end = std::min(addresses.find(';', begin), addresses.size());
        std::string address = addresses.substr(begin, end - begin);
        begin = end + 1;
        if (!address.starts_with("unix:")) continue;
        if (std::string path = valueIn(address, "path"); !path.empty()) return path;
        if (std::string name = valueIn(address, "abstract"); !name.empty()) {
            return std::string(1, '\0') + name;
        }
    }
    return {};
}

int connectTo(const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.empty() || name.size() >= sizeof address.sun_path) return -1;
    std::memcpy(address.sun_path, name.data(), name.size());
    int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) return -1;
    bool isAbstract = name.front() == '\0';
    auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() +
                                       (isAbstract ? 0 : 1));
    if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), size) == 0) {
        return descriptor;
    }
    ::close(descriptor);
    return -1;
}
}  // namespace

std::unique_ptr<SessionBus> SessionBus::open(std::string& failure) {
    int socket = connectTo(socketName());
    std::array<int, 2> ends{-1, -1};
    if (socket < 0) {
        failure = "there is no session bus to connect to.";
        return nullptr;
    }
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) != 0) {
        ::close(socket);
        failure = std::string("no sockets are left: ") + std::strerror(errno) + ".";
        return nullptr;
    }
    std::unique_ptr<SessionBus> made(new SessionBus(socket, ends[0], ends[1]));
    return made->start(failure) ? std::move(made) : nullptr;
}

SessionBus::SessionBus(int toBus, int near, int far)
    : socket(toBus), inner(near), gate(largestMessage) {
    sd_bus* made = nullptr;
    if (sd_bus_new(&made) < 0) {
        ::close(far);
        return;
    }
    bus.reset(made);
    sd_bus_set_fd(made, far, far);
}

SessionBus::~SessionBus() {
    bus.reset();
    ::close(socket);
    ::close(inner);
}

bool SessionBus::start(std::string& failure) {
    int error = bus ? 0 : -ENOMEM;
    if (error >= 0) error = sd_bus_set_bus_client(get(), 1);
    if (error >= 0) error = sd_bus_negotiate_fds(get(), 0);
    if (error >= 0) error = sd_bus_set_method_call_timeout(get(), answerTime);
    if (error >= 0) error = sd_bus_start(get());
    if (error < 0)
        failure = std::string("the session bus can't be used: ") + std::strerror(-error) + ".";
    return error >= 0;
}

std::string SessionBus::uniqueName() const {
    const char* name = nullptr;
    // Asked for too early, the library would wait for the bus.
    if (sd_bus_is_ready(get()) <= 0 || sd_bus_get_unique_name(get(), &name) < 0) return {};
    return name;
}

void SessionBus::appendTo(std::vector<pollfd>& descriptors) const {
    auto interest = [](bool reads, bool writes) {
        return static_cast<short>((reads ? POLLIN : 0) | (writes ? POLLOUT : 0));
    };
    descriptors.push_back({socket, interest(incoming.isEmpty(), !outgoing.isEmpty()), 0});
    descriptors.push_back({inner, interest(outgoing.isEmpty(), !incoming.isEmpty()), 0});
    int events = sd_bus_get_events(get());
    if (events >= 0) descriptors.push_back({sd_bus_get_fd(get()), static_cast<short>(events), 0});
}

std::optional<std::uint64_t> SessionBus::deadline() const {
    std::uint64_t time = 0;
    if (sd_bus_get_timeout(get(), &time) < 0 || time == UINT64_MAX) return std::nullopt;
    return time;
}

bool SessionBus::process() {
    bool isConnected = pump();
    for (int i = 0; i < messagesPerPass; ++i) {
        int result = sd_bus_process(get(), nullptr);
        if (result < 0) return false;
        if (result == 0) break;
    }
    // What was said in answer goes out at once.
    return pump() && isConnected;
}

/// False when the bus has closed the connection, or sends what no bus sends.
bool SessionBus::pump() {
    std::array<std::uint8_t, chunk> bytes;
    for (int i = 0; i < chunksPerPass; ++i) {
        bool moved = false;
        if (!write(inner, incoming) || !write(socket, outgoing)) return false;
        if (incoming.isEmpty()) {
            auto count = ::recv(socket, bytes.data(), bytes.size(), 0);
            if (count == 0) return false;
            if (count > 0) {
                moved = true;
                incoming = {};
                std::span<const std::uint8_t> part(bytes.data(), static_cast<std::size_t>(count));
                if (!gate.pass(part, incoming.waiting)) return false;
            }
        }
        if (outgoing.isEmpty()) {
            auto count = ::recv(inner, bytes.data(), bytes.size(), 0);
            if (count > 0) {
                moved = true;
                outgoing = {};
                outgoing.waiting.assign(bytes.begin(), bytes.begin() + count);
            }
        }
        if (!moved) break;
    }
    return write(inner, incoming) && write(socket, outgoing);
}

bool SessionBus::write(int descriptor, Flow& flow) {
    while (!flow.isEmpty()) {
        auto count = ::send(descriptor, flow.waiting.data() + flow.sent,
                            flow.waiting.size() - flow.sent, MSG_NOSIGNAL);
        if (count < 0) return errno == EAGAIN || errno == EINTR;
        flow.sent += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace nevo::statusnotifier
