#pragma once

#include <poll.h>
#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nevo::menubar {

/// `nevo-menubar-helper`, which does what needs a toolkit: decodes pictures, shows menus. Ended
/// with this object.
class HelperProcess {
public:
    /// With `hasPipes`, its standard input and output are ours to write and read, without waiting.
    /// Nullptr when it can't be started, with one plain sentence in `failure`.
    static std::unique_ptr<HelperProcess> start(const std::vector<std::string>& arguments,
                                                bool hasPipes, std::string& failure);
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    int input() const { return toHelper; }
    int output() const { return fromHelper; }
    /// Readable when it has ended.
    int endDescriptor() const { return end; }
    /// What it has ended with, to be asked once, when it has; nothing when a signal ended it.
    std::optional<int> takeStatus();

    /// Those that were ended and are still to be taken off the system's list of processes, which
    /// `reap` does: each descriptor becomes readable when its process has died.
    static void appendDying(std::vector<pollfd>& descriptors);
    static void reap();

private:
    HelperProcess() = default;

    pid_t pid = -1;
    int end = -1;
    int toHelper = -1;
    int fromHelper = -1;
};

}  // namespace nevo::menubar
