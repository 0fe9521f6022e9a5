#include <cstdio>
#include <string>
#include <vector>

#include "trayhelper/IconServer.h"
#include "trayhelper/MenuProgram.h"

namespace {

constexpr int exitUsage = 2;

constexpr const char* help =
    "Usage: nevo-menubar-helper --icons\n"
    "       nevo-menubar-helper --menu SERVICE PATH X Y WIDTH HEIGHT\n"
    "Does for nevo-menubar what might hurt it: reads pictures, and shows menus of other programs.\n"
    "\n"
    "  --icons   read lines \"ID SIZE<TAB>FOLDER<TAB>NAME\" and write for each \"ID WIDTH "
    "HEIGHT\"\n"
    "            and the pixels (32 bits each, ARGB, premultiplied); 0 0 where there is no "
    "picture\n"
    "  --menu    show the menu of the object PATH (com.canonical.dbusmenu) of the bus name "
    "SERVICE\n"
    "            below a rectangle of the screen, in pixels, until it closes\n"
    "  --help    show this text\n";

int fail(const std::string& sentence) {
    std::fprintf(stderr, "nevo-menubar-helper: %s\n", sentence.c_str());
    return exitUsage;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace nevo::trayhelper;
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty()) return fail("Nothing to do; see --help.");
    std::string mode = arguments.front();
    arguments.erase(arguments.begin());
    if (mode == "--help") return std::fputs(help, stdout) < 0;
    if (mode == "--icons") {
        if (!arguments.empty()) return fail("--icons takes no arguments; see --help.");
        return serveIcons();
    }
    if (mode == "--menu") {
        std::string failure;
        auto place = parseMenuPlace(arguments, failure);
        return place ? showMenu(*place) : fail(failure);
    }
    return fail("Unknown argument \"" + mode + "\"; see --help.");
}
