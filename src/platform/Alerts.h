#pragma once

#include <optional>
#include <string>
#include <vector>

namespace nevo {

/// A question to the user (`NSAlert`).
struct Alert {
    /// How tests name it.
    std::string name;
    std::string title;
    std::string text;
    /// The first is the default.
    std::vector<std::string> buttons;
    /// The check box's title; nothing without one.
    std::optional<std::string> suppressionTitle;
};

struct AlertAnswer {
    /// The number of the button that was pressed. An alert that is closed otherwise counts as its
    /// last button.
    std::size_t button = 0;
    /// Whether the check box was on.
    bool suppresses = false;
};

class Alerts {
public:
    virtual ~Alerts() = default;
    /// Shows it and returns when it is answered (`runModal`); the loop turns meanwhile.
    virtual AlertAnswer run(const Alert& alert) = 0;
};

}  // namespace nevo
