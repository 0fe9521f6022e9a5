#pragma once

#include "platform/Files.h"

namespace nevo {

/// The user's files, through Qt. The trash is the one that file managers know.
class X11Files : public Files {
public:
    bool exists(const std::string& path) const override;
    /// Reads ordinary files only: a pipe or a device could keep the program waiting.
    std::optional<Bytes> read(const std::string& path, std::size_t most) const override;
    std::string contentType(const std::string& path) const override;
    std::optional<std::string> moveToTrash(const std::string& path) override;
    std::optional<std::string> move(const std::string& from, const std::string& to) override;
    /// `done` hears nothing when the window above which the dialog stands is destroyed.
    void choose(const std::vector<std::string>& contentTypes,
                std::function<void(std::optional<std::string>)> done) override;
};

}  // namespace nevo
