#pragma once

#include <string>

namespace nevo {

/// Shows `sentence` as a notification of the desktop (`org.freedesktop.Notifications`), for a
/// program that ends before it has anything on the screen and that nobody has started from a
/// terminal. Waits some seconds for an answer; nothing happens where nobody shows notifications.
void showDesktopNotice(const std::string& sentence);

}  // namespace nevo
