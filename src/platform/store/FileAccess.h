#pragma once

#include <unistd.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace nevo {

/// An open file that closes itself; negative for none.
class Descriptor {
public:
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor() {
        if (number >= 0) ::close(number);
    }
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    explicit operator bool() const { return number >= 0; }
    int get() const { return number; }
    /// False when the file system reports a late failure.
    bool close() {
        int closing = std::exchange(number, -1);
        return ::close(closing) == 0;
    }

private:
    int number;
};

/// Appends up to `limit` bytes and some more to `text`, so that the caller sees a file that is too
/// large. False, with `errno` set, when reading failed.
bool readAll(int descriptor, std::string& text, std::size_t limit);

/// False, with `errno` set, when not all could be written.
bool writeAll(int descriptor, std::string_view text);

}  // namespace nevo
