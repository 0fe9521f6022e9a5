#pragma once

#include <functional>
#include <memory>

#include "core/AppState.h"
#include "platform/Controls.h"

namespace nevo {

/// Explains the icon and what stands left of it, by a picture of the menu bar in its two states and
/// four steps, one of which is marked with the picture that it speaks of.
class MenuBarLayoutView : public std::enable_shared_from_this<MenuBarLayoutView> {
public:
    /// `changed` is told when another step is marked.
    MenuBarLayoutView(const AppState& state, std::function<void()> changed)
        : appState(state), onChange(std::move(changed)) {}

    Control content();

private:
    void showStep(int number);
    /// The menu bar in one of its states.
    Control picture(bool isExpanded, bool isMarked);
    Control step(int number);

    const AppState& appState;
    std::function<void()> onChange;
    /// Counted from 1.
    int showingStep = 1;
};

}  // namespace nevo
