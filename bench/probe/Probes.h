#pragma once

#include <string>

#include "Server.h"

/// What bench-probe can do. Each prints one figure a line, after the word for what it is.
namespace nevo::bench {

/// Clicks Nevo's toggle `count` times each way. For each way prints "collapse" or "expand" with the
/// milliseconds from the button's release until the last item had its new place, and
/// "collapse-painted" or "expand-painted" with those until the bar had drawn it.
void timeToggle(const Server& server, int count);

/// Opens and closes the shelf `count` times by clicks on Nevo's toggle. Prints "open" with the
/// milliseconds from the button's release until its window was on the screen, "open-painted" with
/// those until all of it was painted, and "close" with those until it was gone again.
void timeShelf(const Server& server, int count);

/// Clicks Nevo's toggle and waits until the shelf is open.
void openShelf(const Server& server);

/// Prints "watching", waits for a tray host, and prints "owned" with the moment at which it had the
/// tray, and "shown" with that at which `icons` icons could be seen. Seconds on the system's
/// monotonic clock.
void watchHost(const Server& server, int icons);

/// Prints "watching", waits for the top of the screen to change and then to stay as it is for three
/// seconds, and prints "shown" with the moment of its last change, on the same clock.
void watchUntilStill(const Server& server);

/// Docks an icon and clicks it `count` times. Prints "click" with the milliseconds from each press
/// until the icon's program had it, and at last "missed" with the number of presses that came to
/// nothing because the icon had been pushed away meanwhile.
void timeClicks(const Server& server, int count);

/// The same with an item over the session bus, whose clicks the bar hands on: from the button's
/// release until the item's program had the call.
void timeActivations(const Server& server, int count);

/// Docks an icon of that name, and keeps it there until it is ended.
void showIcon(const Server& server, const std::string& name);

/// The same with an icon that looks different ten times a second.
void showChangingIcon(const Server& server, const std::string& name);

}  // namespace nevo::bench
