#pragma once

#include <optional>
#include <string>

#include "platform/Geometry.h"
#include "platform/xcb/DesktopEntries.h"
#include "platform/xcb/WindowOwner.h"

namespace nevo::xcb {

/// Who a program is, the same at each of its starts: no process id or window number in it.
struct OwnerIdentity {
    /// That of the sandbox it runs in, else the desktop entry's id, else the program's base name,
    /// else the window class; "unknown" when there is none of these.
    std::string applicationId;
    /// For people, in the user's language where the program is installed with a desktop entry.
    std::string name;
    /// An icon theme's name or an absolute path; may be empty.
    std::string icon;
    /// What all this was taken from, for people who look for the reason.
    std::string signs;
    bool operator==(const OwnerIdentity&) const = default;
};

/// Finds out who owns a window.
class OwnerIdentities {
public:
    explicit OwnerIdentities(DesktopEntries& installed) : entries(installed) {}

    OwnerIdentity identify(std::optional<ProcessId> pid, const WindowClass& windowClass);
    /// For what any program may call itself as it likes: `claimedId` only counts where the program
    /// isn't known, so that none is taken for another one's desktop entry.
    OwnerIdentity identifyClaimed(std::optional<ProcessId> pid, const std::string& claimedId);

private:
    DesktopEntries& entries;
};

/// The base name of the program that a process runs, a script's where it is an interpreter. Empty
/// when it is gone or tells nothing.
std::string programOfProcess(ProcessId pid);

/// An id as a program gives it, the same at each start: empty where it carries the number of its
/// process.
std::string stableId(const std::string& id, std::optional<ProcessId> pid);

}  // namespace nevo::xcb
