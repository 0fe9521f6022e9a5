#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/ScannedBarItem.h"
#include "core/SectionName.h"
#include "core/Signal.h"
#include "placement/ItemOpacity.h"
#include "placement/StatusItemPreferenceRepair.h"
#include "platform/Platform.h"

namespace nevo {

/// Which item lies in which section. All three sections are present.
using SectionSnapshot = std::map<SectionName, ScannedBarItems>;

/// Owns this program's three status items and tells from their places which section an item is in.
/// Other programs' items aren't touched: a divider among them is made enormously wide, and the
/// bar's own layout pushes everything left of it off the screen. Main thread only.
class SectionManager {
public:
    explicit SectionManager(const Platform& platform);

    /// Whether the item's length pushes what is left of it away.
    static bool isCollapsed(const StatusItem& divider);
    bool isHiddenDividerCollapsed() const { return isCollapsed(*hiddenDivider); }

    void configureToggle(std::optional<Image> image, std::function<void()> action);
    /// The whole of "collapse" and "expand": length 10000 or 0. Also blanks the divider's button.
    void setDividerLength(StatusItem& divider, bool collapsed);
    /// Opens the hidden section; with `restoreAlpha` no window stays transparent for standing
    /// behind the divider. What a rule hides stays hidden.
    void expand(bool restoreAlpha);

    /// Makes items of `ruleIDs` come back behind the always-hidden divider.
    void markHidden(const std::vector<std::string>& ruleIDs, const ScannedBarItems& items);
    /// Replaces the always-hidden divider, since the bar places an item only when it is made.
    /// `position` as the bar saves it. Items of `ruleIDs` will come back behind it.
    void recreateAlwaysHiddenDivider(const std::vector<std::string>& ruleIDs,
                                     const ScannedBarItems& items, double position);
    void deactivateAlwaysHiddenDivider();
    /// After sleep the bar may have lost the blanking of the dividers.
    void reapplyDividerVisibilityAfterWake();

    /// Divides items into hidden and visible by position alone; those on another screen than the
    /// dividing item are in no section, unless the row has pushed them off it or an item is brought
    /// out for a while: those are hidden. Without anything to go by, all are visible: no item
    /// counts as hidden on no evidence.
    SectionSnapshot classify(const ScannedBarItems& items) const;

    /// Whether an item with its centre there stands behind the always-hidden divider; false while
    /// that isn't up.
    bool isBehindAlwaysHiddenDivider(double centerX) const;

    /// The window numbers of this program's items, as far as they have windows.
    std::set<WindowNumber> ownWindowIDs() const;
    /// The screen frame of the item's button, origin at the bottom left; nothing without button or
    /// window.
    static std::optional<Rect> frame(StatusItem& item);
    /// The same where the button is to be seen, which differs while the bar makes room for an item
    /// that is out: for what is under the pointer, or stands beside it.
    std::optional<Rect> shownFrame(StatusItem& item) const;

    /// The visible icon, the fixed mark for all geometry.
    std::unique_ptr<StatusItem> toggleItem;
    std::unique_ptr<StatusItem> hiddenDivider;
    std::unique_ptr<StatusItem> alwaysHiddenDivider;
    /// The classification made while the bar was last looked at.
    SectionSnapshot lastExpandedSnapshot;
    /// What is transparent, and why.
    ItemOpacity opacity;
    /// Sent when the hidden divider has been told to open or to close, whoever wanted it, before
    /// the bar has moved anything.
    Signal hiddenDividerDidChange;

private:
    struct Split {
        double x = 0;
        std::optional<Rect> scopingFrame;
    };
    std::optional<Split> chooseSplit() const;
    ScannedBarItems scopedToScreen(const ScannedBarItems& items,
                                   const std::optional<Rect>& frame) const;

    const Platform& platform;
    StatusItemPreferenceRepair preferences;

    static constexpr double collapsedLength = 10000.0;
    static constexpr double collapsedThreshold = 9999.0;
    static constexpr double boundaryTolerance = 2.0;
};

}  // namespace nevo
