#include <charconv>
#include <cstdio>
#include <string>

#include "Probes.h"

namespace {

constexpr const char* usage =
    "Usage: bench-probe toggle COUNT   time clicks on Nevo's toggle\n"
    "       bench-probe host ICONS     time a tray host's start\n"
    "       bench-probe click COUNT    time clicks on an icon\n"
    "       bench-probe icon NAME      be an icon\n";

int numberOf(const std::string& text) {
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace nevo::bench;
    std::string what = argc == 3 ? argv[1] : "";
    std::string value = argc == 3 ? argv[2] : "";
    int number = numberOf(value);
    bool takesNumber = what == "toggle" || what == "host" || what == "click";
    if ((what != "icon" && !takesNumber) || (takesNumber && number < 1)) {
        std::fputs(usage, stderr);
        return 2;
    }
    Server server;
    if (what == "toggle") timeToggle(server, number);
    if (what == "host") watchHost(server, number);
    if (what == "click") timeClicks(server, number);
    if (what == "icon") showIcon(server, value);
    return 0;
}
