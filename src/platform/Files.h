#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Images.h"

namespace nevo {

/// The user's files (`NSFileManager`, `NSOpenPanel`, `UTType`). Paths are absolute, in UTF-8.
class Files {
public:
    virtual ~Files() = default;
    virtual bool exists(const std::string& path) const = 0;
    /// At most `most` bytes; nothing when it can't be read or holds more.
    virtual std::optional<Bytes> read(const std::string& path, std::size_t most) const = 0;
    /// The file's content type, by what the system makes of it: "image/png", "image/x-icns" ...;
    /// empty when unknown.
    virtual std::string contentType(const std::string& path) const = 0;
    /// `trashItemAtURL:resultingItemURL:error:`. Nothing on success, or what went wrong, for
    /// people.
    virtual std::optional<std::string> moveToTrash(const std::string& path) = 0;
    /// `moveItemAtURL:toURL:error:`.
    virtual std::optional<std::string> move(const std::string& from, const std::string& to) = 0;

    /// Lets the user choose one file of the content types (`NSOpenPanel`). `done` is told its path
    /// later, or nothing when the user thinks better of it.
    virtual void choose(const std::vector<std::string>& contentTypes,
                        std::function<void(std::optional<std::string>)> done) = 0;
};

}  // namespace nevo
