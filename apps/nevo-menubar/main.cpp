#include <clocale>
#include <cstdio>
#include <string>
#include <vector>

#include "menubar/Bar.h"
#include "menubar/ItemsReport.h"
#include "menubar/Log.h"
#include "menubar/UsualHeight.h"

int main(int argc, char** argv) {
    using namespace nevo::menubar;
    std::setlocale(LC_ALL, "");
    std::string failure;
    auto options = parseOptions(std::vector<std::string>(argv + 1, argv + argc), failure);
    if (options && options->help) {
        std::fputs(helpText, stdout);
        return 0;
    }
    auto display = options ? Display::open(failure) : nullptr;
    if (display && options->listsItems) {
        auto report = reportItems(*display, failure);
        if (report) std::fputs(report->c_str(), stdout);
        if (!report) logLine(failure);
        return report ? 0 : 1;
    }
    const std::vector<std::string> command(argv, argv + argc);
    auto host = display ? TrayHost::claim(*display, command, failure) : nullptr;
    if (!host) {
        logLine(failure);
        return options ? 1 : 2;
    }
    if (options->height == 0) options->height = usualHeight(*display);
    return Bar(*display, *options, std::move(host)).run();
}
