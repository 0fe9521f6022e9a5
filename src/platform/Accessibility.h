#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"

namespace nevo {

/// One element of an application's extras menu bar, as far as it could be read.
struct AccessibilityElement {
    /// "AXPosition": origin at the top left of the main display.
    std::optional<Point> position;
    std::optional<Size> size;
    std::optional<std::string> title;
    std::optional<std::string> description;
};

class Accessibility {
public:
    virtual ~Accessibility() = default;
    /// `AXIsProcessTrusted`. Never prompts.
    virtual bool isProcessTrusted() const = 0;
    /// Whether the user gives that trust and takes it away; else it is always held.
    virtual bool isTrustUserControlled() const = 0;
    /// Has the system ask the user for that trust (`AXIsProcessTrustedWithOptions` with the
    /// prompt).
    virtual void promptForTrust() = 0;
    /// The children ("AXChildren") of the application's "AXExtrasMenuBar"; nothing when it has no
    /// such bar, or doesn't answer.
    virtual std::optional<std::vector<AccessibilityElement>> extrasMenuBarChildren(
        ProcessId pid) const = 0;
};

}  // namespace nevo
