#include "platform/sim/SimFaults.h"

#include <algorithm>

namespace nevo {

const std::vector<std::string>& SimFaults::names() {
    static const std::vector<std::string> all = {
        "windowCount",
        "menuBarWindowList",
        "windowLevel",
        "windowFrame",
        "windowList",
        "windowDescription",
        "descriptionNumber",
        "descriptionLayer",
        "descriptionOwnerPid",
        "descriptionOwnerName",
        "descriptionName",
        "descriptionBounds",
        "setWindowAlpha",
        "windowAlpha",
        "moveWindow",
        "windowImage",
        "compositeImage",
        "shareableContent",
        "captureImage",
        "eventSource",
        "mouseEvent",
        "drag",
        "globalMonitor",
        "localMonitor",
        "eventTap",
        "hotKeyHandler",
        "hotKey",
        "suite",
        "synchronize",
        "statusItemButton",
        "statusItemWindow",
        "imageDecode",
        "imageNamed",
        "systemSymbol",
        "openUrl",
        "extrasMenuBar",
        "trashFile",
        "moveFile",
        "loginItem",
        "childProcess",
    };
    return all;
}

std::optional<SimOperation> SimFaults::operation(const std::string& name) {
    auto found = std::find(names().begin(), names().end(), name);
    if (found == names().end()) return std::nullopt;
    return static_cast<SimOperation>(found - names().begin());
}

void SimFaults::add(SimOperation operation, std::optional<WindowNumber> window,
                    std::optional<int> times) {
    faults.push_back({operation, window, times});
}

void SimFaults::clear(SimOperation operation) {
    std::erase_if(faults, [&](const Fault& f) { return f.operation == operation; });
}

bool SimFaults::strikes(SimOperation operation, WindowNumber window) {
    auto found = std::find_if(faults.begin(), faults.end(), [&](const Fault& f) {
        return f.operation == operation && (!f.window || *f.window == window);
    });
    if (found == faults.end()) return false;
    ++struck[operation];
    if (found->times && --*found->times <= 0) faults.erase(found);
    return true;
}

int SimFaults::struckCount(SimOperation operation) const {
    auto found = struck.find(operation);
    return found == struck.end() ? 0 : found->second;
}

}  // namespace nevo
