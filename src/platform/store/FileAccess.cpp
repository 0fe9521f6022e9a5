#include "platform/store/FileAccess.h"

#include <cerrno>

namespace nevo {

bool readAll(int descriptor, std::string& text, std::size_t limit) {
    char block[65536];
    while (text.size() <= limit) {
        ssize_t count = ::read(descriptor, block, sizeof block);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) return true;
        text.append(block, static_cast<std::size_t>(count));
    }
    return true;
}

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace nevo
