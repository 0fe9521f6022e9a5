#pragma once

#include <filesystem>

namespace nevo {

/// An advisory lock on a file of its own, held until destroyed or the process ends.
class FileLock {
public:
    /// Waits up to half a second for another holder: a stopped one must not stop us as well.
    explicit FileLock(const std::filesystem::path& lockFile);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    bool isHeld() const { return held; }

private:
    int descriptor = -1;
    bool held = false;
};

}  // namespace nevo
