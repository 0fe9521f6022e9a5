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

private:
    DesktopEntries& entries;
};

/// The base name of the program that a process runs, a script's where it is an interpreter. Empty
/// when it is gone or tells nothing.
std::string programOfProcess(ProcessId pid);

}  // namespace nevo::xcb
