#pragma once

#include "desktop/DesktopSession.h"

namespace nevo::desktoptest {

/// A desktop on which somebody uses Nevo.
class NevoSession : public DesktopSession {
protected:
    /// Starts the bar, five tray programs and Nevo, as for somebody who has used it before, and
    /// waits for the first collapse, which hides all five. `moreValues`: more stored values, JSON
    /// members after a comma.
    void startAll(const std::string& moreValues = {});
    /// The same for programs that run already.
    void startUsing(const std::string& moreValues);
    /// A stored value of bytes for these, which are `json`.
    static std::string bytesValue(const std::string& key, const char* json);
    /// Clicks the toggle and waits until exactly these programs' items can be seen.
    void toggle(const Names& expectedOnScreen);
    /// Shows all items, and Super-drags the toggle so that `count` items stand right of it.
    void keepVisible(std::size_t count);
    /// The programs' items right of the toggle.
    Names namesRightOfToggle() const;
    /// Waits until all programs' items stand as in `before`, opaque, in their slots.
    void waitForPlaces(const std::vector<Item>& before) const;
};

}  // namespace nevo::desktoptest
