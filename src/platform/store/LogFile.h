#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace nevo {

/// A log file that keeps to a size: when it would grow beyond, its older lines move to `<file>.1`,
/// replacing what stood there, and the newer half stays.
///
/// Opened anew for each text, since a user may move the file away at any moment. A failure of the
/// disk loses the text that is being appended, and nothing that was written before.
class LogFile {
public:
    static constexpr std::size_t usualLimit = 2'000'000;

    explicit LogFile(std::filesystem::path file, std::size_t mostBytes = usualLimit);

    /// Whole lines, each with its end. A text of more than half the size is dropped.
    void append(std::string_view text) const;

private:
    bool makeRoom() const;

    std::filesystem::path path;
    std::size_t limit;
};

}  // namespace nevo
