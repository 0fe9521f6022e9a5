#include "platform/store/FileLock.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace nevo {

namespace {
constexpr int tries = 100;
constexpr int pauseMilliseconds = 5;
}  // namespace

FileLock::FileLock(const std::filesystem::path& lockFile)
    : descriptor(open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    for (int i = 0; descriptor >= 0 && !held && i < tries; ++i) {
        held = flock(descriptor, LOCK_EX | LOCK_NB) == 0;
        if (held || (errno != EWOULDBLOCK && errno != EINTR)) break;
        poll(nullptr, 0, pauseMilliseconds);
    }
}

FileLock::~FileLock() {
    // Closing gives the lock back. The file stays: removing it would let two holders in.
    if (descriptor >= 0) close(descriptor);
}

}  // namespace nevo
