#pragma once

#include "desktop/AccessibilityTree.h"
#include "desktop/NevoSession.h"

namespace nevo::desktoptest {

/// Somebody who changes Nevo's settings. Controls go by what assistive technology calls them, and
/// are found where it says they are.
class SettingsSession : public NevoSession {
protected:
    /// A window manager, and what assistive technology takes.
    void SetUp() override;
    void TearDown() override;

    /// From the toggle's menu, by mouse.
    void openSettings();
    /// By mouse.
    void goTo(const std::string& tab);

    std::vector<Accessible> parts() const;
    /// A part that goes by `name`, in the group of that name if one is told; waits for it.
    Accessible control(const std::string& role, const std::string& name,
                       const std::string& group = {}) const;
    bool has(const std::string& role, const std::string& name) const;
    /// The part that the keys go to; an empty one if there is none.
    static Accessible focusedOf(const std::vector<Accessible>& parts);
    /// The names of the groups around a part, the outermost first.
    static Names groupsOf(const std::vector<Accessible>& parts, const Accessible& part);

    // The hand. A control that is scrolled out of sight is brought there by the wheel.
    void clickOn(const std::string& role, const std::string& name, const std::string& group = {});
    /// Opens a closed list and clicks on one of its rows.
    void choose(const std::string& list, const std::string& option, const std::string& group = {});
    /// Presses Tab until the keys go to that control.
    void tabTo(const std::string& role, const std::string& name, const std::string& group = {});
    /// Presses Tab and gives what the keys go to then.
    Accessible tab();

    /// Waits until the file of Nevo's stored values has this text.
    void waitForStored(const std::string& json) const;

private:
    Accessible inSight(const std::string& role, const std::string& name, const std::string& group);

    std::unique_ptr<AccessibilityTree> tree;
    /// Where the control that was last found scrolls.
    mutable Rect sight;
};

}  // namespace nevo::desktoptest
