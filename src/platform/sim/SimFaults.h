#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"

namespace nevo {

/// The operations of the desktop that a script can make fail.
enum class SimOperation {
    windowCount,
    menuBarWindowList,
    windowLevel,
    windowFrame,
    windowList,
    windowDescription,
    descriptionNumber,  ///< the next six: that field is missing from a window's description
    descriptionLayer,
    descriptionOwnerPid,
    descriptionOwnerName,
    descriptionName,
    descriptionBounds,
    setWindowAlpha,
    windowAlpha,
    moveWindow,
    windowImage,
    compositeImage,
    shareableContent,
    captureImage,
    eventSource,
    mouseEvent,
    drag,  ///< the bar ignores a synthetic drag
    globalMonitor,
    localMonitor,
    eventTap,
    hotKeyHandler,
    hotKey,
    suite,
    synchronize,
    statusItemButton,
    statusItemWindow,
    imageDecode,
    imageNamed,
    systemSymbol,
    openUrl,
    extrasMenuBar,
    trashFile,
    moveFile,
    loginItem,
    childProcess,
};

/// The failures that a script has asked for.
class SimFaults {
public:
    /// The operations' names, in the order of the enumeration.
    static const std::vector<std::string>& names();
    static std::optional<SimOperation> operation(const std::string& name);

    /// Makes the next `times` calls fail, or all of them with nothing; only those for `window`, if
    /// given.
    void add(SimOperation operation, std::optional<WindowNumber> window, std::optional<int> times);
    void clear(SimOperation operation);

    /// Asked once by each operation when it is called: whether it is to fail.
    bool strikes(SimOperation operation, WindowNumber window = 0);
    /// Whether any failure is still to come.
    bool isAnyPending() const { return !faults.empty(); }
    /// How often an operation has been made to fail.
    int struckCount(SimOperation operation) const;

private:
    struct Fault {
        SimOperation operation;
        std::optional<WindowNumber> window;
        std::optional<int> times;
    };
    std::vector<Fault> faults;
    std::map<SimOperation, int> struck;
};

}  // namespace nevo
