#include <charconv>
#include <cstdio>
#include <string>

#include "Probes.h"

namespace {

constexpr const char* usage =
    "Usage: bench-probe toggle COUNT   time clicks on Nevo's toggle\n"
    "       bench-probe shelf COUNT    time openings of Nevo's shelf\n"
    "       bench-probe open           open Nevo's shelf\n"
    "       bench-probe host ICONS     time a tray host's start\n"
    "       bench-probe still          tell when the top of the screen has come to rest\n"
    "       bench-probe click COUNT    time clicks on an icon\n"
    "       bench-probe activate COUNT time clicks on an item over the session bus\n"
    "       bench-probe icon NAME      be an icon\n"
    "       bench-probe change NAME    be an icon that changes all the time\n";

int numberOf(const std::string& text) {
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace nevo::bench;
    std::string what = argc >= 2 ? argv[1] : "";
    std::string value = argc == 3 ? argv[2] : "";
    int number = numberOf(value);
    bool takesNumber = what == "toggle" || what == "shelf" || what == "host" || what == "click" ||
                       what == "activate";
    bool takesName = what == "icon" || what == "change";
    bool isAlone = what == "open" || what == "still";
    bool isRight = takesNumber ? number > 0 : takesName ? argc == 3 : isAlone && argc == 2;
    if (!isRight) {
        std::fputs(usage, stderr);
        return 2;
    }
    Server server;
    if (what == "toggle") timeToggle(server, number);
    if (what == "shelf") timeShelf(server, number);
    if (what == "open") openShelf(server);
    if (what == "host") watchHost(server, number);
    if (what == "still") watchUntilStill(server);
    if (what == "click") timeClicks(server, number);
    if (what == "activate") timeActivations(server, number);
    if (what == "icon") showIcon(server, value);
    if (what == "change") showChangingIcon(server, value);
    return 0;
}
