#pragma once

#include <string>
#include <string_view>

#include "platform/Geometry.h"

namespace nevo::xcb {

/// The id under which a program runs in a sandbox, told by the control groups that its launcher
/// made for it (the text of `/proc/PID/cgroup`): "org.example.Chat" for a flatpak, "chat_chat" for
/// a snap, as their desktop entries are called. Empty for a program outside of both.
std::string sandboxOfControlGroups(std::string_view text);

/// The same for a flatpak, told by the text of the file `/.flatpak-info` that it sees. Empty where
/// that names no program.
std::string sandboxOfFlatpakInfo(std::string_view text);

/// The same for a process; empty when it is gone, or has only been started from such a program.
std::string sandboxOfProcess(ProcessId pid);

}  // namespace nevo::xcb
